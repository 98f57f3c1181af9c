#include <aws/core/utils/threading/Semaphore.h>

#include <cassert>

namespace Aws::Utils::Threading {

Semaphore::Semaphore(std::size_t initialCount, std::size_t maxCount)
    : m_count(initialCount), m_maxCount(maxCount) {
    assert(initialCount <= maxCount);
}

void Semaphore::WaitOne() {
    std::unique_lock lock(m_mutex);
    m_released.wait(lock, [this] { return m_count > 0; });
    --m_count;
}

// Both notify while they hold the lock: with MinGW a notification without it can be lost.
void Semaphore::Release() {
    const std::lock_guard lock(m_mutex);
    if (m_count < m_maxCount) {
        ++m_count;
    }
    m_released.notify_one();
}

void Semaphore::ReleaseAll() {
    const std::lock_guard lock(m_mutex);
    m_count = m_maxCount;
    m_released.notify_all();
}

}  // namespace Aws::Utils::Threading
