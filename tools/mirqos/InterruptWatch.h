#pragma once

#include <functional>
#include <memory>

namespace Mirqos::Tool {

/// Calls a function on a thread of its own each time the user asks the program to end (Ctrl-C, and
/// what the system sends besides), instead of the program ending at once. One at a time in a
/// process; made before any other thread is started.
class InterruptWatch {
public:
    explicit InterruptWatch(std::function<void()> onInterrupt);
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;
    ~InterruptWatch();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// Ends the process at once: no destructors, no exit handlers.
[[noreturn]] void EndProcess(int code);

}  // namespace Mirqos::Tool
