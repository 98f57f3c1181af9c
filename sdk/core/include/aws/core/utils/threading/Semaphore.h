#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace Aws::Utils::Threading {

/// A counting semaphore. All members may be called from any number of threads at once.
class Semaphore {
public:
    /// `initialCount` is at most `maxCount`.
    Semaphore(std::size_t initialCount, std::size_t maxCount);

    /// Waits until the count is above 0 and takes one from it.
    void WaitOne();
    /// Adds one, unless the count is at its maximum, and lets one waiter go on.
    void Release();
    /// Sets the count to its maximum and lets as many waiters go on.
    void ReleaseAll();

private:
    std::mutex m_mutex;
    std::condition_variable m_released;
    std::size_t m_count;
    const std::size_t m_maxCount;
};

}  // namespace Aws::Utils::Threading
