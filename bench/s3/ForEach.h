#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Mirqos::Bench {

/// Calls `work(worker, index)` for each index below `count`, on a thread for each worker, which
/// takes the next index that nobody has. What is thrown there is thrown here, after all threads
/// ended.
template <typename Workers, typename Work>
void ForEach(Workers& workers, int count, Work work) {
    std::atomic<int> next{0};
    std::exception_ptr failure;
    std::mutex guard;
    const auto run = [&](auto& worker) {
        try {
            for (int index = next++; index < count; index = next++) {
                work(worker, index);
            }
        } catch (...) {
            const std::lock_guard<std::mutex> lock(guard);
            failure = std::current_exception();
        }
    };
    std::vector<std::thread> threads;
    for (auto& worker : workers) {
        threads.emplace_back([&run, &worker] { run(worker); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

}  // namespace Mirqos::Bench
