#include <gtest/gtest.h>

#include <string>

#include "platform/text.h"

namespace {

using Mirqos::NarrowText;
using Mirqos::WidenText;

TEST(Utf8Text, EveryLengthOfSequenceIsConvertedBothWays) {
    // the first and last code point of each length, around the surrogates too
    const std::wstring wide = L"\x7f\x80\x7ff\x800\xd7ff\xe000\xffff\U00010000\U0010ffff";
    const std::string narrow =
        "\x7f\xc2\x80\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbf"
        "\xf0\x90\x80\x80\xf4\x8f\xbf\xbf";
    EXPECT_EQ(NarrowText(wide.c_str()), narrow);
    EXPECT_EQ(WidenText(narrow.c_str()), wide);
}

TEST(Utf8Text, BytesThatAreNoTextBecomeReplacementsAndTheRestSurvives) {
    EXPECT_EQ(WidenText("a\x80z"), L"a\xfffdz");            // continuation without a lead
    EXPECT_EQ(WidenText("a\xe2\x82z"), L"a\xfffd\xfffdz");  // cut in the middle
    EXPECT_EQ(WidenText("a\xe2\x82"), L"a\xfffd\xfffd");    // cut at the end
    EXPECT_EQ(WidenText("\xc0\xaf"), L"\xfffd\xfffd");      // longer than needed
    EXPECT_EQ(WidenText("\xe0\x80\xaf"), L"\xfffd\xfffd\xfffd");
    EXPECT_EQ(WidenText("\xed\xa0\x80"), L"\xfffd\xfffd\xfffd");            // a surrogate
    EXPECT_EQ(WidenText("\xf4\x90\x80\x80"), L"\xfffd\xfffd\xfffd\xfffd");  // beyond the last
    EXPECT_EQ(WidenText("\xff"), L"\xfffd");
}

TEST(Utf8Text, WideValuesThatAreNoCodePointsBecomeReplacements) {
    const wchar_t wide[] = {L'a', wchar_t{0xD800}, wchar_t{0x110000}, L'z', 0};
    EXPECT_EQ(NarrowText(wide), "a\xef\xbf\xbd\xef\xbf\xbdz");
}

}  // namespace
