#include "ProcessFigures.h"

#include <windows.h>
// after windows.h, which they need
#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <vector>

namespace {

// The system's table of handles, since GetProcessHandleCount answers 0 under Wine. No header has
// the function, the question and the shape of the answer.
using QuerySystemInformation = LONG(WINAPI*)(ULONG question, void* answer, ULONG size,
                                             ULONG* needed);
constexpr ULONG kHandleTable = 64;
constexpr LONG kTooSmall = static_cast<LONG>(0xC0000004);

struct HandleEntry {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT traceIndex;
    USHORT typeIndex;
    ULONG attributes;
    ULONG reserved;
};

struct HandleTable {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry first;
};

std::int64_t Handles() {
    const auto query = reinterpret_cast<QuerySystemInformation>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<ULONG_PTR> room(32 * 1024);
    LONG status = kTooSmall;
    while (status == kTooSmall) {
        room.resize(room.size() * 2);
        const auto size = static_cast<ULONG>(room.size() * sizeof room[0]);
        status = query(kHandleTable, room.data(), size, nullptr);
    }
    if (status != 0) {
        return -1;
    }
    const auto* const table = reinterpret_cast<const HandleTable*>(room.data());
    const HandleEntry* const entries = &table->first;
    return std::count_if(entries, entries + table->count, [](const HandleEntry& entry) {
        return entry.processId == GetCurrentProcessId();
    });
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
