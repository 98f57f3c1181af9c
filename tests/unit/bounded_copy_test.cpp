#include "platform/bounded_copy.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

namespace {

using Mirqos::CopyBytesOrClear;
using Mirqos::CopyTextOrEndProcess;

class BoundedCopyDeathTest : public testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    std::array<char, 8> m_room{};
};

TEST(BoundedCopy, ATextThatFitsIsCopiedWithItsTerminator) {
    std::array<char, 8> room;
    room.fill('#');
    CopyTextOrEndProcess(room.data(), room.size(), "1234567");
    EXPECT_STREQ(room.data(), "1234567");
    room.fill('#');
    CopyTextOrEndProcess(room.data(), room.size(), "");
    EXPECT_EQ(room[0], 0);
    EXPECT_EQ(room[1], '#') << "nothing is written behind the terminator";
}

TEST_F(BoundedCopyDeathTest, ATextOneCharacterTooLongEndsTheProcess) {
    EXPECT_DEATH(CopyTextOrEndProcess(m_room.data(), m_room.size(), "12345678"),
                 "a text does not fit");
}

TEST_F(BoundedCopyDeathTest, ALongTextEndsTheProcess) {
    const std::string text(100000, 'x');
    EXPECT_DEATH(CopyTextOrEndProcess(m_room.data(), m_room.size(), text.c_str()),
                 "a text does not fit");
}

TEST_F(BoundedCopyDeathTest, NoRoomAtAllEndsTheProcess) {
    EXPECT_DEATH(CopyTextOrEndProcess(m_room.data(), 0, ""), "a text does not fit");
}

TEST_F(BoundedCopyDeathTest, ANullPointerEndsTheProcess) {
    EXPECT_DEATH(CopyTextOrEndProcess(nullptr, 8, "x"), "null pointer");
    EXPECT_DEATH(CopyTextOrEndProcess(m_room.data(), m_room.size(), nullptr), "null pointer");
}

TEST(BoundedCopy, BytesThatFitAreCopiedAndTheRestIsLeftAlone) {
    std::array<char, 4> room;
    room.fill('#');
    EXPECT_EQ(CopyBytesOrClear(room.data(), room.size(), "ab", 2), Mirqos::kCopyDone);
    EXPECT_EQ(std::memcmp(room.data(), "ab##", 4), 0);
    EXPECT_EQ(CopyBytesOrClear(room.data(), room.size(), "cdef", 4), 0);
    EXPECT_EQ(std::memcmp(room.data(), "cdef", 4), 0);
}

TEST(BoundedCopy, OneByteTooManyReports34AndClearsTheWholeRoom) {
    std::array<char, 4> room;
    room.fill('#');
    EXPECT_EQ(CopyBytesOrClear(room.data(), room.size(), "12345", 5), 34);
    EXPECT_EQ(std::memcmp(room.data(), "\0\0\0\0", 4), 0);
}

TEST(BoundedCopy, NullBytesReport22AndClearTheWholeRoom) {
    std::array<char, 4> room;
    room.fill('#');
    EXPECT_EQ(CopyBytesOrClear(room.data(), room.size(), nullptr, 1), 22);
    EXPECT_EQ(std::memcmp(room.data(), "\0\0\0\0", 4), 0);
}

TEST(BoundedCopy, ANullRoomReports22) {
    EXPECT_EQ(CopyBytesOrClear(nullptr, 4, "1", 1), 22);
}

TEST(BoundedCopy, NothingToCopyTouchesNothing) {
    char room = '#';
    EXPECT_EQ(CopyBytesOrClear(&room, 1, nullptr, 0), 0);
    EXPECT_EQ(CopyBytesOrClear(nullptr, 0, nullptr, 0), 0);
    EXPECT_EQ(room, '#');
}

}  // namespace
