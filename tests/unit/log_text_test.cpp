#include "log/dbg/LogText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace LOGUTILS;

TEST(LogText, TheByteOrderMarkIsTheTwoBytesFfFe) {
    ASSERT_EQ(kByteOrderMark.size(), 2u);
    EXPECT_EQ(static_cast<unsigned char>(kByteOrderMark[0]), 0xFF);
    EXPECT_EQ(static_cast<unsigned char>(kByteOrderMark[1]), 0xFE);
}

TEST(LogText, OnlyAFileThatBeginsWithTheMarkIsUnicode) {
    EXPECT_TRUE(IsUnicodeFile({'\xFF', '\xFE'}));
    EXPECT_FALSE(IsUnicodeFile({'\xFE', '\xFF'}));
    EXPECT_FALSE(IsUnicodeFile({'\xFF', '\xFF'}));
    EXPECT_FALSE(IsUnicodeFile({'\xFF', '\0'}));
    EXPECT_FALSE(IsUnicodeFile({'\xEF', '\xBB'}));
    EXPECT_FALSE(IsUnicodeFile({'[', '2'}));
    EXPECT_FALSE(IsUnicodeFile({'\0', '\0'}));
}

TEST(LogText, EachUnitIsItsLowAndThenItsHighByte) {
    EXPECT_EQ(Utf16Bytes("a\r\n"_w), std::string("a\0\r\0\n\0", 6));
    const WideString text = {WideChar{0x20AC}, WideChar{0x00FF}, WideChar{0xFF00}};
    EXPECT_EQ(Utf16Bytes(text), std::string("\xAC\x20\xFF\x00\x00\xFF", 6));
    EXPECT_EQ(Utf16Bytes(WideString()), "");
}

TEST(LogText, NulsAndHalvesOfSurrogatePairsPassThrough) {
    const WideString text = {WideChar{0xD83D}, WideChar{0xDE00}, WideChar{0}, WideChar{0xDE00}};
    EXPECT_EQ(Utf16Bytes(text), std::string("\x3D\xD8\x00\xDE\x00\x00\x00\xDE", 8));
}

TEST(LogText, TheSourceTagNamesProcessLibraryBuildAndRevision) {
    EXPECT_EQ(SourceTag("host.exe"_w, "MIRQOS.dll"_w, 0x00070001),
              "   {host.exe::MIRQOS.dll(7.1)}"_w);
    EXPECT_EQ(SourceTag("host.exe"_w, "MIRQOS.dll"_w, 0xFFFFFFFF),
              "   {host.exe::MIRQOS.dll(65535.65535)}"_w);
    EXPECT_EQ(SourceTag("host.exe"_w, "MIRQOS.dll"_w, 0x12340000),
              "   {host.exe::MIRQOS.dll(4660.0)}"_w);
    EXPECT_EQ(SourceTag(""_w, ""_w, 0), "   {::(0.0)}"_w);
}

TEST(LogText, TheSourceTagKeepsLettersBeyondAscii) {
    const WideString process = "caf"_w + WideChar{0xE9} + ".exe"_w;
    EXPECT_EQ(SourceTag(process, "a.dll"_w, 0), "   {"_w + process + "::a.dll(0.0)}"_w);
}

}  // namespace
