#include "tests/support/Gate.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>
#include <vector>

namespace Mirqos::Test {

struct Gate::State {
    std::mutex mutex;
    std::condition_variable changed;
    bool open = false;
    int permits = 0;
    int reached = 0;
    std::deque<std::function<void()>> waiting;
};

Gate::Gate() : m_state(std::make_shared<State>()) {
}

void Gate::Open() const {
    std::deque<std::function<void()>> released;
    {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->open = true;
        released.swap(m_state->waiting);
        m_state->changed.notify_all();
    }
    for (const std::function<void()>& go : released) {
        go();
    }
}

void Gate::Allow(int count) const {
    std::vector<std::function<void()>> released;
    {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->permits += count;
        while (m_state->permits > 0 && !m_state->waiting.empty()) {
            released.push_back(std::move(m_state->waiting.front()));
            m_state->waiting.pop_front();
            --m_state->permits;
        }
    }
    for (const std::function<void()>& go : released) {
        go();
    }
}

int Gate::Reached() const {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->reached;
}

bool Gate::WaitUntilReached(int count) const {
    std::unique_lock<std::mutex> lock(m_state->mutex);
    return m_state->changed.wait_for(lock, std::chrono::seconds(30),
                                     [&] { return m_state->reached >= count; });
}

void Gate::Pass() const {
    struct Latch {
        std::mutex mutex;
        std::condition_variable changed;
        bool through = false;
    };
    const auto latch = std::make_shared<Latch>();
    PassThen([latch] {
        const std::lock_guard<std::mutex> lock(latch->mutex);
        latch->through = true;
        latch->changed.notify_all();
    });
    std::unique_lock<std::mutex> lock(latch->mutex);
    latch->changed.wait(lock, [&] { return latch->through; });
}

void Gate::PassThen(std::function<void()> go) const {
    {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        ++m_state->reached;
        m_state->changed.notify_all();
        if (!m_state->open) {
            if (m_state->permits == 0) {
                m_state->waiting.push_back(std::move(go));
                return;
            }
            --m_state->permits;
        }
    }
    go();
}

}  // namespace Mirqos::Test
