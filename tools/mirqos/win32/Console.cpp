#include "tools/mirqos/Console.h"

#include <windows.h>

#include <algorithm>

#include "tools/mirqos/win32/FileStatus.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::Tool {

namespace {

constexpr std::size_t kMostPerCall = std::size_t{1} << 30U;
// consoles of older systems refuse more than 64 KiB
constexpr DWORD kMostForConsole = 8000;

/// Hands `text` on until all of it is taken; `write` takes some of its beginning and sets how much.
/// ERROR_SUCCESS, or the error after which the rest was not written.
template <typename Text, typename WriteSome>
DWORD WriteAll(Text text, const WriteSome& write) {
    while (!text.empty()) {
        DWORD written = 0;
        if (write(text, written) == 0) {
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
    if (GetConsoleMode(handle, &mode) != 0) {
        // the console takes UTF-16 whatever its code page is
        const std::wstring wide = ToWide(text);
        return WriteAll(std::wstring_view(wide), [handle](std::wstring_view rest, DWORD& written) {
            const auto size = static_cast<DWORD>(UnitsOfWholeCharacters(rest, kMostForConsole));
            return WriteConsoleW(handle, rest.data(), size, &written, nullptr);
        });
    }
    return WriteAll(text, [handle](std::string_view rest, DWORD& written) {
        const auto size = static_cast<DWORD>(std::min(rest.size(), kMostPerCall));
        return ::WriteFile(handle, rest.data(), size, &written, nullptr);
    });
}

/// Whether the reader has gone, or the program was started without this stream.
bool IsUnread(DWORD error) {
    return error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA ||
           error == ERROR_PIPE_NOT_CONNECTED || error == ERROR_INVALID_HANDLE;
}

/// How many units the console gave; 0 where it cannot be read or Ctrl-C ended the wait.
DWORD ReadUnits(HANDLE console, wchar_t* to, DWORD size) {
    DWORD count = 0;
    return ReadConsoleW(console, to, size, &count, nullptr) == 0 ? 0 : count;
}

/// What is typed on a console, in pieces of any size.
class TypedText {
public:
    /// 0 at the end, which is a line that begins with Ctrl-Z; nothing where it cannot be read.
    std::optional<std::size_t> Read(HANDLE console, char* to, std::size_t size) {
        if (m_rest.empty()) {
            const std::wstring typed = ReadSome(console);
            if (typed.empty()) {
                return std::nullopt;
            }
            if (typed.front() == kCtrlZ) {
                return 0;
            }
            m_rest = ToUtf8(typed);
        }
        const std::size_t count = m_rest.copy(to, size);
        m_rest.erase(0, count);
        return count;
    }

private:
    static constexpr wchar_t kCtrlZ = L'\x1A';

    /// A line, or as much of it as there is room for; empty where it cannot be read.
    static std::wstring ReadSome(HANDLE console) {
        std::wstring typed(kMostForConsole + 1, L'\0');
        DWORD count = ReadUnits(console, typed.data(), kMostForConsole);
        if (count > 0 && IS_HIGH_SURROGATE(typed[count - 1])) {
            count += ReadUnits(console, &typed[count], 1);
        }
        typed.resize(count);
        return typed;
    }

    std::string m_rest;
};

}  // namespace

bool WriteOutput(std::string_view text) {
    const DWORD error = Write(STD_OUTPUT_HANDLE, text);
    if (error != ERROR_SUCCESS && !IsUnread(error)) {
        FailWith(error, "write", "standard output");
    }
    return error == ERROR_SUCCESS;
}

void WriteError(std::string_view text) {
    Write(STD_ERROR_HANDLE, text);
}

std::optional<std::size_t> ReadInput(char* to, std::size_t size) {
    const HANDLE handle = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(handle, &mode) != 0) {
        // never destroyed: a thread may wait here until the process ends
        static TypedText& typed = *new TypedText;
        return typed.Read(handle, to, size);
    }
    const auto wanted = static_cast<DWORD>(std::min<std::size_t>(size, kMostPerCall));
    DWORD count = 0;
    if (::ReadFile(handle, to, wanted, &count, nullptr) != 0) {
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
