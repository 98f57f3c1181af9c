#include "sdk/core/http/win32/WideText.h"

#include <windows.h>

namespace Mirqos::Http {

std::wstring Widen(std::string_view utf8) {
    const int size = static_cast<int>(utf8.size());
    const int needed = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), needed);
    return wide;
}

std::string Narrow(std::wstring_view wide) {
    const int size = static_cast<int>(wide.size());
    const int needed =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, utf8.data(), needed, nullptr, nullptr);
    return utf8;
}

std::string ErrorWords(unsigned long error) {
    wchar_t text[256];
    DWORD length = FormatMessageW(
        FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        GetModuleHandleW(L"winhttp.dll"), error, 0, text,
        static_cast<DWORD>(sizeof(text) / sizeof(text[0])), nullptr);
    while (length != 0 && (text[length - 1] <= L' ' || text[length - 1] == L'.')) {
        --length;
    }
    const std::string number = "WinHTTP error " + std::to_string(error);
    return length == 0 ? number : Narrow({text, length}) + " (" + number + ')';
}

}  // namespace Mirqos::Http
