#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

namespace Mirqos::Soak {

/// What one thread did last. The thread writes, any thread may read.
class Journal {
public:
    void Begin(const std::string& what);
    void End(std::int32_t status);
    /// The last entries, the oldest first, a line each.
    std::string Text() const;

private:
    std::string Moment() const;

    const std::chrono::steady_clock::time_point m_began = std::chrono::steady_clock::now();
    mutable std::mutex m_mutex;
    std::deque<std::string> m_lines;
};

}  // namespace Mirqos::Soak
