#include "tools/mirqos/WorkCrew.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace Mirqos::Tool {

namespace {

class Crew {
public:
    Crew(std::size_t count, const std::function<Worker()>& makeWorker)
        : m_count(count), m_makeWorker(makeWorker) {}

    void Run(unsigned threads) {
        std::vector<std::thread> helpers;
        const std::size_t useful = std::min<std::size_t>(threads, m_count);
        helpers.reserve(useful);
        try {
            while (helpers.size() + 1 < useful) {
                helpers.emplace_back([this] { Work(); });
            }
        } catch (const std::system_error&) {
            // fewer threads do the same work
        }
        Work();
        for (std::thread& helper : helpers) {
            helper.join();
        }
        if (m_error) {
            std::rethrow_exception(m_error);
        }
    }

private:
    void Work() {
        try {
            Worker work;
            for (std::size_t index = m_next++; index < m_count; index = m_next++) {
                if (!work) {
                    work = m_makeWorker();
                }
                work(index);
            }
        } catch (...) {
            m_next = m_count;
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_error = m_error ? m_error : std::current_exception();
        }
    }

    const std::size_t m_count;
    const std::function<Worker()>& m_makeWorker;
    std::atomic<std::size_t> m_next{0};
    std::mutex m_mutex;
    std::exception_ptr m_error;
};

}  // namespace

void DoAll(std::size_t count, unsigned threads, const std::function<Worker()>& makeWorker) {
    Crew(count, makeWorker).Run(threads);
}

}  // namespace Mirqos::Tool
