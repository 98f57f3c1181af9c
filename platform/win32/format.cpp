#include "platform/format.h"

#include <cstdio>

namespace Mirqos {

// The secure forms exist in every C runtime of Windows, MinGW's included; in truncating mode they
// leave the terminated start of the text and return -1.
int FormatBoundedV(char* text, std::size_t size, const char* format, std::va_list arguments) {
    return _vsnprintf_s(text, size, _TRUNCATE, format, arguments);
}

int FormatBoundedV(wchar_t* text, std::size_t size, const wchar_t* format, std::va_list arguments) {
    return _vsnwprintf_s(text, size, _TRUNCATE, format, arguments);
}

}  // namespace Mirqos
