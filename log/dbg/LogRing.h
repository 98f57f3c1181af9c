#pragma once

#include <cstddef>
#include <cstdint>

#include "log/dbg/WideText.h"

/// The live channel: shared memory into which all processes of one executable put their log lines
/// while a viewer listens. docs/formats.md describes it for those who write viewers.
namespace LOGUTILS {

inline constexpr std::size_t kChannelNameRoom = 128;  ///< characters, the terminator included
inline constexpr std::size_t kRecordTextRoom = 1024;
inline constexpr std::int64_t kRingRecords = 1024;
inline constexpr std::int64_t kNoRecord = -1;

/// A local time, in the form of a Windows SYSTEMTIME.
struct LogTime {
    std::uint16_t m_wYear;
    std::uint16_t m_wMonth;
    std::uint16_t m_wDayOfWeek;  ///< 0 is Sunday
    std::uint16_t m_wDay;
    std::uint16_t m_wHour;
    std::uint16_t m_wMinute;
    std::uint16_t m_wSecond;
    std::uint16_t m_wMilliseconds;
};
static_assert(offsetof(LogTime, m_wMonth) == 2);
static_assert(offsetof(LogTime, m_wDayOfWeek) == 4);
static_assert(offsetof(LogTime, m_wDay) == 6);
static_assert(offsetof(LogTime, m_wHour) == 8);
static_assert(offsetof(LogTime, m_wMinute) == 10);
static_assert(offsetof(LogTime, m_wSecond) == 12);
static_assert(offsetof(LogTime, m_wMilliseconds) == 14);
static_assert(sizeof(LogTime) == 16);

struct LogRecord {
    WideChar m_szChannel[kChannelNameRoom];  ///< the executable's file name, in its letter case
    WideChar m_szSource[kChannelNameRoom];   ///< the writing library's file name, or empty
    LogTime m_time;
    std::uint32_t m_dwErrorCode;  ///< 0 for none
    std::uint32_t m_dwLevel;
    std::uint32_t m_dwProcessId;
    std::uint32_t m_dwThreadId;
    WideChar m_szText[kRecordTextRoom];
};
static_assert(offsetof(LogRecord, m_szSource) == 256);
static_assert(offsetof(LogRecord, m_time) == 512);
static_assert(offsetof(LogRecord, m_dwErrorCode) == 528);
static_assert(offsetof(LogRecord, m_dwLevel) == 532);
static_assert(offsetof(LogRecord, m_dwProcessId) == 536);
static_assert(offsetof(LogRecord, m_dwThreadId) == 540);
static_assert(offsetof(LogRecord, m_szText) == 544);
static_assert(sizeof(LogRecord) == 2592);

/// Records are numbered from 0; number n lies in slot n mod 1024.
struct LogRing {
    std::int64_t m_nLastRead;     ///< number of the last record that the reader took
    std::int64_t m_nLastWritten;  ///< number of the last record
    std::uint8_t m_reserved[496];
    LogRecord m_records[kRingRecords];
};
static_assert(offsetof(LogRing, m_nLastWritten) == 8);
static_assert(offsetof(LogRing, m_reserved) == 16);
static_assert(offsetof(LogRing, m_records) == 512);
static_assert(sizeof(LogRing) == 0x288200);

/// A record of these texts, cut to their rooms; all else in it is 0.
LogRecord MakeRecord(WideView channel, WideView source, WideView text);

/// Ends each text of a record at the end of its room at the latest, whatever a damaged ring held.
void EndTexts(LogRecord& record);

/// What a log file's line would begin with: "[2024/01/31 10:20:30:040   01   ... ] ".
WideString PrefixOf(const LogRecord& record);

// The rules over a ring. The caller holds the channel's mutex.

/// Makes the ring one that nobody has written to.
void ClearRing(LogRing& ring);

void AppendRecord(LogRing& ring, const LogRecord& record);

/// Slots to copy, from `m_nFirst` on; the numbers go on from `m_nFirst` one by one.
struct NewRecords {
    std::int64_t m_nFirst;
    std::int64_t m_nCount;
};

/// The numbers that the reader has not taken yet. A reader that fell behind is owed every number
/// since then, though only the newest 1,024 records are left, and gets for the lapped numbers the
/// newer records in their slots: from a count above 1,024 it sees how many it lost.
///
/// The count is at most kMostNewRecords: a damaged ring may claim 2^64 of them. Numbers left out
/// are the oldest, and what lies in their slots is taken many times over all the same.
NewRecords FindNewRecords(const LogRing& ring);

/// 64 laps, 170 MB of records: far behind for a reader that is alive, and still no harm.
inline constexpr std::int64_t kMostNewRecords = 64 * kRingRecords;

/// The record in the slot of that number, which may be any.
const LogRecord& RecordAt(const LogRing& ring, std::int64_t nNumber);

}  // namespace LOGUTILS
