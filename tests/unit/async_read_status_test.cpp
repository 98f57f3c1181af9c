#include "store/AsyncReadStatus.h"

#include <gtest/gtest.h>

namespace {

using Buffer = AsyncReadStatus::Buffer;

TEST(AsyncReadStatus, MemoryOfAnEndedReadServesTheNextOfItsLength) {
    AsyncReadStatus batch;
    const auto first = batch.NewBuffer(100);
    const unsigned char* const memory = first->GetUnderlyingData();
    batch.TakeBack(*first);
    const auto shorter = batch.NewBuffer(99);
    const auto second = batch.NewBuffer(100);
    EXPECT_NE(shorter->GetUnderlyingData(), memory);
    EXPECT_EQ(second->GetUnderlyingData(), memory);
    EXPECT_EQ(second->GetLength(), 100u);
    EXPECT_EQ(batch.m_vecBuffers.size(), 3u) << "one for each attempt";
}

TEST(AsyncReadStatus, MemoryServesOneReadAtATime) {
    AsyncReadStatus batch;
    batch.TakeBack(*batch.NewBuffer(100));
    const auto second = batch.NewBuffer(100);
    const auto third = batch.NewBuffer(100);
    EXPECT_NE(second->GetUnderlyingData(), third->GetUnderlyingData());
}

}  // namespace
