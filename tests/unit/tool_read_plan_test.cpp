#include "tools/mirqos/ReadPlan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace Mirqos::Tool {
namespace {

constexpr std::uint64_t kPart = 10;
constexpr std::uint64_t kOverlap = 3;
constexpr std::int32_t kRefused = 100;
using Verdict = ReadPlan::Verdict;

std::string ObjectOf(std::size_t size) {
    std::string object;
    for (std::size_t i = 0; i < size; ++i) {
        object += static_cast<char>('a' + (i * 7 + i / 26) % 26);
    }
    return object;
}

/// Answers a range as the service does: what there is of it, or a failure where nothing is.
void Answer(ReadPlan& plan, const ReadPlan::Range& range, const std::string& object) {
    if (range.first >= object.size()) {
        plan.Failed(range, kRefused);
        return;
    }
    const std::string bytes = object.substr(range.first, range.Length());
    plan.Delivered(range, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

/// Hands out up to `together` ranges, answers them in random order, and so on until the end.
Verdict ReadAll(ReadPlan& plan, const std::string& object, std::size_t together, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<ReadPlan::Range> open;
    for (;;) {
        while (open.size() < together) {
            const auto range = plan.Next();
            if (!range) {
                break;
            }
            open.push_back(*range);
        }
        if (open.empty()) {
            return plan.Judge();
        }
        std::swap(open[random() % open.size()], open.back());
        Answer(plan, open.back(), object);
        open.pop_back();
    }
}

TEST(ToolReadPlan, RangesFollowEachOtherAndReachBackByTheOverlap) {
    ReadPlan plan(kPart, kOverlap, std::nullopt);
    const auto first = plan.Next();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->first, 0U);
    EXPECT_EQ(first->last, 9U);
    EXPECT_EQ(first->kept, 0U);
    const auto second = plan.Next();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->first, 7U);
    EXPECT_EQ(second->last, 19U);
    EXPECT_EQ(second->kept, kOverlap);
    EXPECT_EQ(second->Length(), 13U);
}

TEST(ToolReadPlan, EverySizeIsReadWholeInAnyOrderOfAnswers) {
    for (std::size_t size = 1; size <= 65; ++size) {
        for (std::size_t together = 1; together <= 6; ++together) {
            for (unsigned seed = 0; seed < 5; ++seed) {
                ReadPlan plan(kPart, kOverlap, std::nullopt);
                ASSERT_EQ(ReadAll(plan, ObjectOf(size), together, seed), Verdict::Complete)
                    << size << " bytes, " << together << " together, seed " << seed;
                ASSERT_EQ(plan.Size(), size);
            }
        }
    }
}

TEST(ToolReadPlan, OneRangeAtATimeNeverMeetsTheFailureBehindTheEnd) {
    for (std::size_t size = 1; size <= 65; ++size) {
        ReadPlan plan(kPart, kOverlap, std::nullopt);
        const std::string object = ObjectOf(size);
        while (const auto range = plan.Next()) {
            ASSERT_LT(range->first, size);
            Answer(plan, *range, object);
        }
        ASSERT_EQ(plan.Judge(), Verdict::Complete);
    }
}

TEST(ToolReadPlan, ARangeThatFailsWithinTheObjectIsNeverTakenForItsEnd) {
    for (std::size_t size = 1; size <= 45; ++size) {
        const std::string object = ObjectOf(size);
        const std::size_t needed = (size + kOverlap - 1) / kPart + 1;
        for (std::size_t failing = 0; failing < needed; ++failing) {
            ReadPlan plan(kPart, kOverlap, std::nullopt);
            std::vector<ReadPlan::Range> ranges;
            for (int i = 0; i < 6; ++i) {
                ranges.push_back(*plan.Next());
            }
            for (const auto& range : ranges) {
                if (range.index == failing && range.first < size) {
                    plan.Failed(range, kRefused);
                } else {
                    Answer(plan, range, object);
                }
            }
            ASSERT_EQ(plan.Judge(),
                      ranges[failing].first < size ? Verdict::Failed : Verdict::Complete)
                << size << " bytes, range " << failing;
        }
    }
}

TEST(ToolReadPlan, TheStatusIsTheFirstFailedRanges) {
    ReadPlan plan(kPart, kOverlap, std::nullopt);
    const auto first = *plan.Next();
    const auto second = *plan.Next();
    const auto third = *plan.Next();
    plan.Failed(third, 7);
    plan.Failed(second, 99);
    Answer(plan, first, ObjectOf(40));
    EXPECT_EQ(plan.Judge(), Verdict::Failed);
    EXPECT_EQ(plan.FailedStatus(), 99);
    EXPECT_FALSE(plan.FailedAtOnce());
}

TEST(ToolReadPlan, AnEmptyObjectIsAFailureOfTheFirstRange) {
    ReadPlan plan(kPart, kOverlap, std::nullopt);
    EXPECT_EQ(ReadAll(plan, "", 1, 0), Verdict::Failed);
    EXPECT_TRUE(plan.FailedAtOnce());
    EXPECT_EQ(plan.FailedStatus(), kRefused);
}

TEST(ToolReadPlan, AServiceThatDeliversAnEmptyObjectIsBelieved) {
    ReadPlan plan(kPart, kOverlap, std::nullopt);
    plan.Delivered(*plan.Next(), nullptr, 0);
    EXPECT_EQ(plan.Judge(), Verdict::Complete);
    EXPECT_EQ(plan.Size(), 0U);
}

TEST(ToolReadPlan, ASuccessWithoutBytesFurtherOnProvesNothing) {
    ReadPlan plan(kPart, kOverlap, std::nullopt);
    Answer(plan, *plan.Next(), ObjectOf(40));
    plan.Delivered(*plan.Next(), nullptr, 0);
    EXPECT_EQ(plan.Judge(), Verdict::Changed);
}

TEST(ToolReadPlan, NothingIsHandedOutBehindAProvenEndOrAFailure) {
    ReadPlan ended(kPart, kOverlap, std::nullopt);
    Answer(ended, *ended.Next(), ObjectOf(4));
    EXPECT_FALSE(ended.Next());
    ReadPlan failed(kPart, kOverlap, std::nullopt);
    failed.Failed(*failed.Next(), 15);
    EXPECT_FALSE(failed.Next());
    ReadPlan stopped(kPart, kOverlap, std::nullopt);
    stopped.Stop();
    EXPECT_FALSE(stopped.Next());
}

TEST(ToolReadPlan, DifferentBytesAtABorderAreAChange) {
    ReadPlan plan(kPart, kOverlap, std::nullopt);
    Answer(plan, *plan.Next(), ObjectOf(15));
    Answer(plan, *plan.Next(), std::string(15, '!'));
    EXPECT_EQ(plan.Judge(), Verdict::Changed);
}

TEST(ToolReadPlan, AnObjectThatShrinksMeanwhileIsAChange) {
    ReadPlan plan(kPart, kOverlap, std::nullopt);
    const auto first = *plan.Next();
    const auto second = *plan.Next();
    const auto third = *plan.Next();
    const std::string object = ObjectOf(35);
    Answer(plan, third, object);
    Answer(plan, second, object.substr(0, 15));
    Answer(plan, first, object);
    EXPECT_EQ(plan.Judge(), Verdict::Changed);
}

TEST(ToolReadPlan, TwoDifferentEndsAreAChange) {
    ReadPlan plan(kPart, kOverlap, std::nullopt);
    const auto first = *plan.Next();
    const auto second = *plan.Next();
    Answer(plan, first, ObjectOf(8));
    Answer(plan, second, ObjectOf(9));
    EXPECT_EQ(plan.Judge(), Verdict::Changed);
}

TEST(ToolReadPlan, MoreBytesThanAskedForAreAContradiction) {
    ReadPlan plan(kPart, kOverlap, std::nullopt);
    const std::vector<unsigned char> bytes(20);
    plan.Delivered(*plan.Next(), bytes.data(), 11);
    EXPECT_EQ(plan.Judge(), Verdict::Changed);
}

TEST(ToolReadPlan, AGivenSizeIsProvenAndNothingBehindItIsAskedFor) {
    for (std::size_t size = 1; size <= 65; ++size) {
        for (std::size_t together = 1; together <= 6; ++together) {
            ReadPlan plan(kPart, kOverlap, size);
            std::vector<ReadPlan::Range> open;
            const std::string object = ObjectOf(size);
            while (const auto range = plan.Next()) {
                ASSERT_LT(range->first, size);
                open.push_back(*range);
                if (open.size() == together) {
                    for (const auto& one : open) {
                        Answer(plan, one, object);
                    }
                    open.clear();
                }
            }
            for (const auto& one : open) {
                Answer(plan, one, object);
            }
            ASSERT_EQ(plan.Judge(), Verdict::Complete) << size;
        }
    }
}

TEST(ToolReadPlan, AnyOtherSizeThanTheGivenOneIsAnError) {
    for (std::size_t given = 0; given <= 45; ++given) {
        for (std::size_t size = 1; size <= 45; ++size) {
            if (given != size) {
                ReadPlan plan(kPart, kOverlap, given);
                ASSERT_NE(ReadAll(plan, ObjectOf(size), 3, 1), Verdict::Complete)
                    << given << " given, " << size << " there";
            }
        }
    }
}

}  // namespace
}  // namespace Mirqos::Tool
