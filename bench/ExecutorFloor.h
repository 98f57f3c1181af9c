#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Mirqos::Bench {

/// The least that hands tasks over to threads and holds a submitter back while as many tasks wait
/// as there are threads: a queue, a lock and two conditions to wait for.
class ExecutorFloor {
public:
    explicit ExecutorFloor(std::size_t threads);
    /// Runs what was submitted, then ends the threads.
    ~ExecutorFloor();
    ExecutorFloor(const ExecutorFloor&) = delete;
    ExecutorFloor& operator=(const ExecutorFloor&) = delete;

    void Submit(std::function<void()> task);

private:
    void Run();

    std::mutex m_mutex;
    std::condition_variable m_notFull;
    std::condition_variable m_notEmpty;
    std::deque<std::function<void()>> m_tasks;
    bool m_ending = false;
    std::vector<std::thread> m_threads;
};

}  // namespace Mirqos::Bench
