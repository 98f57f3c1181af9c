#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

#include "exec/AwsS3BackupExecutor.h"
#include "tests/support/RecordingOutput.h"

namespace {

class OpenExecutor : public AwsS3BackupExecutor {
public:
    using AwsS3BackupExecutor::SubmitToThread;
};

// The largest value that was ever reached.
class Peak {
public:
    void Enter() {
        const int now = ++m_now;
        int highest = m_highest;
        while (highest < now && !m_highest.compare_exchange_weak(highest, now)) {
        }
    }
    void Leave() { --m_now; }
    int Highest() const { return m_highest; }

private:
    std::atomic<int> m_now{0};
    std::atomic<int> m_highest{0};
};

TEST(ExecutorStress, EveryTaskOfManySubmittersRunsOnceWithinTheBounds) {
    Mirqos::Test::LogRecording log;
    constexpr std::size_t kSubmitters = 4;
    constexpr std::size_t kTasks = 500;
    for (const int threads : {1, 2, 3, 8}) {
        std::vector<std::atomic<int>> runs(kSubmitters * kTasks);
        Peak running;
        {
            OpenExecutor executor;
            ASSERT_EQ(executor.Start(threads), 0);
            std::vector<std::thread> submitters;
            submitters.reserve(kSubmitters);
            for (std::size_t submitter = 0; submitter < kSubmitters; ++submitter) {
                submitters.emplace_back([&, submitter] {
                    for (std::size_t task = 0; task < kTasks; ++task) {
                        const std::size_t index = submitter * kTasks + task;
                        executor.SubmitToThread([&, index] {
                            running.Enter();
                            ++runs[index];
                            running.Leave();
                        });
                    }
                });
            }
            for (std::thread& submitter : submitters) {
                submitter.join();
            }
        }
        EXPECT_LE(running.Highest(), threads);
        EXPECT_TRUE(std::all_of(runs.begin(), runs.end(), [](const auto& n) { return n == 1; }));
    }
}

TEST(ExecutorStress, OneThreadKeepsTheOrderOfEachSubmitter) {
    Mirqos::Test::LogRecording log;
    constexpr int kSubmitters = 4;
    constexpr int kTasks = 500;
    std::vector<int> next(kSubmitters, 0);  // written by the one worker, read after its end
    int outOfOrder = 0;
    {
        OpenExecutor executor;
        ASSERT_EQ(executor.Start(1), 0);
        std::vector<std::thread> submitters;
        submitters.reserve(kSubmitters);
        for (std::size_t submitter = 0; submitter < kSubmitters; ++submitter) {
            submitters.emplace_back([&, submitter] {
                for (int task = 0; task < kTasks; ++task) {
                    executor.SubmitToThread([&, submitter, task] {
                        outOfOrder += next[submitter] == task ? 0 : 1;
                        next[submitter] = task + 1;
                    });
                }
            });
        }
        for (std::thread& submitter : submitters) {
            submitter.join();
        }
    }
    EXPECT_EQ(outOfOrder, 0);
    EXPECT_EQ(next, std::vector<int>(kSubmitters, kTasks));
}

TEST(ExecutorStress, ManyShortLivesLoseNoTask) {
    Mirqos::Test::LogRecording log;
    std::atomic<int> ran{0};
    int submitted = 0;
    constexpr int kLives = 300;
    std::size_t threads = 0;
    for (int life = 0; life < kLives; ++life) {
        OpenExecutor executor;
        const int count = 1 + life % 4;
        ASSERT_EQ(executor.Start(count), 0);
        threads += static_cast<std::size_t>(count);
        for (int task = 0; task < life % 12; ++task, ++submitted) {
            executor.SubmitToThread([&ran] { ++ran; });
        }
    }
    EXPECT_EQ(ran, submitted);
    EXPECT_EQ(log.CountContaining("is started."), threads);
    EXPECT_EQ(log.CountContaining("is existed."), threads);
}

}  // namespace
