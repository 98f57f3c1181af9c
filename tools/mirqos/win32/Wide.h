#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Mirqos::Tool {

/// Between the program's UTF-8 and the system's UTF-16. What is not well formed becomes U+FFFD.
std::wstring ToWide(std::string_view text);
std::string ToUtf8(std::wstring_view text);

/// The units of the text's beginning, at most `most` (2 or more), that split no character.
std::size_t UnitsOfWholeCharacters(std::wstring_view text, std::size_t most);

}  // namespace Mirqos::Tool
