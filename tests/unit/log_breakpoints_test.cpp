#include "log/dbg/LogBreakpoints.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/support/ChannelBytes.h"

namespace {

using namespace LOGUTILS;
using Mirqos::Test::BreakpointBytes;

class LogBreakpointsTest : public testing::Test {
protected:
    LogBreakpointsTest() : m_memory(BreakpointBytes::kSize), m_bytes(m_memory.data()) {}

    LogBreakpointTable& Table() { return *reinterpret_cast<LogBreakpointTable*>(m_memory.data()); }

    /// The number of the breakpoint that matches; -1 for none.
    int Match(const char* text, std::uint32_t process = 10, std::uint32_t thread = 20,
              const char* channel = "Engine.exe") {
        const WideString wideChannel = WidenAscii(channel);
        const WideString wideText = WidenAscii(text);
        const LogBreakpoint* const found =
            FindBreakpoint(Table(), {wideChannel, process, thread, wideText});
        return found == nullptr ? -1 : static_cast<int>(found - Table().m_breakpoints);
    }

    std::vector<unsigned char> m_memory;
    BreakpointBytes m_bytes;
};

TEST_F(LogBreakpointsTest, TableIsAsLargeAsItIsDocumented) {
    EXPECT_EQ(sizeof(LogBreakpointTable), BreakpointBytes::kSize);
    EXPECT_EQ(sizeof(LogHit), BreakpointBytes::kHitSize);
}

TEST_F(LogBreakpointsTest, AnyProcessAndThreadOfTheChannelMatches) {
    m_bytes.Set(0, 1, u"Engine.exe", u"failed");
    EXPECT_EQ(Match("it failed."), 0);
    EXPECT_EQ(Match("failed", 1, 2), 0);
    EXPECT_EQ(Match("it went well"), -1);
    EXPECT_EQ(Match("it failed", 10, 20, "Other.exe"), -1);
    EXPECT_EQ(Match("it failed", 10, 20, "Engine.ex"), -1);
    EXPECT_EQ(Match("it failed", 10, 20, "Engine.exe2"), -1);
    EXPECT_EQ(Match(""), -1);
}

TEST_F(LogBreakpointsTest, OneProcessOrOneThreadMatches) {
    m_bytes.Set(0, 1, u"Engine.exe", u"line");
    m_bytes.SetNumber(BreakpointBytes::ProcessAt(0), 10);
    EXPECT_EQ(Match("line", 10, 1), 0);
    EXPECT_EQ(Match("line", 11, 1), -1);
    m_bytes.SetNumber(BreakpointBytes::ThreadAt(0), 20);
    EXPECT_EQ(Match("line", 10, 20), 0);
    EXPECT_EQ(Match("line", 10, 21), -1);
    EXPECT_EQ(Match("line", 11, 20), -1);
    m_bytes.SetNumber(BreakpointBytes::ProcessAt(0), 0);
    EXPECT_EQ(Match("line", 11, 20), 0);
    EXPECT_EQ(Match("line", 11, 21), -1);
}

TEST_F(LogBreakpointsTest, DisabledOrNamelessOnesNeverMatch) {
    m_bytes.Set(0, 1, u"Engine.exe", u"line");
    m_bytes.SetNumber(BreakpointBytes::EnabledAt(0), 0);
    EXPECT_EQ(Match("line"), -1);
    m_bytes.SetNumber(BreakpointBytes::EnabledAt(0), 0x80000000);
    EXPECT_EQ(Match("line"), 0);
    m_bytes.SetNumber(BreakpointBytes::IdAt(0), 0);
    EXPECT_EQ(Match("line"), -1);
    m_bytes.SetNumber(BreakpointBytes::IdAt(0) + 12, 0x01000000);  // the last byte of an id counts
    EXPECT_EQ(Match("line"), 0);
}

TEST_F(LogBreakpointsTest, LetterCaseCountsInThePatternAndNotInTheChannel) {
    m_bytes.Set(0, 1, u"eNGINE.eXE", u"Failed");
    EXPECT_EQ(Match("it Failed"), 0);
    EXPECT_EQ(Match("it failed"), -1);
    EXPECT_EQ(Match("it FAILED"), -1);
}

TEST_F(LogBreakpointsTest, FirstOfSeveralWinsAndGapsAreSteppedOver) {
    m_bytes.Set(99, 3, u"Engine.exe", u"line");
    EXPECT_EQ(Match("line"), 99);  // a count of 1 does not end the search at the first record
    m_bytes.Set(7, 2, u"Engine.exe", u"line");
    m_bytes.Set(3, 1, u"Engine.exe", u"other");
    EXPECT_EQ(Match("line"), 7);
    EXPECT_EQ(Match("other line"), 3);
}

TEST_F(LogBreakpointsTest, ACountOfZeroOrLessEndsTheSearchBeforeItBegins) {
    m_bytes.Set(0, 1, u"Engine.exe", u"line");
    for (const std::uint32_t count : {0u, 0xFFFFFFFFu, 0x80000000u}) {
        m_bytes.SetNumber(BreakpointBytes::kCountAt, count);
        EXPECT_EQ(Match("line"), -1);
    }
    for (const std::uint32_t count : {1u, 100u, 0x7FFFFFFFu}) {
        m_bytes.SetNumber(BreakpointBytes::kCountAt, count);
        EXPECT_EQ(Match("line"), 0);
    }
}

TEST_F(LogBreakpointsTest, AnEmptyPatternOccursInEveryLine) {
    m_bytes.Set(0, 1, u"Engine.exe", u"");
    EXPECT_EQ(Match("line"), 0);
    EXPECT_EQ(Match(""), 0);
}

TEST_F(LogBreakpointsTest, TextsThatFillTheirRoomsAreComparedWhole) {
    m_bytes.Set(0, 1, u"Engine.exe", std::u16string(1023, u'p'));
    EXPECT_EQ(Match(std::string(1022, 'p').c_str()), -1);
    EXPECT_EQ(Match((std::string(4000, '-') + std::string(1023, 'p')).c_str()), 0);
    const std::string channel(259, 'c');
    m_bytes.Set(1, 2, std::u16string(259, u'C'), u"line");
    EXPECT_EQ(Match("line", 10, 20, channel.c_str()), 1);
    EXPECT_EQ(Match("line", 10, 20, (channel + "c").c_str()), -1);
}

TEST_F(LogBreakpointsTest, TextsWithoutAnEndEndWithTheirRooms) {
    std::memset(m_memory.data(), 'A', m_memory.size());
    EXPECT_EQ(Match("line"), -1);
    EXPECT_EQ(FindFreeHit(Table()), nullptr);
}

TEST_F(LogBreakpointsTest, HitRecordsAreTakenInOrderUntilAllAreTaken) {
    EXPECT_EQ(FindFreeHit(Table()), &Table().m_hits[0]);
    for (std::size_t hit = 0; hit < BreakpointBytes::kHits; ++hit) {
        m_bytes.SetNumber(BreakpointBytes::HitAt(hit) + 12, 1);
    }
    EXPECT_EQ(FindFreeHit(Table()), nullptr);
    m_bytes.SetNumber(BreakpointBytes::HitAt(9999) + 12, 0);
    // what follows the first id does not matter
    m_bytes.SetNumber(BreakpointBytes::HitIdAt(9999), 1);
    EXPECT_EQ(FindFreeHit(Table()), &Table().m_hits[9999]);
    m_bytes.SetNumber(BreakpointBytes::HitAt(500) + 12, 0);
    EXPECT_EQ(FindFreeHit(Table()), &Table().m_hits[500]);
}

TEST_F(LogBreakpointsTest, AHitStandsWhereItIsDocumented) {
    const LogGuid breakpoint = {0x11223344, 0x5566, 0x7788, {1, 2, 3, 4, 5, 6, 7, 8}};
    const LogGuid hit = {0xA0B0C0D0, 0x0102, 0x0304, {0xF0, 0xE1, 0xD2, 0xC3, 0xB4, 0xA5, 0, 1}};
    Table().m_hits[12] = {breakpoint, hit, 77, 88};
    EXPECT_EQ(m_bytes.Number(BreakpointBytes::HitAt(12)), 0x11223344u);
    EXPECT_EQ(m_bytes.Short(BreakpointBytes::HitAt(12) + 6), 0x7788u);
    EXPECT_EQ(m_bytes.Number(BreakpointBytes::HitProcessAt(12)), 77u);
    EXPECT_EQ(m_bytes.Number(BreakpointBytes::HitThreadAt(12)), 88u);
    EXPECT_EQ(m_bytes.HitName(12), "A0B0C0D0-0102-0304-F0E1-D2C3B4A50001");
    EXPECT_EQ(GuidText(hit), WidenAscii(m_bytes.HitName(12)));
}

TEST(LogGuid, IsZeroOnlyIfEveryByteIs) {
    EXPECT_TRUE(IsZero(LogGuid{}));
    for (std::size_t n = 0; n < sizeof(LogGuid); ++n) {
        unsigned char bytes[sizeof(LogGuid)] = {};
        bytes[n] = 0x80;
        LogGuid guid;
        std::memcpy(&guid, bytes, sizeof(guid));
        EXPECT_FALSE(IsZero(guid)) << n;
        EXPECT_FALSE(guid == LogGuid{}) << n;
        EXPECT_TRUE(guid == guid) << n;
    }
}

TEST(LogGuid, TextIsUpperCaseWithLeadingZeros) {
    EXPECT_EQ(GuidText({}), "00000000-0000-0000-0000-000000000000"_w);
    EXPECT_EQ(
        GuidText({0x3b66fdf6, 0x4fbe, 0x45f5, {0x8a, 0x86, 0x89, 0x15, 0xc3, 0x18, 0x4d, 0x5b}}),
        "3B66FDF6-4FBE-45F5-8A86-8915C3184D5B"_w);
}

}  // namespace
