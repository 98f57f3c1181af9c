#include <gtest/gtest.h>

#include <csignal>

#include "platform/process.h"

namespace {

TEST(ProcessEndDeathTest, IsASignalThatNoHandlerOfTheHostHolds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::signal(SIGABRT, [](int) {});
            Mirqos::EndProcess("ended");
        },
        testing::KilledBySignal(SIGABRT), "ended");
}

}  // namespace
