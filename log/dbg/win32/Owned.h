#pragma once

#include <windows.h>

#include <utility>

#include "platform/undo_windows_macros.h"

namespace LOGUTILS {

/// Owns what Windows handed out and gives it back once. `Kind` names the value, the value that
/// means none, and the call that gives it back. The thread's last error stays what it was.
template <typename Kind>
class Owned {
public:
    using Value = typename Kind::Value;

    Owned() = default;
    explicit Owned(Value value) : m_value(value) {}
    ~Owned() { Reset(); }
    Owned(Owned&& other) noexcept : m_value(other.Release()) {}
    Owned& operator=(Owned&& other) noexcept {
        if (this != &other) {
            Reset(other.Release());
        }
        return *this;
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    explicit operator bool() const { return m_value != Kind::None(); }
    Value Get() const { return m_value; }

    Value Release() { return std::exchange(m_value, Kind::None()); }

    void Reset(Value value = Kind::None()) {
        const Value former = std::exchange(m_value, value);
        if (former != Kind::None()) {
            const DWORD dwError = GetLastError();
            Kind::GiveBack(former);
            SetLastError(dwError);
        }
    }

private:
    Value m_value = Kind::None();
};

/// A handle of a kernel object whose call answers null on failure.
struct KernelObjectKind {
    using Value = HANDLE;
    static Value None() { return nullptr; }
    static void GiveBack(Value hObject) { CloseHandle(hObject); }
};
using KernelObject = Owned<KernelObjectKind>;

struct FileKind {
    using Value = HANDLE;
    static Value None() { return INVALID_HANDLE_VALUE; }
    static void GiveBack(Value hFile) { CloseHandle(hFile); }
};
using File = Owned<FileKind>;

/// A mapped view of shared memory.
struct ViewKind {
    using Value = void*;
    static Value None() { return nullptr; }
    static void GiveBack(Value pView) { UnmapViewOfFile(pView); }
};
using View = Owned<ViewKind>;

struct RegistryKeyKind {
    using Value = HKEY;
    static Value None() { return nullptr; }
    static void GiveBack(Value hKey) { RegCloseKey(hKey); }
};
using RegistryKey = Owned<RegistryKeyKind>;

/// Memory from LocalAlloc, as security calls hand it out.
struct LocalMemoryKind {
    using Value = void*;
    static Value None() { return nullptr; }
    static void GiveBack(Value pMemory) { LocalFree(pMemory); }
};
using LocalMemory = Owned<LocalMemoryKind>;

}  // namespace LOGUTILS
