#include "log/dbg/LogBreakpoints.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace LOGUTILS {
namespace {

void AppendHex(WideString& text, std::uint64_t nValue, int nDigits) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (int nShift = 4 * (nDigits - 1); nShift >= 0; nShift -= 4) {
        text += WideChar(kDigits[(nValue >> nShift) & 0xF]);
    }
}

bool IsAnyOr(std::uint32_t dwWanted, std::uint32_t dwActual) {
    return dwWanted == 0 || dwWanted == dwActual;
}

bool Matches(const LogBreakpoint& breakpoint, const LogLine& line) {
    return !IsZero(breakpoint.m_id) && breakpoint.m_dwEnabled != 0 &&
           IsAnyOr(breakpoint.m_dwProcessId, line.m_dwProcessId) &&
           IsAnyOr(breakpoint.m_dwThreadId, line.m_dwThreadId) &&
           EqualIgnoringCase(TextIn(breakpoint.m_szChannel), line.m_channel) &&
           line.m_text.find(TextIn(breakpoint.m_szPattern)) != WideView::npos;
}

}  // namespace

bool operator==(const LogGuid& left, const LogGuid& right) {
    return std::memcmp(&left, &right, sizeof(LogGuid)) == 0;
}

bool IsZero(const LogGuid& guid) {
    return guid == LogGuid{};
}

WideString GuidText(const LogGuid& guid) {
    WideString text;
    AppendHex(text, guid.m_dwData1, 8);
    text += WideChar{'-'};
    AppendHex(text, guid.m_wData2, 4);
    text += WideChar{'-'};
    AppendHex(text, guid.m_wData3, 4);
    for (std::size_t i = 0; i < std::size(guid.m_data4); ++i) {
        if (i == 0 || i == 2) {
            text += WideChar{'-'};
        }
        AppendHex(text, guid.m_data4[i], 2);
    }
    return text;
}

const LogBreakpoint* FindBreakpoint(const LogBreakpointTable& table, const LogLine& line) {
    if (table.m_nCount <= 0) {
        return nullptr;
    }
    // the count tells only whether to look: a viewer that removes one leaves a gap
    const auto* const pFound =
        std::find_if(std::begin(table.m_breakpoints), std::end(table.m_breakpoints),
                     [&line](const LogBreakpoint& b) { return Matches(b, line); });
    return pFound == std::end(table.m_breakpoints) ? nullptr : pFound;
}

LogHit* FindFreeHit(LogBreakpointTable& table) {
    auto* const pFound = std::find_if(std::begin(table.m_hits), std::end(table.m_hits),
                                      [](const LogHit& hit) { return IsZero(hit.m_breakpointId); });
    return pFound == std::end(table.m_hits) ? nullptr : pFound;
}

}  // namespace LOGUTILS
