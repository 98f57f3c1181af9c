#pragma once

#include <cstdint>
#include <optional>

#include "log/dbg/WideText.h"
#include "log/dbg/win32/CLogMessage.h"

namespace Mirqos::LogView {

/// Which records are shown. What is not set lets everything through.
struct Filter {
    std::optional<std::uint32_t> level;  ///< up to this one
    std::optional<std::uint32_t> processId;
    std::optional<std::uint32_t> threadId;
    LOGUTILS::WideString text;  ///< contained in the line, letter case included
};

bool IsShown(const Filter& filter, const NSDBG::CLogMessage& message);

}  // namespace Mirqos::LogView
