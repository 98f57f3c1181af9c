#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "log/dbg/WideText.h"

/// What stands in a log file, as bytes. docs/formats.md describes it.
namespace LOGUTILS {

inline constexpr std::string_view kByteOrderMark = "\xFF\xFE";  // of UTF-16LE

/// Whether a file that begins with these two bytes is UTF-16LE, and not ANSI.
bool IsUnicodeFile(const std::array<char, 2>& beginning);

/// The text in UTF-16LE, without a byte-order mark.
std::string Utf16Bytes(WideView text);

/// What follows the message of a line: who wrote it. `dwModuleVersion` holds the library's build in
/// its high and its revision in its low 16 bits.
WideString SourceTag(WideView processName, WideView libraryName, std::uint32_t dwModuleVersion);

}  // namespace LOGUTILS
