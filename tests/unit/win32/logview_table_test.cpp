#include <gtest/gtest.h>

#include <memory>

#include "tests/support/ChannelBytes.h"
#include "tools/mirqos-logview/BreakpointEdit.h"

namespace Mirqos::LogView {
namespace {

using LOGUTILS::LogBreakpointTable;
using LOGUTILS::LogGuid;
using Test::BreakpointBytes;

class LogViewTable : public testing::Test {
protected:
    std::size_t Add(const wchar_t* pattern) {
        return AddBreakpoint(*m_table, {L"Engine.exe", pattern, 4, 8}, {++m_lastId, 0, 0, {}});
    }

    std::unique_ptr<LogBreakpointTable> m_table = std::make_unique<LogBreakpointTable>();
    BreakpointBytes m_bytes{reinterpret_cast<unsigned char*>(m_table.get())};
    std::uint32_t m_lastId = 0;
};

TEST_F(LogViewTable, ABreakpointStandsAsItIsDocumented) {
    EXPECT_EQ(Add(L"pattern"), 1u);
    EXPECT_EQ(m_bytes.Number(BreakpointBytes::kCountAt), 1u);
    EXPECT_EQ(m_bytes.Number(BreakpointBytes::IdAt(0)), 1u);
    EXPECT_TRUE(m_bytes.IsZero(BreakpointBytes::IdAt(0) + 16, 16));
    EXPECT_EQ(m_bytes.Number(BreakpointBytes::ProcessAt(0)), 4u);
    EXPECT_EQ(m_bytes.Number(BreakpointBytes::ThreadAt(0)), 8u);
    EXPECT_EQ(m_bytes.Number(BreakpointBytes::EnabledAt(0)), 1u);
    EXPECT_EQ(m_bytes.Text(BreakpointBytes::ChannelAt(0), 260), u"Engine.exe");
    EXPECT_EQ(m_bytes.Text(BreakpointBytes::PatternAt(0), 1024), u"pattern");
}

TEST_F(LogViewTable, ARemovedOneLeavesAGapThatTheNextTakes) {
    Add(L"a");
    Add(L"b");
    Add(L"c");
    EXPECT_TRUE(RemoveBreakpoint(*m_table, 2));
    EXPECT_EQ(m_bytes.Number(BreakpointBytes::kCountAt), 2u);
    EXPECT_TRUE(m_bytes.IsZero(BreakpointBytes::IdAt(1), 2612));
    EXPECT_FALSE(RemoveBreakpoint(*m_table, 2));
    EXPECT_FALSE(RemoveBreakpoint(*m_table, 0));
    EXPECT_FALSE(RemoveBreakpoint(*m_table, 101));
    EXPECT_EQ(Add(L"d"), 2u);
    EXPECT_EQ(m_bytes.Number(BreakpointBytes::kCountAt), 3u);
}

TEST_F(LogViewTable, AHundredFillIt) {
    for (std::size_t n = 1; n <= 100; ++n) {
        EXPECT_EQ(Add(L"x"), n);
    }
    EXPECT_EQ(Add(L"x"), 0u);
    EXPECT_EQ(m_bytes.Number(BreakpointBytes::kCountAt), 100u);
    EXPECT_TRUE(m_bytes.IsFree(0));
}

TEST_F(LogViewTable, HitsAreFoundAndCleared) {
    EXPECT_TRUE(HitsIn(*m_table).empty());
    const LogGuid breakpoint = {1, 0, 0, {}};
    const LogGuid first = {7, 0, 0, {}};
    const LogGuid second = {8, 0, 0, {}};
    m_table->m_hits[3] = {breakpoint, first, 10, 11};
    m_table->m_hits[9999] = {breakpoint, second, 12, 13};
    ASSERT_EQ(HitsIn(*m_table).size(), 2u);
    EXPECT_EQ(HitsIn(*m_table)[1].m_dwThreadId, 13u);
    ClearHit(*m_table, first);
    EXPECT_TRUE(m_bytes.IsZero(BreakpointBytes::HitAt(3), BreakpointBytes::kHitSize));
    EXPECT_EQ(HitsIn(*m_table).size(), 1u);
    ClearHit(*m_table, first);
    ClearHit(*m_table, {});  // free records have no hit id either
    EXPECT_EQ(HitsIn(*m_table).size(), 1u);
}

}  // namespace
}  // namespace Mirqos::LogView
