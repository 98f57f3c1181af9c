#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <thread>

#include "exec/AwsS3BackupExecutor.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/Gate.h"

namespace {

using Mirqos::Test::FailingAllocation;
using Mirqos::Test::Gate;

class OpenExecutor : public AwsS3BackupExecutor {
public:
    using AwsS3BackupExecutor::SubmitToThread;
};

constexpr std::size_t kQueueBlock = 512;  // what the queue is made of, with this standard library
constexpr int kEnough = 1000;             // tasks to need a second block

TEST(ExecutorMemory, ATaskThatFindsNoRoomIsThrownBackAndTakesNoPlace) {
    int run = 0;
    int taken = 0;
    bool thrown = false;
    {
        OpenExecutor executor;
        ASSERT_EQ(executor.Start(1), 0);
        while (!thrown && taken < kEnough) {
            try {
                const FailingAllocation none(kQueueBlock);
                executor.SubmitToThread([&run] { ++run; });
                ++taken;
            } catch (const std::bad_alloc&) {
                thrown = true;
            }
        }
        // with its only place lost, the executor would never take another one
        for (int i = 0; i < 3; ++i) {
            executor.SubmitToThread([&run] { ++run; });
            ++taken;
        }
    }
    EXPECT_TRUE(thrown);
    EXPECT_EQ(run, taken);
}

TEST(ExecutorMemory, ItsEndWaitsForTheMemoryToStopItsThreads) {
    constexpr int kThreads = 40;  // their stops fill more than one block
    auto executor = std::make_unique<OpenExecutor>();
    ASSERT_EQ(executor->Start(kThreads), 0);
    const Gate gate;
    for (int i = 0; i < kThreads; ++i) {
        executor->SubmitToThread([&gate] { gate.Pass(); });
    }
    ASSERT_TRUE(gate.WaitUntilReached(kThreads));
    std::thread end;
    {
        const FailingAllocation none(kQueueBlock);
        end = std::thread([&executor] { executor.reset(); });
        EXPECT_TRUE(none.WaitUntilFailed());
    }
    gate.Open();
    end.join();
    EXPECT_EQ(gate.Reached(), kThreads);
}

}  // namespace
