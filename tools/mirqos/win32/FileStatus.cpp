#include "tools/mirqos/win32/FileStatus.h"

#include <system_error>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::Tool {

namespace {

// The system takes 260 characters of a file's whole name, also of one that is relative to a folder
// of the process, and 12 less of a folder's.
constexpr std::size_t kShort = 240;
// from 1601, where the system's count begins, to 1970
constexpr FileTime kBefore1970 = 116'444'736'000'000'000;

}  // namespace

std::wstring SystemPath(const std::string& name) {
    const std::wstring wide = ToWide(name);
    const DWORD needed = GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
    std::wstring full(needed, L'\0');
    full.resize(GetFullPathNameW(wide.c_str(), needed, full.data(), nullptr));
    if (wide.size() < kShort && full.size() < kShort) {
        return wide;
    }
    if (full.rfind(L"\\\\?\\", 0) == 0) {
        return full;
    }
    return full.rfind(L"\\\\", 0) == 0 ? L"\\\\?\\UNC\\" + full.substr(2) : L"\\\\?\\" + full;
}

std::optional<FileState> StateOf(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION info{};
    if (GetFileInformationByHandle(file, &info) == 0) {
        return std::nullopt;
    }
    FileState state;
    state.size = (static_cast<std::uint64_t>(info.nFileSizeHigh) << 32U) | info.nFileSizeLow;
    state.modified = FileTimeOf(info.ftLastWriteTime);
    return state;
}

FileTime FileTimeOf(const FILETIME& time) {
    const auto high = static_cast<std::uint64_t>(time.dwHighDateTime) << 32U;
    return static_cast<FileTime>(high | time.dwLowDateTime) - kBefore1970;
}

FILETIME SystemTimeOf(FileTime time) {
    const auto value = static_cast<std::uint64_t>(time + kBefore1970);
    FILETIME result{};
    result.dwLowDateTime = static_cast<DWORD>(value & 0xFFFFFFFFU);
    result.dwHighDateTime = static_cast<DWORD>(value >> 32U);
    return result;
}

void FailWith(DWORD error, const std::string& doing, const std::string& name) {
    std::string reason = std::system_category().message(static_cast<int>(error));
    while (!reason.empty() && (reason.back() == '\n' || reason.back() == '\r')) {
        reason.pop_back();
    }
    throw Failure(ExitCode::LocalFile, "cannot " + doing + " '" + Printable(name) +
                                           "': " + Printable(reason) + " (error " +
                                           std::to_string(error) + ")");
}

}  // namespace Mirqos::Tool
