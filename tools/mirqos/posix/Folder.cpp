#include "tools/mirqos/Folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <string_view>
#include <system_error>

#include "tools/mirqos/posix/FileStatus.h"

namespace Mirqos::Tool {

namespace {

FolderEntry Examine(int folder, const char* name) {
    FolderEntry entry;
    entry.name = name;
    struct stat info {};
    if (::fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
        entry.kind = FolderEntry::Kind::Unknown;
        entry.why = "cannot be examined: " + std::generic_category().message(errno);
    } else if (S_ISREG(info.st_mode)) {
        entry.kind = FolderEntry::Kind::File;
        entry.state = StateOf(info);
    } else if (S_ISDIR(info.st_mode)) {
        entry.kind = FolderEntry::Kind::Folder;
    }
    return entry;
}

}  // namespace

const char* const kFolderSeparators = "/";

std::string NameIdentity(const std::string& path) {
    return path;
}

std::vector<FolderEntry> ListFolder(const std::string& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()), &::closedir);
    if (!stream) {
        FailWith(errno, "list", folder);
    }
    std::vector<FolderEntry> entries;
    for (;;) {
        errno = 0;
        const dirent* const found = ::readdir(stream.get());
        if (found == nullptr) {
            break;
        }
        const std::string_view name = static_cast<const char*>(found->d_name);
        if (name != "." && name != "..") {
            entries.push_back(Examine(::dirfd(stream.get()), name.data()));
        }
    }
    if (errno != 0) {
        FailWith(errno, "list", folder);
    }
    std::sort(entries.begin(), entries.end(),
              [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
    return entries;
}

bool MakeFolder(const std::string& folder) {
    if (::mkdir(folder.c_str(), 0777) == 0) {
        return true;
    }
    if (errno != EEXIST) {
        FailWith(errno, "create", folder);
    }
    return false;
}

void RemoveEmptyFolder(const std::string& folder) noexcept {
    ::rmdir(folder.c_str());
}

}  // namespace Mirqos::Tool
