#pragma once

#include <string>
#include <string_view>

namespace Mirqos::Tool {

/// Between the program's UTF-8 and the system's UTF-16. What is not well formed becomes U+FFFD.
std::wstring ToWide(std::string_view text);
std::string ToUtf8(std::wstring_view text);

}  // namespace Mirqos::Tool
