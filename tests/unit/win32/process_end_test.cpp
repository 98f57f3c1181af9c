#include <gtest/gtest.h>

#include <csignal>

#include "platform/process.h"

namespace {

TEST(ProcessEndDeathTest, GivesTheExitCodeOfABadArgumentWithoutAskingTheHost) {
    EXPECT_EXIT(
        {
            std::signal(SIGABRT, [](int) {});
            Mirqos::EndProcess("ended");
        },
        testing::ExitedWithCode(static_cast<int>(0xC0000417u)), "ended");
}

}  // namespace
