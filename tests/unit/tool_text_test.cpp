#include "tools/mirqos/Text.h"

#include <gtest/gtest.h>

#include <limits>

namespace Mirqos::Tool {
namespace {

TEST(ToolText, SizesAreRoundedToOneDecimalOfABinaryUnit) {
    EXPECT_EQ(FormatSize(0), "0 B");
    EXPECT_EQ(FormatSize(1023), "1023 B");
    EXPECT_EQ(FormatSize(1024), "1.0 KiB");
    EXPECT_EQ(FormatSize(1536), "1.5 KiB");
    EXPECT_EQ(FormatSize(1024 + 972), "1.9 KiB");
    EXPECT_EQ(FormatSize(20U * 1024 * 1024), "20.0 MiB");
    EXPECT_EQ(FormatSize(std::uint64_t{5} << 30U), "5.0 GiB");
}

TEST(ToolText, ASizeThatRoundsToAFullUnitTakesTheNextUnit) {
    EXPECT_EQ(FormatSize(1024 * 1024 - 1), "1.0 MiB");
    EXPECT_EQ(FormatSize((std::uint64_t{1} << 40U) - 1), "1.0 TiB");
}

TEST(ToolText, TheLargestSizeDoesNotOverflow) {
    EXPECT_EQ(FormatSize(std::numeric_limits<std::uint64_t>::max()), "16.0 EiB");
}

TEST(ToolText, DurationsShowHoursOnlyWhereThereAreSome) {
    EXPECT_EQ(FormatDuration(0), "0:00");
    EXPECT_EQ(FormatDuration(59), "0:59");
    EXPECT_EQ(FormatDuration(61), "1:01");
    EXPECT_EQ(FormatDuration(3599), "59:59");
    EXPECT_EQ(FormatDuration(3600), "1:00:00");
    EXPECT_EQ(FormatDuration(100 * 3600 + 62), "100:01:02");
}

TEST(ToolText, NumbersAreDecimalDigitsWithinTheBoundsAndNothingElse) {
    EXPECT_EQ(ParseNumber("0", 0, 9), 0U);
    EXPECT_EQ(ParseNumber("18446744073709551615", 0, UINT64_MAX), UINT64_MAX);
    for (const char* const wrong :
         {"", " 1", "1 ", "-1", "+1", "0x1", "1.0", "1k", "10", "18446744073709551616"}) {
        EXPECT_FALSE(ParseNumber(wrong, 0, 9)) << wrong;
    }
    EXPECT_FALSE(ParseNumber("3", 4, 9));
}

TEST(ToolText, Utf8IsCheckedToTheLetter) {
    for (const char* const right : {"", "plain", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                                    "\xF4\x8F\xBF\xBF", "\xEE\x80\x80"}) {
        EXPECT_TRUE(IsUtf8(right)) << right;
    }
    for (const char* const wrong :
         {"\x80", "\xC3", "\xC3(", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80",
          "\xF8\x88\x80\x80\x80", "\xFF", "a\xE2\x82"}) {
        EXPECT_FALSE(IsUtf8(wrong));
    }
}

TEST(ToolText, CharactersAreCountedAndCutWhole) {
    const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z";
    EXPECT_EQ(CountCharacters(text), 5U);
    EXPECT_EQ(LastCharacters(text, 1), "z");
    EXPECT_EQ(LastCharacters(text, 2), "\xF0\x9F\x98\x80z");
    EXPECT_EQ(LastCharacters(text, 5), text);
    EXPECT_EQ(LastCharacters(text, 50), text);
    EXPECT_EQ(LastCharacters(text, 0), "");
}

TEST(ToolText, ControlCharactersNeverReachTheTerminal) {
    EXPECT_EQ(Printable("a\x1b[31mb\nc\x7f"), "a?[31mb?c?");
    EXPECT_EQ(Printable("\xC2\x9B"
                        "1m"),
              "?1m");
    EXPECT_EQ(Printable("\xC2\xA9 \xC3\xA4"), "\xC2\xA9 \xC3\xA4");
    EXPECT_EQ(Printable("x\xFFy"), "x?y");
}

TEST(ToolText, ForeignBytesAreEscapedSoThatItCanBeUndone) {
    EXPECT_EQ(EscapeForeignBytes("a\xFF"
                                 "b\\xFF\xC3\xA4"),
              "a\\xFFb\\\\xFF\xC3\xA4");
    EXPECT_EQ(EscapeForeignBytes("\xE2\x82"), "\\xE2\\x82");
    EXPECT_EQ(EscapeForeignBytes(""), "");
}

TEST(ToolText, PaddingNeverCuts) {
    EXPECT_EQ(PadLeft("12", 4), "  12");
    EXPECT_EQ(PadLeft("12345", 4), "12345");
}

}  // namespace
}  // namespace Mirqos::Tool
