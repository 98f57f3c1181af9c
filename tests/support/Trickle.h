#pragma once

#include <chrono>
#include <condition_variable>
#include <limits>
#include <mutex>

namespace Mirqos::Test {

/// Lets a server do a little now and then until the test has seen enough: a trickle needs time to
/// pass, and nothing depends on how much.
class Trickle {
public:
    /// At least 10 ms for each of `times`.
    template <typename Step>
    void Run(Step step, int times = std::numeric_limits<int>::max()) {
        std::unique_lock lock(m_mutex);
        for (int i = 0; i < times && !m_stop; ++i) {
            lock.unlock();
            step();
            lock.lock();
            m_stopped.wait_for(lock, std::chrono::milliseconds(10), [this] { return m_stop; });
        }
    }

    void Stop() {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
        m_stopped.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_stopped;
    bool m_stop = false;
};

}  // namespace Mirqos::Test
