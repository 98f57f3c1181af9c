#include "tools/mirqos/PackedTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Mirqos::Tool {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ToolPackedTexts, EachTextAndTheListEndWithANul) {
    using namespace std::string_literals;
    EXPECT_EQ(PackTexts({"a", "bc"}), "a\0bc\0\0"s);
    EXPECT_EQ(PackTexts({}), "\0"s);
}

TEST(ToolPackedTexts, WhatWasPackedIsUnpacked) {
    const std::vector<std::string> texts = {"a", std::string(1024, 'k'), "\xC3\xA4\xFF", " "};
    EXPECT_EQ(UnpackTexts(PackTexts(texts).data()), texts);
}

TEST(ToolPackedTexts, NoListAndAnEmptyOneHoldNothing) {
    EXPECT_THAT(UnpackTexts(nullptr), IsEmpty());
    EXPECT_THAT(UnpackTexts(""), IsEmpty());
}

TEST(ToolPackedTexts, WhatStandsBehindTheEndIsNotRead) {
    EXPECT_THAT(UnpackTexts("a\0b\0\0c\0"), ElementsAre("a", "b"));
}

}  // namespace
}  // namespace Mirqos::Tool
