#pragma once

#include <string>
#include <vector>

namespace Mirqos::Tool {

/// Texts as the library's records take and give them: one after another, each followed by a NUL,
/// and an empty one at the end. None of `texts` may be empty or hold a NUL.
std::string PackTexts(const std::vector<std::string>& texts);

/// `packed` is such a list; null counts as an empty one.
std::vector<std::string> UnpackTexts(const char* packed);

}  // namespace Mirqos::Tool
