#include "platform/text.h"

#include <windows.h>

#include <cstring>
#include <cwchar>

namespace Mirqos {

std::wstring WidenText(const char* text) {
    if (text == nullptr) {
        return L"(null)";
    }
    const auto length = static_cast<int>(std::strlen(text));
    std::wstring wide;
    if (length > 0) {
        const int needed = MultiByteToWideChar(CP_ACP, 0, text, length, nullptr, 0);
        wide.resize(static_cast<std::size_t>(needed));
        MultiByteToWideChar(CP_ACP, 0, text, length, wide.data(), needed);
    }
    return wide;
}

std::string NarrowText(const wchar_t* text) {
    if (text == nullptr) {
        return "(null)";
    }
    const auto length = static_cast<int>(std::wcslen(text));
    std::string narrow;
    if (length > 0) {
        const int needed =
            WideCharToMultiByte(CP_ACP, 0, text, length, nullptr, 0, nullptr, nullptr);
        narrow.resize(static_cast<std::size_t>(needed));
        WideCharToMultiByte(CP_ACP, 0, text, length, narrow.data(), needed, nullptr, nullptr);
    }
    return narrow;
}

}  // namespace Mirqos
