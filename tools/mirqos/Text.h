#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Mirqos::Tool {

/// "0 B", "1023 B", "1.5 KiB", "20.0 MiB": binary units, one decimal, rounded to the nearest.
std::string FormatSize(std::uint64_t bytes);

/// "1 file", "2 files".
std::string CountOf(std::uint64_t count, const std::string& thing);

/// "0:07", "12:05", "1:02:03". Fractions of a second are dropped.
std::string FormatDuration(std::uint64_t seconds);

/// A decimal number without sign, blanks or unit, from `least` to `most`; otherwise nothing.
std::optional<std::uint64_t> ParseNumber(std::string_view text, std::uint64_t least,
                                         std::uint64_t most);

/// Whether a text is well-formed UTF-8: no overlong forms, no surrogates, nothing past U+10FFFF.
bool IsUtf8(std::string_view text);

/// Two lower-case hexadecimal digits for each byte.
std::string FormatHex(const unsigned char* bytes, std::size_t count);

/// The text with blanks in front, so that it has at least `columns` bytes.
std::string PadLeft(const std::string& text, std::size_t columns);

/// Characters of a UTF-8 text, as a terminal counts columns for most scripts.
std::size_t CountCharacters(std::string_view text);

/// The last `count` characters of a UTF-8 text; the whole text when it is not longer.
std::string_view LastCharacters(std::string_view text, std::size_t count);

/// The text with every control character replaced by "?", so that a name that comes from elsewhere
/// cannot steer the terminal it is shown on.
std::string Printable(std::string_view text);

/// The text as UTF-8: each byte that belongs to no well-formed character becomes "\xNN" with two
/// hexadecimal digits, and each backslash becomes two, so that it can be undone.
std::string EscapeForeignBytes(std::string_view text);

}  // namespace Mirqos::Tool
