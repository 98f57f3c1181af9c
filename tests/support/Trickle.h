#pragma once

#include <chrono>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <string>

#include "tests/support/RawServer.h"

namespace Mirqos::Test {

/// Lets a server send some bytes now and then until the test has seen enough: a trickle needs time
/// to pass, and nothing depends on how much.
class Trickle {
public:
    /// At least 10 ms for each of `times`.
    void Run(RawServer::Connection& connection, const std::string& bytes,
             int times = std::numeric_limits<int>::max()) {
        std::unique_lock lock(m_mutex);
        for (int i = 0; i < times && !m_stop; ++i) {
            lock.unlock();
            connection.Send(bytes);
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
