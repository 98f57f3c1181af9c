#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "log/dbg/LogBreakpoints.h"
#include "log/dbg/WideText.h"

/// What a viewer does to its breakpoint table. The caller holds the table's mutex.
namespace Mirqos::LogView {

struct BreakpointWish {
    LOGUTILS::WideString channel;
    LOGUTILS::WideString pattern;
    std::uint32_t processId = 0;  ///< 0 for any
    std::uint32_t threadId = 0;   ///< 0 for any
};

/// What keeps the text from being a breakpoint's pattern, for the user; nothing when it fits.
std::optional<std::string> WhyNotAPattern(LOGUTILS::WideView text);

/// Takes a free record for it; 0 when there is none, else its number, from 1.
std::size_t AddBreakpoint(LOGUTILS::LogBreakpointTable& table, const BreakpointWish& wish,
                          const LOGUTILS::LogGuid& id);

/// False when there is none of that number.
bool RemoveBreakpoint(LOGUTILS::LogBreakpointTable& table, std::size_t number);

/// The hits that are taken.
std::vector<LOGUTILS::LogHit> HitsIn(const LOGUTILS::LogBreakpointTable& table);

/// Frees the record of that hit, if there is one.
void ClearHit(LOGUTILS::LogBreakpointTable& table, const LOGUTILS::LogGuid& hitId);

}  // namespace Mirqos::LogView
