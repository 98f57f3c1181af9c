#include "tools/mirqos/win32/Wide.h"

#include <windows.h>

namespace Mirqos::Tool {

std::wstring ToWide(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    const int length = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), needed);
    return wide;
}

std::string ToUtf8(std::wstring_view text) {
    if (text.empty()) {
        return {};
    }
    const int length = static_cast<int>(text.size());
    const int needed =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
    return narrow;
}

std::size_t UnitsOfWholeCharacters(std::wstring_view text, std::size_t most) {
    if (text.size() <= most) {
        return text.size();
    }
    return IS_HIGH_SURROGATE(text[most - 1]) ? most - 1 : most;
}

}  // namespace Mirqos::Tool
