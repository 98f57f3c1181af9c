#include "platform/text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Mirqos::NarrowText;
using Mirqos::WidenText;

TEST(Text, AsciiIsConvertedBothWays) {
    EXPECT_EQ(WidenText("Hello, 1~"), L"Hello, 1~");
    EXPECT_EQ(NarrowText(L"Hello, 1~"), "Hello, 1~");
    EXPECT_EQ(WidenText(""), L"");
    EXPECT_EQ(NarrowText(L""), "");
}

TEST(Text, NullIsWhatItPrintsAs) {
    EXPECT_EQ(WidenText(nullptr), L"(null)");
    EXPECT_EQ(NarrowText(nullptr), "(null)");
}

TEST(Text, ALetterOfTheSystemsNarrowEncodingComesBack) {
    const std::string narrow = NarrowText(L"caf\x00e9");
    EXPECT_EQ(WidenText(narrow.c_str()), L"caf\x00e9");
}

}  // namespace
