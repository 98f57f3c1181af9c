#include "tools/mirqos/ProgressLine.h"

#include <gtest/gtest.h>

#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {
namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;

TEST(ToolProgressLine, KnownTotalGivesBarShareRateAndTimeLeft) {
    const ProgressState state{"getting", "photo.tif", 5 * kMiB, 20 * kMiB, 2.5};
    EXPECT_EQ(FormatProgressBar(state, 120),
              "getting photo.tif  [#######-----------------------]  25%  5.0 MiB of 20.0 MiB  2.0 "
              "MiB/s  0:08 left");
    EXPECT_EQ(FormatProgressText(state),
              "getting photo.tif  25%  5.0 MiB of 20.0 MiB  2.0 MiB/s  0:08 left");
}

TEST(ToolProgressLine, UnknownTotalGivesCountRateAndTime) {
    const ProgressState state{"getting", "x", 5 * kMiB, std::nullopt, 65.0};
    EXPECT_EQ(FormatProgressBar(state, 120), "getting x  5.0 MiB  78.8 KiB/s  1:05");
}

TEST(ToolProgressLine, WorkWithoutFiguresClaimsNone) {
    const ProgressState state{"sending", "x", std::nullopt, 20 * kMiB, 3.9};
    EXPECT_EQ(FormatProgressBar(state, 120), "sending x  20.0 MiB  0:03 so far");
    EXPECT_EQ(FormatProgressText(state), "sending x  20.0 MiB  0:03 so far");
}

TEST(ToolProgressLine, NoRateIsClaimedInTheFirstSecond) {
    const ProgressState state{"getting", "x", kMiB, 2 * kMiB, 0.9};
    EXPECT_EQ(FormatProgressText(state), "getting x  50%  1.0 MiB of 2.0 MiB");
}

TEST(ToolProgressLine, HundredPercentIsSaidOnlyOfWhatIsComplete) {
    const ProgressState almost{"getting", "x", 20 * kMiB - 1, 20 * kMiB, 0};
    EXPECT_EQ(FormatProgressText(almost), "getting x  99%  20.0 MiB of 20.0 MiB");
    const ProgressState all{"getting", "x", 20 * kMiB, 20 * kMiB, 0};
    EXPECT_EQ(FormatProgressText(all), "getting x  100%  20.0 MiB of 20.0 MiB");
    const ProgressState more{"getting", "x", 21 * kMiB, 20 * kMiB, 0};
    EXPECT_EQ(FormatProgressText(more), "getting x  100%  21.0 MiB of 20.0 MiB");
}

TEST(ToolProgressLine, NothingDoneYetGivesNoTimeLeft) {
    const ProgressState state{"getting", "x", 0, 20 * kMiB, 10};
    EXPECT_EQ(FormatProgressText(state), "getting x  0%  0 B of 20.0 MiB  0 B/s");
}

TEST(ToolProgressLine, AnEmptyTotalDividesNothing) {
    const ProgressState state{"reading", "x", 0, 0, 2};
    EXPECT_EQ(FormatProgressBar(state, 120), "reading x  0 B  0 B/s  0:02");
}

TEST(ToolProgressLine, NoLineEverReachesTheLastColumn) {
    ProgressState state{"getting", "", 5 * kMiB, 20 * kMiB, 2.5};
    for (std::size_t length = 0; length < 150; length += 7) {
        state.name = std::string(length, 'n') + "\xC3\xA4\xE2\x82\xAC.txt";
        for (std::size_t columns = 0; columns < 140; ++columns) {
            const std::string line = FormatProgressBar(state, columns);
            EXPECT_LE(CountCharacters(line), columns > 0 ? columns - 1 : 0);
            EXPECT_TRUE(IsUtf8(line));
        }
    }
}

TEST(ToolProgressLine, ALongNameLosesItsFront) {
    const ProgressState state{"getting", "very/long/path/to/some/photo.tif", 5 * kMiB, 20 * kMiB,
                              0};
    EXPECT_EQ(FormatProgressBar(state, 52), "getting ...some/photo.tif  25%  5.0 MiB of 20.0 MiB");
}

TEST(ToolProgressLine, NamesCannotSteerTheTerminal) {
    const ProgressState state{"getting", "a\x1b[2J\nb", 1, std::nullopt, 0};
    EXPECT_EQ(FormatProgressText(state), "getting a?[2J?b  1 B");
    EXPECT_EQ(FormatProgressBar(state, 80), "getting a?[2J?b  1 B");
}

}  // namespace
}  // namespace Mirqos::Tool
