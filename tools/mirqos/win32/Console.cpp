#include "tools/mirqos/Console.h"

#include <windows.h>

#include <algorithm>

#include "tools/mirqos/win32/FileStatus.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::Tool {

namespace {

constexpr std::size_t kMostPerCall = std::size_t{1} << 30U;

/// Hands `text` on until all of it is taken; `write` sets how much it took. ERROR_SUCCESS, or the
/// error after which the rest was not written.
template <typename Text, typename WriteSome>
DWORD WriteAll(Text text, const WriteSome& write) {
    while (!text.empty()) {
        DWORD written = 0;
        if (write(text.data(), static_cast<DWORD>(std::min(text.size(), kMostPerCall)), written) ==
            0) {
            return GetLastError();
        }
        if (written == 0) {
            return ERROR_WRITE_FAULT;  // a pipe that does not wait for its reader
        }
        text.remove_prefix(written);
    }
    return ERROR_SUCCESS;
}

DWORD Write(DWORD stream, std::string_view text) {
    const HANDLE handle = GetStdHandle(stream);
    DWORD mode = 0;
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE) {
        return ERROR_SUCCESS;  // the program was started without this stream
    }
    if (GetConsoleMode(handle, &mode) != 0) {
        // the console takes UTF-16 whatever its code page is
        const std::wstring wide = ToWide(text);
        return WriteAll(std::wstring_view(wide),
                        [handle](const wchar_t* from, DWORD size, DWORD& written) {
                            return WriteConsoleW(handle, from, size, &written, nullptr);
                        });
    }
    return WriteAll(text, [handle](const char* from, DWORD size, DWORD& written) {
        return ::WriteFile(handle, from, size, &written, nullptr);
    });
}

bool HasReaderGone(DWORD error) {
    return error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA ||
           error == ERROR_PIPE_NOT_CONNECTED;
}

}  // namespace

void WriteOutput(std::string_view text) {
    const DWORD error = Write(STD_OUTPUT_HANDLE, text);
    if (error != ERROR_SUCCESS && !HasReaderGone(error)) {
        FailWith(error, "write", "standard output");
    }
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
