#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace Mirqos::Test {

/// Ends a hung test program: when the limit passes before the watchdog is destroyed, it prints the
/// stack of every thread and ends the process with kExitCode, running no destructor.
class Watchdog {
public:
    static constexpr int kExitCode = 86;

    /// `describe` tells, on the watchdog's thread, what was going on; it may be empty.
    Watchdog(std::chrono::milliseconds limit, std::function<std::string()> describe);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// The limit that `text` asks for, the value of MIRQOS_TEST_LIMIT_SECONDS: a whole number of
    /// seconds above 0; 240 s when it is null or no such number.
    static std::chrono::seconds LimitOf(const char* text);

private:
    void Run(std::chrono::milliseconds limit, const std::function<std::string()>& describe);

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    std::thread m_thread;
};

}  // namespace Mirqos::Test
