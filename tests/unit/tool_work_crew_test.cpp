#include "tools/mirqos/WorkCrew.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <vector>

namespace Mirqos::Tool {
namespace {

/// Workers wait in it until as many as are expected have come.
class Gate {
public:
    explicit Gate(int expected) : m_expected(expected) {}
    void Pass() {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (++m_come == m_expected) {
            m_all.notify_all();
        }
        m_all.wait(lock, [&] { return m_come >= m_expected; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_all;
    int m_come = 0;
    const int m_expected;
};

TEST(ToolWorkCrew, EveryPieceIsDoneOnce) {
    for (const unsigned threads : {1U, 4U, 16U}) {
        for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{100}}) {
            std::vector<std::atomic<int>> done(count);
            DoAll(count, threads, [&]() -> Worker { return [&](std::size_t i) { ++done[i]; }; });
            for (const auto& times : done) {
                EXPECT_EQ(times, 1);
            }
        }
    }
}

TEST(ToolWorkCrew, AsManyWorkAtATimeAsThereAreThreads) {
    Gate gate(4);
    std::atomic<int> workers{0};
    DoAll(4, 4, [&]() -> Worker {
        ++workers;
        return [&](std::size_t) { gate.Pass(); };
    });
    EXPECT_EQ(workers, 4);
}

TEST(ToolWorkCrew, NoMoreWorkersAreMadeThanThereAreThreads) {
    std::atomic<int> workers{0};
    DoAll(50, 3, [&]() -> Worker {
        ++workers;
        return [](std::size_t) {};
    });
    EXPECT_LE(workers, 3);
    EXPECT_GE(workers, 1);
}

TEST(ToolWorkCrew, AFailureEndsTheWorkAndComesOut) {
    std::atomic<int> done{0};
    EXPECT_THROW(DoAll(1000, 1,
                       [&]() -> Worker {
                           return [&](std::size_t i) {
                               ++done;
                               if (i == 2) {
                                   throw std::runtime_error("the third");
                               }
                           };
                       }),
                 std::runtime_error);
    EXPECT_EQ(done, 3);
    EXPECT_THROW(DoAll(10, 4, []() -> Worker { throw std::runtime_error("no worker"); }),
                 std::runtime_error);
}

}  // namespace
}  // namespace Mirqos::Tool
