#include "log/dbg/WideText.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <string>

namespace {

using namespace LOGUTILS;

constexpr WideChar kUnused{'#'};

template <std::size_t kSize>
void Fill(WideChar (&room)[kSize]) {
    std::char_traits<WideChar>::assign(room, kSize, kUnused);
}

TEST(WideText, AUnitHas16BitsOnEveryPlatform) {
    EXPECT_EQ(sizeof(WideChar), 2u);
}

TEST(WideText, AsciiIsWidenedUnitByUnit) {
    const WideString expected = {WideChar{'a'}, WideChar{'~'}, WideChar{' '}};
    EXPECT_EQ("a~ "_w, expected);
    EXPECT_EQ(WidenAscii("a~ "), expected);
    EXPECT_EQ(""_w, WideString());
}

TEST(WideText, NumbersAreWrittenInDecimal) {
    EXPECT_EQ(Decimal(0), "0"_w);
    EXPECT_EQ(Decimal(4294967295), "4294967295"_w);
    EXPECT_EQ(Decimal(-1), "-1"_w);
    EXPECT_EQ(Decimal(LLONG_MIN), "-9223372036854775808"_w);
}

TEST(WideText, EveryAsciiLetterHasItsUpperCaseAndNothingElseChanges) {
    for (int c = 1; c < 128; ++c) {
        const int expected = c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c;
        EXPECT_EQ(UpperCase(WideString(1, static_cast<WideChar>(c))),
                  WideString(1, static_cast<WideChar>(expected)))
            << c;
    }
}

TEST(WideText, UpperCaseKeepsTheLengthOfWhateverItIsGiven) {
    const WideString text = {WideChar{0xDF},   WideChar{0xD83D}, WideChar{0xDE00},
                             WideChar{0xFFFF}, WideChar{0},      WideChar{0x149}};
    EXPECT_EQ(UpperCase(text).size(), text.size());
    EXPECT_EQ(UpperCase(WideView()), WideString());
}

TEST(WideText, LetterCaseIsIgnoredAndNothingElse) {
    EXPECT_TRUE(EqualIgnoringCase("MiRqOs.DLL"_w, "mirqos.dll"_w));
    EXPECT_TRUE(EqualIgnoringCase(WideView(), WideView()));
    EXPECT_FALSE(EqualIgnoringCase("mirqos.dll"_w, "mirqos.dl"_w));
    EXPECT_FALSE(EqualIgnoringCase("mirqos.dl"_w, "mirqos.dll"_w));
    EXPECT_FALSE(EqualIgnoringCase("a@"_w, "a`"_w));
    EXPECT_FALSE(EqualIgnoringCase("a["_w, "a{"_w));
    EXPECT_FALSE(EqualIgnoringCase("a\\b"_w, "a/b"_w));
    EXPECT_FALSE(EqualIgnoringCase(WideString(1, WideChar{0x161}), "a"_w));  // 0x61 is 'a'
}

TEST(WideText, BeginningsAndEndingsIgnoreLetterCase) {
    EXPECT_TRUE(BeginsWithIgnoringCase("C:\\Program Files\\x"_w, "c:\\PROGRAM"_w));
    EXPECT_TRUE(BeginsWithIgnoringCase("abc"_w, "ABC"_w));
    EXPECT_TRUE(BeginsWithIgnoringCase("abc"_w, ""_w));
    EXPECT_FALSE(BeginsWithIgnoringCase("abc"_w, "abcd"_w));
    EXPECT_FALSE(BeginsWithIgnoringCase("abc"_w, "bc"_w));

    EXPECT_TRUE(EndsWithIgnoringCase("a.dll.LOG"_w, ".Log"_w));
    EXPECT_TRUE(EndsWithIgnoringCase(".log"_w, ".Log"_w));
    EXPECT_TRUE(EndsWithIgnoringCase("abc"_w, ""_w));
    EXPECT_FALSE(EndsWithIgnoringCase("log"_w, ".Log"_w));
    EXPECT_FALSE(EndsWithIgnoringCase("a.logs"_w, ".Log"_w));
}

TEST(WideText, ATextIsReadUpToItsFirstNul) {
    const WideChar room[6] = {WideChar{'a'}, WideChar{'b'}, WideChar{}, WideChar{'c'}};
    EXPECT_EQ(TextIn(room), "ab"_w);
    const WideChar empty[4] = {};
    EXPECT_TRUE(TextIn(empty).empty());
}

TEST(WideText, ATextWithoutNulIsItsWholeRoom) {
    struct {
        WideChar text[4] = {WideChar{'a'}, WideChar{'b'}, WideChar{'c'}, WideChar{'d'}};
        WideChar next[2] = {WideChar{'x'}, WideChar{}};
    } damaged;
    EXPECT_EQ(TextIn(damaged.text), "abcd"_w);
    EXPECT_EQ(TextIn(damaged.next), "x"_w);
}

TEST(WideText, APutTextIsPaddedWithZerosToTheEndOfItsRoom) {
    struct {
        WideChar text[5];
        WideChar next[2];
    } block;
    Fill(block.text);
    Fill(block.next);
    PutText(block.text, "ab"_w);
    const WideString expected = {WideChar{'a'}, WideChar{'b'}, WideChar{}, WideChar{}, WideChar{}};
    EXPECT_EQ(WideString(block.text, 5), expected);
    EXPECT_EQ(WideString(block.next, 2), WideString(2, kUnused));

    PutText(block.text, WideView());
    EXPECT_EQ(WideString(block.text, 5), WideString(5, WideChar{}));
}

TEST(WideText, APutTextIsCutBeforeTheTerminator) {
    struct {
        WideChar text[4];
        WideChar next[2];
    } block;
    for (const char* text : {"abc", "abcd", "abcde"}) {
        Fill(block.text);
        Fill(block.next);
        PutText(block.text, WidenAscii(text));
        EXPECT_EQ(TextIn(block.text), "abc"_w) << text;
        EXPECT_EQ(block.text[3], WideChar{}) << text;
        EXPECT_EQ(WideString(block.next, 2), WideString(2, kUnused)) << text;
    }
}

}  // namespace
