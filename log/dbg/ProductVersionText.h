#pragma once

#include <optional>

#include "log/dbg/SummaryHeader.h"
#include "log/dbg/WideText.h"

namespace LOGUTILS {

/// The version that a text such as "12.5" or "12.5.1047" states: its first two decimal numbers,
/// which a dot separates. A lone number is a major version. Nothing when the text begins with
/// anything else or a number is beyond 16 bits.
std::optional<ProductVersion> ParseProductVersion(WideView text);

}  // namespace LOGUTILS
