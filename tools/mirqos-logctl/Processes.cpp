#include "tools/mirqos-logctl/Processes.h"

#include <windows.h>

#include <tlhelp32.h>

#include <algorithm>
#include <string>

#include "log/dbg/win32/Owned.h"
#include "platform/undo_windows_macros.h"
#include "tools/mirqos-logctl/Failure.h"

namespace Mirqos::LogControl {

std::vector<Process> RunningProcesses() {
    // the kind of handle that is INVALID_HANDLE_VALUE on failure
    const LOGUTILS::File snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    if (!snapshot) {
        throw Failure(ExitCode::SystemRefused, "the processes cannot be listed (system error " +
                                                   std::to_string(GetLastError()) + ")");
    }
    std::vector<Process> processes;
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more != FALSE;
         more = Process32NextW(snapshot.Get(), &entry)) {
        processes.push_back({entry.th32ProcessID, entry.szExeFile});
    }
    return processes;
}

Process FindProcess(std::uint32_t id) {
    const std::vector<Process> processes = RunningProcesses();
    const auto found = std::find_if(processes.begin(), processes.end(),
                                    [&](const Process& process) { return process.id == id; });
    if (found == processes.end()) {
        throw Failure(ExitCode::NoBlock, "there is no process " + std::to_string(id));
    }
    return *found;
}

}  // namespace Mirqos::LogControl
