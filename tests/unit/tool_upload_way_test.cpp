#include "tools/mirqos/UploadWay.h"

#include <gtest/gtest.h>

#include "tools/mirqos/CopyWay.h"

namespace Mirqos::Tool {
namespace {

using Kind = UploadWay::Kind;
constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;
constexpr std::uint64_t kGiB = std::uint64_t{1} << 30U;
constexpr std::uint64_t kTiB = std::uint64_t{1} << 40U;

TEST(ToolUploadWay, SmallFilesGoWhole) {
    for (const std::uint64_t size : {std::uint64_t{0}, std::uint64_t{1}, 8 * kMiB}) {
        EXPECT_EQ(ChooseUpload(size, 4, 128 * kMiB)->kind, Kind::Whole) << size;
    }
}

TEST(ToolUploadWay, FilesWithinTheLimitGoInAsynchronousParts) {
    for (const std::uint64_t size : {8 * kMiB + 1, 128 * kMiB}) {
        const auto way = ChooseUpload(size, 4, 128 * kMiB);
        EXPECT_EQ(way->kind, Kind::AsyncParts) << size;
        EXPECT_EQ(way->partSize, 8 * kMiB);
        EXPECT_EQ(static_cast<std::uint64_t>(way->parts), size == 128 * kMiB ? 16U : 2U);
    }
}

TEST(ToolUploadWay, LargerOnesGoInPartsOfWhichTheMemoryHoldsAFew) {
    const auto way = ChooseUpload(kGiB, 16, 128 * kMiB);
    EXPECT_EQ(way->kind, Kind::Parts);
    EXPECT_EQ(way->parts, 128);
    EXPECT_EQ(way->threads, 8U);
    EXPECT_EQ(ChooseUpload(kGiB, 4, 128 * kMiB)->threads, 4U);
    EXPECT_EQ(ChooseUpload(kGiB, 4, kMiB)->threads, 1U);
}

TEST(ToolUploadWay, NoFileHasMorePartsThanServicesTakeNorALargerPartThanTheRecordHolds) {
    for (const std::uint64_t size : {78 * kGiB, 79 * kGiB, 5 * kTiB, 19 * kTiB}) {
        const auto way = ChooseUpload(size, 4, 128 * kMiB);
        ASSERT_TRUE(way) << size;
        EXPECT_LE(way->parts, 10000);
        EXPECT_LT(way->partSize, 2 * kGiB);
        const std::uint64_t before = way->partSize * static_cast<std::uint64_t>(way->parts - 1);
        EXPECT_LT(before, size);
        EXPECT_GE(before + way->partSize, size);
    }
    EXPECT_FALSE(ChooseUpload(21 * kTiB, 4, 128 * kMiB));
}

TEST(ToolCopyWay, ObjectsUpToFiveGibibytesAreCopiedWithOneRequest) {
    EXPECT_EQ(ChooseCopy(5 * kGiB, std::nullopt).parts, 0);
    const CopyWay way = ChooseCopy(5 * kGiB + 1, std::nullopt);
    EXPECT_EQ(way.partSize, 512 * kMiB);
    EXPECT_EQ(way.parts, 11);
}

TEST(ToolCopyWay, AGivenPartSizeIsTheLimitToo) {
    EXPECT_EQ(ChooseCopy(5 * kMiB, 5 * kMiB).parts, 0);
    EXPECT_EQ(ChooseCopy(5 * kMiB + 1, 5 * kMiB).parts, 2);
    const CopyWay way = ChooseCopy(5 * kTiB, 5 * kMiB);
    EXPECT_LE(way.parts, 10000);
    EXPECT_GT(way.partSize, 5 * kMiB);
}

}  // namespace
}  // namespace Mirqos::Tool
