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
