#include "platform/process.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace Mirqos {

std::uint32_t CurrentProcessId() {
    return static_cast<std::uint32_t>(getpid());
}

std::uint32_t CurrentThreadId() {
    return static_cast<std::uint32_t>(gettid());
}

void EndProcess(const char* reason) {
    std::fprintf(stderr, "%s\n", reason);
    std::fflush(stderr);
    std::signal(SIGABRT, SIG_DFL);  // a handler of the host must not come back here
    raise(SIGABRT);
    _exit(134);  // only where the signal is blocked
}

}  // namespace Mirqos
