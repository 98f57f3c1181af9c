#include "log/dbg/LinePrefix.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <string>

#include "platform/process.h"

namespace {

using Mirqos::LinePrefix;

constexpr std::size_t kRoom = 256;

LinePrefix Prefix(int errorCode) {
    return {{2024, 3, 9, 7, 5, 1, 42}, 1, 321, 98765, errorCode};
}

std::string Text(const LinePrefix& prefix) {
    char text[kRoom];
    const int result = FormatLinePrefix(text, sizeof(text), prefix);
    EXPECT_EQ(result, static_cast<int>(std::string(text).size()));
    return text;
}

TEST(LinePrefix, WithoutAnErrorCode13BlanksTakeItsPlace) {
    EXPECT_EQ(Text(Prefix(0)), "[2024/03/09 07:05:01:042   01   00321   98765             ] ");
}

TEST(LinePrefix, AnErrorCodeIsPrintedInHexadecimal) {
    EXPECT_EQ(Text(Prefix(0x1f)), "[2024/03/09 07:05:01:042   01   00321   98765   0X0000001f] ");
    EXPECT_EQ(Text(Prefix(-1)), "[2024/03/09 07:05:01:042   01   00321   98765   0Xffffffff] ");
}

TEST(LinePrefix, BothFormsAreEquallyLong) {
    EXPECT_EQ(Text(Prefix(0)).size(), Text(Prefix(5)).size());
}

TEST(LinePrefix, NumbersWiderThanTheirColumnsKeepAllTheirDigits) {
    EXPECT_EQ(Text({{10000, 12, 31, 23, 59, 60, 999}, 100, 123456, 2147483647, 0}),
              "[10000/12/31 23:59:60:999   100   123456   2147483647             ] ");
    EXPECT_EQ(Text({{999, 1, 1, 0, 0, 0, 0}, -1, 0, 1, 0}),
              "[ 999/01/01 00:00:00:000   -1   00000   00001             ] ");
}

TEST(LinePrefix, TheWidestNumbersFit) {
    const LinePrefix widest = {
        {INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN}, INT_MIN, 1, 1, INT_MIN};
    EXPECT_EQ(Text(widest),
              "[-2147483648/-2147483648/-2147483648 -2147483648:-2147483648:-2147483648:-2147483648"
              "   -2147483648   00001   00001   0X80000000] ");
}

TEST(LinePrefix, ACutPrefixSaysSo) {
    char text[10];
    EXPECT_EQ(FormatLinePrefix(text, sizeof(text), Prefix(0)), -1);
    EXPECT_STREQ(text, "[2024/03/");
}

TEST(LinePrefix, TheCurrentPrefixNamesThisProcessAndThread) {
    const LinePrefix prefix = Mirqos::CurrentLinePrefix(2, 7);
    EXPECT_EQ(prefix.processId, Mirqos::CurrentProcessId());
    EXPECT_EQ(prefix.threadId, Mirqos::CurrentThreadId());
    EXPECT_EQ(prefix.level, 2);
    EXPECT_EQ(prefix.errorCode, 7);
    EXPECT_GE(prefix.time.year, 2024);
}

}  // namespace
