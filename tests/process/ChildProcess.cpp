#include "tests/process/ChildProcess.h"

#include <atomic>
#include <stdexcept>

#include "log/dbg/LogFilePath.h"
#include "log/dbg/win32/ModuleFiles.h"

namespace Mirqos::Test {
namespace {

constexpr UINT kKilled = 99;
constexpr DWORD kPatience = 30000;  // ms

void Require(bool bDone, const char* pszWhat) {
    if (!bDone) {
        throw std::runtime_error(std::string(pszWhat) + ": error " +
                                 std::to_string(GetLastError()));
    }
}

}  // namespace

ChildProcess::ChildProcess(const std::wstring& program,
                           const std::vector<std::wstring>& arguments) {
    std::wstring command =
        L"\"" + std::wstring(LOGUTILS::FolderOf(LOGUTILS::ExecutablePath())) + L"\\" + program;
    command += L".exe\"";
    for (const std::wstring& argument : arguments) {
        command += L" \"" + argument + L"\"";
    }
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    Require(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                           &startup, &process) != FALSE,
            "CreateProcess");
    const LOGUTILS::KernelObject thread(process.hThread);
    m_process.Reset(process.hProcess);
    m_dwId = process.dwProcessId;
}

ChildProcess::~ChildProcess() {
    if (m_process && IsRunning()) {
        Kill();
    }
}

bool ChildProcess::IsRunning() const {
    return WaitForSingleObject(m_process.Get(), 0) == WAIT_TIMEOUT;
}

std::uint32_t ChildProcess::ExitCode() const {
    WaitForSingleObject(m_process.Get(), INFINITE);
    DWORD dwCode = 0;
    Require(GetExitCodeProcess(m_process.Get(), &dwCode) != FALSE, "GetExitCodeProcess");
    return dwCode;
}

void ChildProcess::Kill() const {
    TerminateProcess(m_process.Get(), kKilled);
    WaitForSingleObject(m_process.Get(), INFINITE);
}

SharedSignal::SharedSignal(const std::wstring& name)
    : m_name(name), m_event(CreateEventW(nullptr, TRUE, FALSE, name.c_str())) {
    Require(static_cast<bool>(m_event), "CreateEvent");
}

bool SharedSignal::Wait() const {
    return WaitForSingleObject(m_event.Get(), kPatience) == WAIT_OBJECT_0;
}

std::wstring UniqueName(const std::wstring& what) {
    static std::atomic<int> number{0};
    return L"Local\\MIRQOS_TEST_" + std::to_wstring(GetCurrentProcessId()) + L"_" +
           std::to_wstring(++number) + L"_" + what;
}

}  // namespace Mirqos::Test
