#include "tools/mirqos/Folder.h"

#include <windows.h>

#include <algorithm>
#include <string_view>

#include "tools/mirqos/win32/FileStatus.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::Tool {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Asked of the file itself: what a folder tells of a file with several names, or of one that is
/// open, can be old.
FileState Examine(const std::string& name, const WIN32_FIND_DATAW& found) {
    const HANDLE handle = CreateFileW(SystemPath(name).c_str(), FILE_READ_ATTRIBUTES, kShareAll,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    std::optional<FileState> state;
    if (handle != INVALID_HANDLE_VALUE) {
        state = StateOf(handle);
        CloseHandle(handle);
    }
    if (!state) {
        state.emplace();
        state->size = (static_cast<std::uint64_t>(found.nFileSizeHigh) << 32U) | found.nFileSizeLow;
        state->modified = FileTimeOf(found.ftLastWriteTime);
    }
    return *state;
}

/// Links and mount points stand for something elsewhere. Other reparse points, as those of files
/// that a service keeps for the user, are the file itself.
bool IsLink(const WIN32_FIND_DATAW& found) {
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           IsReparseTagNameSurrogate(found.dwReserved0);
}

FolderEntry EntryOf(const std::string& folder, const WIN32_FIND_DATAW& found) {
    FolderEntry entry;
    entry.name = ToUtf8(static_cast<const wchar_t*>(found.cFileName));
    if (IsLink(found) || (found.dwFileAttributes & FILE_ATTRIBUTE_DEVICE) != 0) {
        return entry;
    }
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        entry.kind = FolderEntry::Kind::Folder;
    } else {
        entry.kind = FolderEntry::Kind::File;
        entry.state = Examine(JoinPath(folder, entry.name), found);
    }
    return entry;
}

}  // namespace

const char* const kFolderSeparators = "/\\";

std::string NameIdentity(const std::string& path) {
    // letter by letter, as its file systems do it, and the same for every user
    std::wstring name = ToWide(path);
    LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, name.data(),
                  static_cast<int>(name.size()), name.data(), static_cast<int>(name.size()),
                  nullptr, nullptr, 0);
    return ToUtf8(name);
}

std::vector<FolderEntry> ListFolder(const std::string& folder) {
    WIN32_FIND_DATAW found{};
    const HANDLE search =
        FindFirstFileExW(SystemPath(JoinPath(folder, "*")).c_str(), FindExInfoBasic, &found,
                         FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (search == INVALID_HANDLE_VALUE) {
        FailWith(GetLastError(), "list", folder);
    }
    std::vector<FolderEntry> entries;
    do {
        const std::wstring_view name = static_cast<const wchar_t*>(found.cFileName);
        if (name != L"." && name != L"..") {
            entries.push_back(EntryOf(folder, found));
        }
    } while (FindNextFileW(search, &found) != 0);
    const DWORD error = GetLastError();
    FindClose(search);
    if (error != ERROR_NO_MORE_FILES) {
        FailWith(error, "list", folder);
    }
    std::sort(entries.begin(), entries.end(),
              [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
    return entries;
}

bool MakeFolder(const std::string& folder) {
    if (CreateDirectoryW(SystemPath(folder).c_str(), nullptr) != 0) {
        return true;
    }
    const DWORD error = GetLastError();
    if (error != ERROR_ALREADY_EXISTS) {
        FailWith(error, "create", folder);
    }
    return false;
}

void RemoveEmptyFolder(const std::string& folder) noexcept {
    RemoveDirectoryW(SystemPath(folder).c_str());
}

}  // namespace Mirqos::Tool
