#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Mirqos::Tool {

/// Keys that stand one on a line. Lines end with LF or CR LF, empty ones are skipped, and so is the
/// byte order mark that Windows programs write. Throws Failure (Usage) with the number of the line
/// that is no key.
std::vector<std::string> ParseKeyLines(std::string_view text);

}  // namespace Mirqos::Tool
