#include "ProcessFigures.h"

#include <windows.h>
// after windows.h, which they need
#include <psapi.h>
#include <tlhelp32.h>

#include <cstdint>
#include <vector>

namespace {

// Each value that a handle may have is tried: GetProcessHandleCount answers 0 under Wine, and the
// system's table of handles ends Wine's server, and with it every program, when it is asked for
// while another process has none, just after its start or before its end.
std::int64_t Handles() {
    constexpr std::uintptr_t kStep = 4;
    constexpr std::uintptr_t kEnd = 32768;
    std::int64_t count = 0;
    for (std::uintptr_t value = kStep; value < kEnd; value += kStep) {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) ? 1 : 0;
    }
    return count;
}

std::int64_t FreeTls() {
    std::vector<DWORD> taken;
    for (DWORD index = TlsAlloc(); index != TLS_OUT_OF_INDEXES; index = TlsAlloc()) {
        taken.push_back(index);
    }
    for (const DWORD index : taken) {
        TlsFree(index);
    }
    return static_cast<std::int64_t>(taken.size());
}

std::int64_t MemoryBytes() {
    PROCESS_MEMORY_COUNTERS_EX counters = {};
    counters.cb = sizeof counters;
    const BOOL known = GetProcessMemoryInfo(GetCurrentProcess(),
                                            reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                                            sizeof counters);
    if (!known) {
        return -1;
    }
    // Wine knows the working set alone.
    return static_cast<std::int64_t>(counters.PrivateUsage != 0 ? counters.PrivateUsage
                                                                : counters.WorkingSetSize);
}

std::int64_t Threads() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) {
        return -1;
    }
    std::int64_t count = 0;
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
}

}  // namespace

ProcessFigures MeasureProcess() {
    return {Handles(), FreeTls(), MemoryBytes(), Threads()};
}
