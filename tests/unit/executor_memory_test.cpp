#include <gtest/gtest.h>

#include <new>

#include "exec/AwsS3BackupExecutor.h"
#include "tests/support/FailingAllocation.h"

namespace {

using Mirqos::Test::FailingAllocation;

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

}  // namespace
