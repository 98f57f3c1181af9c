#include "tools/mirqos/Console.h"

#include <windows.h>

#include <algorithm>

#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::Tool {

namespace {

constexpr std::size_t kMostPerCall = std::size_t{1} << 30U;

void Write(DWORD stream, std::string_view text) {
    const HANDLE handle = GetStdHandle(stream);
    DWORD mode = 0;
    DWORD written = 0;
    if (GetConsoleMode(handle, &mode) != 0) {
        // the console takes UTF-16 whatever its code page is
        const std::wstring wide = ToWide(text);
        WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
        return;
    }
    while (!text.empty()) {
        if (::WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) ==
                0 ||
            written == 0) {
            return;
        }
        text.remove_prefix(written);
    }
}

}  // namespace

void WriteOutput(std::string_view text) {
    Write(STD_OUTPUT_HANDLE, text);
}

void WriteError(std::string_view text) {
    Write(STD_ERROR_HANDLE, text);
}

std::optional<std::size_t> ReadInput(char* to, std::size_t size) {
    const auto wanted = static_cast<DWORD>(std::min<std::size_t>(size, kMostPerCall));
    DWORD count = 0;
    if (::ReadFile(GetStdHandle(STD_INPUT_HANDLE), to, wanted, &count, nullptr) != 0) {
        return count;
    }
    // the other side of a pipe has closed it: the end, as Windows tells it
    return GetLastError() == ERROR_BROKEN_PIPE ? std::optional<std::size_t>(0) : std::nullopt;
}

std::optional<unsigned> ErrorColumns() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info) == 0) {
        return std::nullopt;
    }
    return static_cast<unsigned>(info.srWindow.Right - info.srWindow.Left + 1);
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    const std::wstring wideName = ToWide(name);
    const DWORD needed = GetEnvironmentVariableW(wideName.c_str(), nullptr, 0);
    if (needed <= 1) {
        return std::nullopt;
    }
    std::wstring value(needed, L'\0');
    value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), needed));
    return ToUtf8(value);
}

}  // namespace Mirqos::Tool
