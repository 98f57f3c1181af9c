#include "bench/ExecutorFloor.h"

#include <utility>

namespace Mirqos::Bench {

ExecutorFloor::ExecutorFloor(std::size_t threads) {
    m_threads.reserve(threads);
    for (std::size_t n = 0; n < threads; ++n) {
        m_threads.emplace_back(&ExecutorFloor::Run, this);
    }
}

ExecutorFloor::~ExecutorFloor() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ending = true;
        m_notEmpty.notify_all();
    }
    for (std::thread& thread : m_threads) {
        thread.join();
    }
}

void ExecutorFloor::Submit(std::function<void()> task) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_notFull.wait(lock, [this] { return m_tasks.size() < m_threads.capacity(); });
    m_tasks.push_back(std::move(task));
    m_notEmpty.notify_one();
}

void ExecutorFloor::Run() {
    for (;;) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_notEmpty.wait(lock, [this] { return m_ending || !m_tasks.empty(); });
        if (m_tasks.empty()) {
            return;
        }
        const std::function<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        m_notFull.notify_one();
        lock.unlock();
        task();
    }
}

}  // namespace Mirqos::Bench
