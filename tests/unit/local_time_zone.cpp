#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>

#include "platform/local_time.h"

// Runs in a time zone of its own, in which clocks are 5 hours and 45 minutes ahead of UTC.

namespace {

constexpr std::int64_t kAhead = (5 * 60 + 45) * 60;  // s

std::int64_t SecondsSince1970() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// Of the Gregorian calendar: a year counts from March here, so that a leap day is its last.
std::int64_t DaysSince1970(int year, int month, int day) {
    const std::int64_t years = month > 2 ? year : year - 1;
    const std::int64_t months = month > 2 ? month - 3 : month + 9;
    return 365 * years + years / 4 - years / 100 + years / 400 + (153 * months + 2) / 5 + day - 1 -
           719468;
}

TEST(LocalTimeZone, TheTimeIsThatOfTheZone) {
    ASSERT_EQ(DaysSince1970(1970, 1, 1), 0);
    ASSERT_EQ(DaysSince1970(2024, 3, 1), 19783);
    const std::int64_t before = SecondsSince1970();
    const Mirqos::LocalTime now = Mirqos::CurrentLocalTime();
    const std::int64_t after = SecondsSince1970();
    const std::int64_t shown =
        ((DaysSince1970(now.year, now.month, now.day) * 24 + now.hour) * 60 + now.minute) * 60 +
        now.second - kAhead;
    EXPECT_GE(shown, before - 1);  // the two clocks need not tick together
    EXPECT_LE(shown, after + 1);
}

}  // namespace
