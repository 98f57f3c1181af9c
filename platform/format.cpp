#include "platform/format.h"

namespace Mirqos {

int FormatBounded(char* text, std::size_t size, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int result = FormatBoundedV(text, size, format, arguments);
    va_end(arguments);
    return result;
}

int FormatBounded(wchar_t* text, std::size_t size, const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int result = FormatBoundedV(text, size, format, arguments);
    va_end(arguments);
    return result;
}

}  // namespace Mirqos
