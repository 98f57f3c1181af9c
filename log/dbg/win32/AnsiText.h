#pragma once

#include <cstddef>

namespace LOGUTILS {

inline constexpr std::size_t kLineRoom = 1024;  ///< characters of a text, its terminator included

/// Puts the text, which is in the system's ANSI code page, into `room` as wide text; the empty text
/// when it cannot be converted or does not fit.
void WidenAnsi(wchar_t (&room)[kLineRoom], const char* pszText);

}  // namespace LOGUTILS
