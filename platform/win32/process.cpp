#include "platform/process.h"

#include <windows.h>

#include <cstdio>

namespace Mirqos {

std::uint32_t CurrentProcessId() {
    return GetCurrentProcessId();
}

std::uint32_t CurrentThreadId() {
    return GetCurrentThreadId();
}

bool PinModule() {
    HMODULE module = nullptr;
    return GetModuleHandleExW(
               GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
               reinterpret_cast<LPCWSTR>(&PinModule), &module) != FALSE;
}

void EndProcess(const char* reason) {
    std::fprintf(stderr, "%s\n", reason);
    std::fflush(stderr);
    // Not abort(): in a program with windows it asks the user first, and a host can catch it. The
    // code is the one with which the runtime itself ends a process after a bad argument.
    constexpr UINT kInvalidRuntimeParameter = 0xC0000417;
    TerminateProcess(GetCurrentProcess(), kInvalidRuntimeParameter);
    for (;;) {
        Sleep(INFINITE);  // the process is gone before this returns
    }
}

}  // namespace Mirqos
