#pragma once

#include <functional>
#include <memory>

namespace Mirqos::Test {

/// A gate at which a script waits until the test lets it on. Copies share one gate. Any thread may
/// call any member.
class Gate {
public:
    Gate();

    /// Lets everything through, now and later.
    void Open() const;
    /// Lets `count` more waits through: those already waiting, in their order, then later ones.
    void Allow(int count = 1) const;
    /// How many waits have come to the gate so far, passed or not.
    int Reached() const;
    /// Blocks until Reached() is at least `count`. False when that takes longer than half a minute.
    bool WaitUntilReached(int count = 1) const;

    /// Blocks the calling thread until the gate lets it through.
    void Pass() const;
    /// Calls `go` once the gate lets it through: at once on this thread, or later on the thread
    /// that opens the gate. A gate that never opens drops `go` with its last copy.
    void PassThen(std::function<void()> go) const;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

}  // namespace Mirqos::Test
