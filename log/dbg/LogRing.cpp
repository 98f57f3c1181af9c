#include "log/dbg/LogRing.h"

#include <algorithm>
#include <cstring>

#include "log/dbg/LinePrefix.h"

namespace LOGUTILS {
namespace {

constexpr std::uint64_t Unsigned(std::int64_t nNumber) {
    return static_cast<std::uint64_t>(nNumber);
}

// Wraps around instead of overflowing: a damaged ring may hold the last number there is.
constexpr std::int64_t NumberAfter(std::int64_t nNumber) {
    return static_cast<std::int64_t>(Unsigned(nNumber) + 1);
}

// The remainder is never negative, because 1,024 divides 2^64.
constexpr std::size_t SlotOf(std::int64_t nNumber) {
    return static_cast<std::size_t>(Unsigned(nNumber) % Unsigned(kRingRecords));
}

Mirqos::LocalTime LocalTimeOf(const LogTime& time) {
    return {time.m_wYear,   time.m_wMonth,  time.m_wDay,         time.m_wHour,
            time.m_wMinute, time.m_wSecond, time.m_wMilliseconds};
}

}  // namespace

LogRecord MakeRecord(WideView channel, WideView source, WideView text) {
    LogRecord record{};
    PutText(record.m_szChannel, channel);
    PutText(record.m_szSource, source);
    PutText(record.m_szText, text);
    return record;
}

void EndTexts(LogRecord& record) {
    record.m_szChannel[kChannelNameRoom - 1] = WideChar{};
    record.m_szSource[kChannelNameRoom - 1] = WideChar{};
    record.m_szText[kRecordTextRoom - 1] = WideChar{};
}

WideString PrefixOf(const LogRecord& record) {
    char szPrefix[256];  // time, four numbers of at most 11 characters, blanks
    Mirqos::FormatLinePrefix(
        szPrefix, sizeof(szPrefix),
        {LocalTimeOf(record.m_time), static_cast<int>(record.m_dwLevel), record.m_dwProcessId,
         record.m_dwThreadId, static_cast<int>(record.m_dwErrorCode)});
    return WidenAscii(szPrefix);
}

void ClearRing(LogRing& ring) {
    std::memset(&ring, 0, sizeof(ring));
    ring.m_nLastRead = kNoRecord;
    ring.m_nLastWritten = kNoRecord;
}

void AppendRecord(LogRing& ring, const LogRecord& record) {
    ring.m_nLastWritten = NumberAfter(ring.m_nLastWritten);
    ring.m_records[SlotOf(ring.m_nLastWritten)] = record;
}

NewRecords FindNewRecords(const LogRing& ring) {
    const std::int64_t nLastRead = ring.m_nLastRead;
    const std::int64_t nLastWritten = ring.m_nLastWritten;
    if (nLastWritten == kNoRecord || nLastWritten <= nLastRead) {
        return {0, 0};
    }
    const std::uint64_t nBehind = Unsigned(nLastWritten) - Unsigned(nLastRead);
    const auto nCount = static_cast<std::int64_t>(std::min(nBehind, Unsigned(kMostNewRecords)));
    return {nLastWritten - (nCount - 1), nCount};
}

const LogRecord& RecordAt(const LogRing& ring, std::int64_t nNumber) {
    return ring.m_records[SlotOf(nNumber)];
}

}  // namespace LOGUTILS
