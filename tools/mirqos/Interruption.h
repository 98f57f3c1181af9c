#pragma once

#include <functional>
#include <memory>

#include "tools/mirqos/InterruptWatch.h"

namespace Mirqos::Tool {

/// Ctrl-C, made gentle: the command notices at its next check point and ends by itself. Where it
/// does not within two seconds, because a request is under way, the clean-ups run and the process
/// ends with exit code 130. All members may be called from any thread.
class Interruption {
    struct State;

public:
    /// Undoes on an abrupt end what its scope would have undone on an ordinary one.
    class Cleanup {
    public:
        Cleanup(Cleanup&&) noexcept = default;
        Cleanup& operator=(Cleanup&&) = delete;
        ~Cleanup();

    private:
        friend class Interruption;
        Cleanup(std::shared_ptr<State> state, std::function<void()> action);
        std::shared_ptr<State> m_state;
        std::shared_ptr<std::function<void()>> m_action;
    };

    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    bool Requested() const;
    /// Throws Failure (Interrupted) when the user has asked for the end.
    void CheckPoint() const;
    /// `action` runs at most once, on another thread, and must not throw.
    [[nodiscard]] Cleanup OnAbruptEnd(std::function<void()> action);

private:
    std::shared_ptr<State> m_state;
    InterruptWatch m_watch;
};

}  // namespace Mirqos::Tool
