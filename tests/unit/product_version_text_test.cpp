#include "log/dbg/ProductVersionText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using LOGUTILS::ParseProductVersion;
using LOGUTILS::WidenAscii;

std::string Parsed(const std::string& text) {
    const auto version = ParseProductVersion(WidenAscii(text));
    if (!version) {
        return "nothing";
    }
    EXPECT_EQ(version->m_dwUpdate, 0u);
    return std::to_string(version->m_dwMajor) + "," + std::to_string(version->m_dwMinor);
}

TEST(ProductVersionTextTest, HoldsMajorAndMinorBeforeWhateverElseFollowsADot) {
    EXPECT_EQ(Parsed("12.5"), "12,5");
    EXPECT_EQ(Parsed("12.05"), "12,5");
    EXPECT_EQ(Parsed("12.5.1047"), "12,5");
    EXPECT_EQ(Parsed("12.5.beta"), "12,5");
    EXPECT_EQ(Parsed("12"), "12,0");
    EXPECT_EQ(Parsed("0.0"), "0,0");
    EXPECT_EQ(Parsed("65535.65535"), "65535,65535");
}

TEST(ProductVersionTextTest, IsRefusedWhenItBeginsWithAnythingElse) {
    for (const char* const text : {"", ".", "12.", ".5", "r12.5", " 12.5", "12 .5", "12,5", "12.5b",
                                   "12.x", "-1.5", "65536.0", "1.99999999999999999999"}) {
        EXPECT_EQ(Parsed(text), "nothing") << text;
    }
}

}  // namespace
