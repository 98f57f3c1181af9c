#pragma once

#include <cstddef>
#include <cstdint>

#include "log/dbg/WideText.h"

/// Breakpoints on log lines: shared memory that a viewer owns. A thread that writes a matching line
/// to the live channel is held until the viewer releases it. docs/formats.md describes the table
/// and the hand-shake for those who write viewers.
namespace LOGUTILS {

/// A GUID, in the form of Windows.
struct LogGuid {
    std::uint32_t m_dwData1;
    std::uint16_t m_wData2;
    std::uint16_t m_wData3;
    std::uint8_t m_data4[8];
};
static_assert(offsetof(LogGuid, m_wData2) == 4);
static_assert(offsetof(LogGuid, m_wData3) == 6);
static_assert(offsetof(LogGuid, m_data4) == 8);
static_assert(sizeof(LogGuid) == 16);

bool operator==(const LogGuid& left, const LogGuid& right);
bool IsZero(const LogGuid& guid);
/// As names of objects hold it: "3B66FDF6-4FBE-45F5-8A86-8915C3184D5B".
WideString GuidText(const LogGuid& guid);

struct LogBreakpoint {
    LogGuid m_id;  ///< zero in a record that is not used
    std::uint8_t m_reserved[16];
    std::uint32_t m_dwProcessId;  ///< 0 for any
    std::uint32_t m_dwThreadId;   ///< 0 for any
    std::uint32_t m_dwEnabled;
    WideChar m_szChannel[260];   ///< the executable's file name, in any letter case
    WideChar m_szPattern[1024];  ///< what the line must contain, letter by letter
};
static_assert(offsetof(LogBreakpoint, m_reserved) == 16);
static_assert(offsetof(LogBreakpoint, m_dwProcessId) == 32);
static_assert(offsetof(LogBreakpoint, m_dwThreadId) == 36);
static_assert(offsetof(LogBreakpoint, m_dwEnabled) == 40);
static_assert(offsetof(LogBreakpoint, m_szChannel) == 44);
static_assert(offsetof(LogBreakpoint, m_szPattern) == 564);
static_assert(sizeof(LogBreakpoint) == 2612);

/// A thread that is held. Free while its first id is zero.
struct LogHit {
    LogGuid m_breakpointId;
    LogGuid m_hitId;
    std::uint32_t m_dwProcessId;
    std::uint32_t m_dwThreadId;
};
static_assert(offsetof(LogHit, m_hitId) == 16);
static_assert(offsetof(LogHit, m_dwProcessId) == 32);
static_assert(offsetof(LogHit, m_dwThreadId) == 36);
static_assert(sizeof(LogHit) == 40);

struct LogBreakpointTable {
    std::int32_t m_nCount;  ///< none stands in the table while this is 0 or less
    LogBreakpoint m_breakpoints[100];
    LogHit m_hits[10000];
};
static_assert(offsetof(LogBreakpointTable, m_breakpoints) == 4);
static_assert(offsetof(LogBreakpointTable, m_hits) == 261204);
static_assert(sizeof(LogBreakpointTable) == 661204);

/// A line that is tested, and who writes it.
struct LogLine {
    WideView m_channel;
    std::uint32_t m_dwProcessId;
    std::uint32_t m_dwThreadId;
    WideView m_text;
};

// The rules over a table. The caller holds the table's mutex.

/// The first breakpoint that the line matches; null when it matches none.
const LogBreakpoint* FindBreakpoint(const LogBreakpointTable& table, const LogLine& line);

/// The first free hit record; null when all are taken.
LogHit* FindFreeHit(LogBreakpointTable& table);

}  // namespace LOGUTILS
