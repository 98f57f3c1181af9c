#include "tools/mirqos/InterruptWatch.h"

#include <windows.h>

#include <exception>
#include <mutex>
#include <utility>

namespace Mirqos::Tool {

/// Nothing: the system's list of handlers is the state.
struct InterruptWatch::State {};

namespace {

// The system calls a plain function on a new thread; it has no argument to carry the object in.
std::mutex g_mutex;
std::function<void()> g_onInterrupt;

BOOL WINAPI Handle(DWORD) {
    // under the lock: what the function uses stays until it has returned
    const std::lock_guard<std::mutex> lock(g_mutex);
    if (g_onInterrupt) {
        g_onInterrupt();
    }
    return TRUE;
}

}  // namespace

InterruptWatch::InterruptWatch(std::function<void()> onInterrupt) {
    {
        const std::lock_guard<std::mutex> lock(g_mutex);
        g_onInterrupt = std::move(onInterrupt);
    }
    SetConsoleCtrlHandler(&Handle, TRUE);
}

InterruptWatch::~InterruptWatch() {
    SetConsoleCtrlHandler(&Handle, FALSE);
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_onInterrupt = nullptr;
}

void EndProcess(int code) {
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    // termination of the own process does not return
    std::terminate();
}

}  // namespace Mirqos::Tool
