#include "tools/mirqos-logview/BreakpointEdit.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

namespace Mirqos::LogView {

using LOGUTILS::LogBreakpoint;
using LOGUTILS::LogBreakpointTable;
using LOGUTILS::LogGuid;
using LOGUTILS::LogHit;

namespace {

bool IsUsed(const LogBreakpoint& breakpoint) {
    return !LOGUTILS::IsZero(breakpoint.m_id);
}

// Whatever stood there: writers look no further than whether it is above 0.
void CountAgain(LogBreakpointTable& table) {
    table.m_nCount = static_cast<std::int32_t>(
        std::count_if(std::begin(table.m_breakpoints), std::end(table.m_breakpoints), &IsUsed));
}

}  // namespace

std::optional<std::string> WhyNotAPattern(LOGUTILS::WideView text) {
    constexpr std::size_t kLongest = std::extent_v<decltype(LogBreakpoint::m_szPattern)> - 1;
    if (text.size() > kLongest) {
        return "the text of a breakpoint has at most " + std::to_string(kLongest) + " characters";
    }
    return std::nullopt;
}

std::size_t AddBreakpoint(LogBreakpointTable& table, const BreakpointWish& wish,
                          const LogGuid& id) {
    auto* const end = std::end(table.m_breakpoints);
    auto* const free = std::find_if_not(std::begin(table.m_breakpoints), end, &IsUsed);
    if (free == end) {
        return 0;
    }
    *free = LogBreakpoint{};
    free->m_dwProcessId = wish.processId;
    free->m_dwThreadId = wish.threadId;
    free->m_dwEnabled = 1;
    LOGUTILS::PutText(free->m_szChannel, wish.channel);
    LOGUTILS::PutText(free->m_szPattern, wish.pattern);
    free->m_id = id;
    CountAgain(table);
    return static_cast<std::size_t>(free - std::begin(table.m_breakpoints)) + 1;
}

bool RemoveBreakpoint(LogBreakpointTable& table, std::size_t number) {
    if (number < 1 || number > std::size(table.m_breakpoints) ||
        !IsUsed(table.m_breakpoints[number - 1])) {
        return false;
    }
    table.m_breakpoints[number - 1] = LogBreakpoint{};
    CountAgain(table);
    return true;
}

std::vector<LogHit> HitsIn(const LogBreakpointTable& table) {
    std::vector<LogHit> hits;
    std::copy_if(std::begin(table.m_hits), std::end(table.m_hits), std::back_inserter(hits),
                 [](const LogHit& hit) { return !LOGUTILS::IsZero(hit.m_breakpointId); });
    return hits;
}

void ClearHit(LogBreakpointTable& table, const LogGuid& hitId) {
    std::replace_if(
        std::begin(table.m_hits), std::end(table.m_hits),
        [&](const LogHit& hit) {
            return !LOGUTILS::IsZero(hit.m_breakpointId) && hit.m_hitId == hitId;
        },
        LogHit{});
}

}  // namespace Mirqos::LogView
