#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "log/dbg/win32/Owned.h"
#include "platform/undo_windows_macros.h"

namespace Mirqos::Test {

/// Another program of this build, which stands in the running one's folder, running beside it. It
/// is ended with this object at the latest. What Windows refuses is thrown as std::runtime_error.
class ChildProcess {
public:
    /// Starts it. The arguments contain neither blanks at their ends nor quotes.
    ChildProcess(const std::wstring& program, const std::vector<std::wstring>& arguments);
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) = default;
    ChildProcess& operator=(ChildProcess&&) = delete;

    std::uint32_t Id() const { return m_dwId; }
    HANDLE Handle() const { return m_process.Get(); }
    bool IsRunning() const;
    /// Waits for its end and returns its exit code.
    std::uint32_t ExitCode() const;
    /// Ends it where it stands, and waits for that.
    void Kill() const;

private:
    LOGUTILS::KernelObject m_process;
    std::uint32_t m_dwId = 0;
};

/// A signal that processes share by its name; once set it stays so.
class SharedSignal {
public:
    explicit SharedSignal(const std::wstring& name);

    const std::wstring& Name() const { return m_name; }
    void Set() const { SetEvent(m_event.Get()); }
    bool IsSet() const { return WaitForSingleObject(m_event.Get(), 0) == WAIT_OBJECT_0; }
    /// Waits for half a minute at most; false when the signal was not set by then.
    bool Wait() const;

private:
    std::wstring m_name;
    LOGUTILS::KernelObject m_event;
};

/// A name that no other test uses at the same time.
std::wstring UniqueName(const std::wstring& what);

}  // namespace Mirqos::Test
