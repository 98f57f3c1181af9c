#include "store/PackedTextList.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

using Mirqos::PackedSize;
using Mirqos::PackedTextReader;
using Mirqos::PackedTextWriter;
using namespace std::string_literals;

std::vector<std::string> EntriesOf(const std::string& list) {
    std::vector<std::string> entries;
    PackedTextReader reader(list.c_str());
    for (std::string_view entry; reader.Next(entry);) {
        EXPECT_EQ(entry.data()[entry.size()], '\0');
        entries.emplace_back(entry);
    }
    return entries;
}

TEST(PackedTextList, ASingleNulIsAnEmptyList) {
    EXPECT_TRUE(EntriesOf("\0"s).empty());
}

TEST(PackedTextList, EntriesAreReadUpToTheEmptyOneAndNotBeyond) {
    EXPECT_EQ(EntriesOf("a\0bc\0\0d\0\0"s), (std::vector<std::string>{"a", "bc"}));
}

TEST(PackedTextList, TheEndStaysTheEnd) {
    PackedTextReader reader("a\0");
    std::string_view entry;
    EXPECT_TRUE(reader.Next(entry));
    EXPECT_FALSE(reader.Next(entry));
    EXPECT_FALSE(reader.Next(entry));
}

TEST(PackedTextList, ARoomOfExactlyThePackedSizeHoldsTheList) {
    std::string room(PackedSize(3, 2), '#');
    PackedTextWriter writer(room.data(), room.size());
    EXPECT_EQ(writer.Append("a"), 0);
    EXPECT_EQ(writer.EndEntry(), 0);
    EXPECT_EQ(writer.Append("b"), 0);
    EXPECT_EQ(writer.Append("c"), 0);
    EXPECT_EQ(writer.EndEntry(), 0);
    EXPECT_EQ(room, "a\0bc\0\0"s);
}

TEST(PackedTextList, AnEntryThatDoesNotFitIsErasedAndTheOthersStay) {
    std::string room(6, '#');
    PackedTextWriter writer(room.data(), room.size());
    EXPECT_EQ(writer.Append("a"), 0);
    EXPECT_EQ(writer.EndEntry(), 0);
    EXPECT_EQ(writer.Append("bc"), 0);
    EXPECT_EQ(writer.Append("def"), 34);
    EXPECT_EQ(room, "a\0\0\0\0\0"s);
    EXPECT_EQ(writer.Append("xy"), 0) << "a shorter one still fits";
    EXPECT_EQ(writer.EndEntry(), 0);
    EXPECT_EQ(room, "a\0xy\0\0"s);
}

TEST(PackedTextList, AnEntryWithoutRoomForBothNulsIsErasedAtItsEnd) {
    for (const char* text : {"bcd", "bcde"}) {
        std::string room(6, '#');
        PackedTextWriter writer(room.data(), room.size());
        EXPECT_EQ(writer.Append("a"), 0);
        EXPECT_EQ(writer.EndEntry(), 0);
        EXPECT_EQ(writer.Append(text), 0) << "the text alone fits";
        EXPECT_EQ(writer.EndEntry(), 34) << text;
        EXPECT_EQ(room, "a\0\0\0\0\0"s);
        EXPECT_EQ(writer.Append("bc"), 0);
        EXPECT_EQ(writer.EndEntry(), 0);
        EXPECT_EQ(room, "a\0bc\0\0"s);
    }
}

TEST(PackedTextList, ARoomOfNoBytesTakesNothing) {
    char beside = '#';
    PackedTextWriter writer(&beside, 0);
    EXPECT_EQ(writer.Append("a"), 34);
    EXPECT_EQ(writer.EndEntry(), 34);
    EXPECT_EQ(beside, '#');
}

TEST(PackedTextList, AMissingTextIsReportedAs22) {
    std::string room(6, '#');
    PackedTextWriter writer(room.data(), room.size());
    EXPECT_EQ(writer.Append(std::string_view(nullptr, 1)), 22);
    EXPECT_EQ(room, std::string(6, '\0'));
}

TEST(PackedTextList, ARoomTooSmallForItsTerminatorsTakesNothing) {
    std::string room(1, '#');
    PackedTextWriter writer(room.data(), room.size());
    EXPECT_EQ(writer.Append("a"), 0);
    EXPECT_EQ(writer.EndEntry(), 34);
    EXPECT_EQ(room, "\0"s);
}

TEST(PackedTextList, WhateverWasWrittenIsReadBack) {
    std::mt19937 random(20240601);
    for (int round = 0; round < 2000; ++round) {
        std::vector<std::string> kept;
        std::string room(random() % 200, '#');
        PackedTextWriter writer(room.data(), room.size());
        for (auto i = random() % 12; i > 0; --i) {
            const std::string text(1 + random() % 40, static_cast<char>(1 + random() % 255));
            if (writer.Append(text) == 0 && writer.EndEntry() == 0) {
                kept.push_back(text);
            }
        }
        ASSERT_EQ(EntriesOf(room), kept);
    }
}

}  // namespace
