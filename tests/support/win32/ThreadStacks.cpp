#include "tests/support/ThreadStacks.h"

#include <windows.h>

// needs windows.h before it
#include <tlhelp32.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace Mirqos::Test {
namespace {

constexpr std::size_t kMaxFrames = 64;

struct Stack {
    std::array<DWORD64, kMaxFrames> frames{};
    std::size_t count = 0;
};

// Runs while `thread` is suspended: it may hold any lock, so nothing here may allocate or print.
bool Unwind(HANDLE thread, Stack& stack) {
    CONTEXT context{};
    context.ContextFlags = CONTEXT_FULL;
    if (GetThreadContext(thread, &context) == FALSE) {
        return false;
    }
    while (context.Rip != 0 && stack.count < kMaxFrames) {
        stack.frames[stack.count++] = context.Rip;
        DWORD64 base = 0;
        PRUNTIME_FUNCTION function = RtlLookupFunctionEntry(context.Rip, &base, nullptr);
        if (function == nullptr) {
            // a leaf: its return address lies on top of the stack
            DWORD64 next = 0;
            SIZE_T read = 0;
            if (ReadProcessMemory(GetCurrentProcess(), reinterpret_cast<void*>(context.Rsp), &next,
                                  sizeof(next), &read) == FALSE) {
                break;
            }
            context.Rip = next;
            context.Rsp += sizeof(next);
            continue;
        }
        void* handlerData = nullptr;
        DWORD64 frame = 0;
        const DWORD64 before = context.Rsp;
        RtlVirtualUnwind(UNW_FLAG_NHANDLER, base, context.Rip, function, &context, &handlerData,
                         &frame, nullptr);
        if (context.Rsp <= before) {
            break;
        }
    }
    return true;
}

void PrintFrame(DWORD64 address) {
    HMODULE module = nullptr;
    std::array<wchar_t, MAX_PATH> name{};
    if (GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            reinterpret_cast<const wchar_t*>(address), &module) == FALSE ||
        GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size() - 1)) == 0) {
        std::fprintf(stderr, "  0x%016llx\n", static_cast<unsigned long long>(address));
        return;
    }
    std::fprintf(stderr, "  %ls+0x%llx\n", name.data(),
                 static_cast<unsigned long long>(
                     address - static_cast<DWORD64>(reinterpret_cast<std::uintptr_t>(module))));
}

std::vector<DWORD> OtherThreads() {
    std::vector<DWORD> threads;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) {
        return threads;
    }
    THREADENTRY32 entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Thread32First(snapshot, &entry); more != FALSE;
         more = Thread32Next(snapshot, &entry)) {
        if (entry.th32OwnerProcessID == GetCurrentProcessId() &&
            entry.th32ThreadID != GetCurrentThreadId()) {
            threads.push_back(entry.th32ThreadID);
        }
    }
    CloseHandle(snapshot);
    return threads;
}

}  // namespace

void PrepareThreadStacks() {
}

void PrintThreadStacks() {
    for (const DWORD id : OtherThreads()) {
        std::fprintf(stderr, "--- thread %lu\n", static_cast<unsigned long>(id));
        std::fflush(stderr);
        Stack stack;
        bool known = false;
        const HANDLE thread = OpenThread(
            THREAD_SUSPEND_RESUME | THREAD_GET_CONTEXT | THREAD_QUERY_INFORMATION, FALSE, id);
        if (thread != nullptr) {
            if (SuspendThread(thread) != static_cast<DWORD>(-1)) {
                known = Unwind(thread, stack);
                ResumeThread(thread);
            }
            CloseHandle(thread);
        }
        if (!known) {
            std::fprintf(stderr, "(it did not answer)\n");
            continue;
        }
        for (std::size_t i = 0; i < stack.count; ++i) {
            PrintFrame(stack.frames[i]);
        }
    }
}

}  // namespace Mirqos::Test
