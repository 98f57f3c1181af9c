#pragma once

#include <cstdarg>
#include <cstddef>

#include "platform/printf_like.h"

/// Bounded formatting with one result on every platform.
///
/// `size` is the room in characters, the terminator included, and is at least 1. The result is the
/// number of characters written without the terminator, or -1 when the text was cut: then it is the
/// first size - 1 characters, terminated. A null text prints "(null)".
///
/// Both forms know the conversions %d %i %u %o %x %X %c %s %f and %%, with flags, width, precision
/// and the lengths h, l and ll; a size_t is cast at the call. %s reads a text of the format's own
/// kind: narrow in a narrow format, wide in a wide one. %hs always reads narrow and %ls always wide
/// text. Such a mixed text has to be ASCII; others are converted beforehand (platform/text.h).
///
/// Any number of threads may call them at once; they neither throw nor allocate.
namespace Mirqos {

int FormatBounded(char* text, std::size_t size, const char* format, ...) MIRQOS_PRINTF_LIKE(3, 4);
int FormatBounded(wchar_t* text, std::size_t size, const wchar_t* format, ...);

int FormatBoundedV(char* text, std::size_t size, const char* format, std::va_list arguments)
    MIRQOS_PRINTF_LIKE(3, 0);
int FormatBoundedV(wchar_t* text, std::size_t size, const wchar_t* format, std::va_list arguments);

}  // namespace Mirqos
