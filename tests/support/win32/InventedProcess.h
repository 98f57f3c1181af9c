#pragma once

#include <windows.h>

#include <atomic>
#include <string>

#include "tests/support/win32/CallSpy.h"

namespace Mirqos::Test {

/// For as long as it lives the logging library takes this process for another one, with an id that
/// no process has: objects named after it are new, whatever this process has of its own.
class InventedProcess {
public:
    InventedProcess() : m_spy([this] { return m_id; }) {}

    DWORD Id() const { return m_id; }
    /// "Global\" or "Local\", then the beginning of the block's documented name, then the id.
    std::wstring BlockName(const std::wstring& space = L"Global\\") const {
        return space + L"LOGCFG_SM_NAME_C8AAE32A-9619-4685-B766-F003823BEEE3_" +
               std::to_wstring(m_id);
    }
    std::wstring MutexName() const {
        return L"Global\\LOGCFG_MUTEX_NAME_C8AAE32A-9619-4685-B766-F003823BEEE3_" +
               std::to_wstring(m_id);
    }

private:
    static DWORD NextId() {
        static std::atomic<DWORD> count{0};
        // far above the ids of processes, and apart from those of tests that run at the same time
        return 0x40000000 + (GetCurrentProcessId() << 10) % 0x20000000 + ++count;
    }

    DWORD m_id = NextId();
    CallSpy<&LOGUTILS::WindowsCalls::getCurrentProcessId> m_spy;
};

}  // namespace Mirqos::Test
