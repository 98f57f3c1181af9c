#pragma once

#include <cstdint>

#include "log/dbg/WideText.h"
#include "log/dbg/win32/Owned.h"

namespace LOGUTILS {

/// How a wait for a mutex ended. Abandoned owns the mutex like Owned does, but its former owner
/// ended while it held it: what the mutex guards may be half done.
enum class MutexWait { Owned, Abandoned, TimedOut, Failed };

/// The time for which the thread holds a mutex; releases it at the end if the wait had made it
/// owner.
class MutexHold {
public:
    MutexHold(HANDLE hMutex, MutexWait wait) : m_hMutex(hMutex), m_wait(wait) {}
    ~MutexHold();
    MutexHold(MutexHold&& other) noexcept;
    MutexHold& operator=(MutexHold&&) = delete;
    MutexHold(const MutexHold&) = delete;
    MutexHold& operator=(const MutexHold&) = delete;

    MutexWait Wait() const { return m_wait; }
    /// Owned or abandoned.
    bool Owns() const { return m_wait == MutexWait::Owned || m_wait == MutexWait::Abandoned; }

private:
    HANDLE m_hMutex;
    MutexWait m_wait;
};

/// A mutex that processes share by its name.
class NamedMutex {
public:
    /// Creates it, open to everyone and not owned, or opens it where it exists. On failure there is
    /// no mutex and the thread's last error tells why.
    static NamedMutex Create(const WideString& name);
    /// Opens an existing one with full access.
    static NamedMutex Open(const WideString& name);

    NamedMutex() = default;

    explicit operator bool() const { return static_cast<bool>(m_handle); }
    void Close() { m_handle.Reset(); }

    /// Waits for `dwMilliseconds` at most, INFINITE for ever. Without a mutex the wait has failed.
    MutexHold Wait(DWORD dwMilliseconds) const;

private:
    explicit NamedMutex(HANDLE hMutex) : m_handle(hMutex) {}

    KernelObject m_handle;
};

}  // namespace LOGUTILS
