#include "platform/process.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/local_time.h"

namespace {

TEST(Process, EachRunningThreadHasANumberOfItsOwn) {
    const std::uint32_t mine = Mirqos::CurrentThreadId();
    std::uint32_t others = 0;
    std::thread([&others] { others = Mirqos::CurrentThreadId(); }).join();
    EXPECT_NE(mine, 0u);
    EXPECT_NE(others, 0u);
    EXPECT_NE(mine, others);
    EXPECT_EQ(mine, Mirqos::CurrentThreadId());
}

TEST(Process, AllThreadsShareTheProcessNumber) {
    std::uint32_t others = 0;
    std::thread([&others] { others = Mirqos::CurrentProcessId(); }).join();
    EXPECT_NE(others, 0u);
    EXPECT_EQ(others, Mirqos::CurrentProcessId());
}

TEST(ProcessDeathTest, EndProcessSaysWhyAndEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(Mirqos::EndProcess("the reason"), "the reason");
}

TEST(LocalTime, EveryFieldIsInItsRange) {
    const Mirqos::LocalTime now = Mirqos::CurrentLocalTime();
    EXPECT_GE(now.year, 2024);
    EXPECT_TRUE(now.month >= 1 && now.month <= 12) << now.month;
    EXPECT_TRUE(now.day >= 1 && now.day <= 31) << now.day;
    EXPECT_TRUE(now.hour >= 0 && now.hour <= 23) << now.hour;
    EXPECT_TRUE(now.minute >= 0 && now.minute <= 59) << now.minute;
    EXPECT_TRUE(now.second >= 0 && now.second <= 60) << now.second;
    EXPECT_TRUE(now.millisecond >= 0 && now.millisecond <= 999) << now.millisecond;
}

}  // namespace
