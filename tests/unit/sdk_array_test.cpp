#include <aws/core/utils/Array.h>
#include <gtest/gtest.h>

#include <new>
#include <utility>

namespace {

using Aws::Utils::Array;
using Bytes = Array<unsigned char>;

TEST(SdkArray, NewArrayIsFilledWithZeros) {
    // Memory that was just written to is likely to be handed out again.
    for (int round = 0; round < 3; ++round) {
        Bytes bytes(4096);
        ASSERT_EQ(bytes.GetLength(), 4096u);
        for (std::size_t i = 0; i < bytes.GetLength(); ++i) {
            ASSERT_EQ(bytes.GetItem(i), 0);
            bytes[i] = 0xAB;
        }
    }
}

TEST(SdkArray, EmptyArrayHasNoElements) {
    EXPECT_EQ(Bytes().GetLength(), 0u);
    EXPECT_EQ(Bytes(0).GetLength(), 0u);
    EXPECT_EQ(Bytes(0).GetUnderlyingData(), nullptr);
    const Bytes copy{Bytes(nullptr, 0)};
    EXPECT_EQ(copy.GetLength(), 0u);
}

TEST(SdkArray, ElementsAreCopiedFromAPointer) {
    const unsigned char source[] = {1, 2, 3};
    const Bytes bytes(source, 3);
    ASSERT_EQ(bytes.GetLength(), 3u);
    EXPECT_NE(bytes.GetUnderlyingData(), source);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes.GetItem(2), 3);
}

TEST(SdkArray, CopyIsIndependent) {
    const unsigned char source[] = {1, 2, 3};
    Bytes first(source, 3);
    Bytes second(first);
    second[0] = 9;
    EXPECT_EQ(first[0], 1);
    first = second;
    EXPECT_EQ(first[0], 9);
    first[1] = 8;
    EXPECT_EQ(second[1], 2);
    const Bytes& self = first;
    first = self;
    EXPECT_EQ(first[1], 8);
}

TEST(SdkArray, MoveTakesTheElementsAndLeavesNothing) {
    Bytes first(16);
    unsigned char* const data = first.GetUnderlyingData();
    Bytes second(std::move(first));
    EXPECT_EQ(second.GetUnderlyingData(), data);
    EXPECT_EQ(second.GetLength(), 16u);
    EXPECT_EQ(first.GetLength(), 0u);
    EXPECT_EQ(first.GetUnderlyingData(), nullptr);
    first = std::move(second);
    EXPECT_EQ(first.GetUnderlyingData(), data);
    EXPECT_EQ(second.GetLength(), 0u);
}

TEST(SdkArray, SizeThatCannotBeHadThrows) {
    // A negative size of a caller arrives as such a number.
    volatile std::size_t size = static_cast<std::size_t>(-1);
    EXPECT_THROW(Array<int>{size}, std::bad_alloc);
}

}  // namespace
