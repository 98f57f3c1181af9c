#include "tools/mirqos/Folder.h"

#include <chrono>
#include <ratio>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

void MakeFolders(const std::string& folder) {
    if (folder.empty() || IsFolder(folder)) {
        return;
    }
    const std::size_t slash = folder.find_last_of(kFolderSeparators);
    // not above a root
    if (slash != std::string::npos && slash > 0) {
        MakeFolders(folder.substr(0, slash));
    }
    if (!MakeFolder(folder) && !IsFolder(folder)) {
        throw Failure(ExitCode::LocalFile, "'" + Printable(folder) + "' exists and is no folder");
    }
}

FileTime Now() {
    // this clock counts from 1970 on every system that the program runs on
    using Steps = std::chrono::duration<FileTime, std::ratio<1, 10'000'000>>;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<Steps>(now).count();
}

std::string JoinPath(const std::string& folder, const std::string& path) {
    const bool ended =
        !folder.empty() && folder.find_last_of(kFolderSeparators) == folder.size() - 1;
    return folder + (ended ? "" : "/") + path;
}

}  // namespace Mirqos::Tool
