#include "tests/support/Watchdog.h"

#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <thread>

#include "tests/support/Gate.h"

namespace {

using Mirqos::Test::Gate;
using Mirqos::Test::Watchdog;
using testing::AllOf;
using testing::HasSubstr;

// Hangs two threads, so that there is more than one stack to print.
void HangTwoThreads() {
    const Watchdog watchdog(std::chrono::milliseconds(100), [] { return "the frozen test"; });
    const Gate never;
    std::thread other([&] { never.Pass(); });
    other.join();
}

TEST(WatchdogDeathTest, PrintsEveryStackOfAHungProgramAndFailsIt) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto twoStacksOfThisProgram = testing::Truly([](const std::string& text) {
        int stacks = 0;
        std::size_t at = text.find("--- thread ");
        while (at != std::string::npos) {
            const std::size_t next = text.find("--- thread ", at + 1);
            const std::string stack = text.substr(at, next - at);
            stacks += stack.find("unit.watchdog") != std::string::npos ? 1 : 0;
            at = next;
        }
        return stacks >= 2;
    });
    EXPECT_EXIT(HangTwoThreads(), testing::ExitedWithCode(Watchdog::kExitCode),
                AllOf(HasSubstr("the limit of 100 ms has passed in the frozen test"),
                      twoStacksOfThisProgram));
}

TEST(Watchdog, StaysSilentWhenItEndsBeforeTheLimit) {
    testing::internal::CaptureStderr();
    { const Watchdog watchdog(std::chrono::hours(1), {}); }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Watchdog, TakesItsLimitFromAWholeNumberOfSeconds) {
    using std::chrono::seconds;
    EXPECT_EQ(Watchdog::LimitOf("7"), seconds(7));
    EXPECT_EQ(Watchdog::LimitOf(nullptr), seconds(240));
    for (const char* text : {"", "0", "-3", "x", "7s", "1.5"}) {
        EXPECT_EQ(Watchdog::LimitOf(text), seconds(240)) << text;
    }
}

}  // namespace
