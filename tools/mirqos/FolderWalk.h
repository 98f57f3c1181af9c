#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>

#include "tools/mirqos/LocalFile.h"
#include "tools/mirqos/Trouble.h"

namespace Mirqos::Tool {

/// What stands in a folder and all below it, by path.
struct FolderContents {
    std::map<std::string, FileState> files;
    std::set<std::string> emptyFolders;  ///< without the program's own
    /// Folders that could not be listed, what could not be examined, names that are no UTF-8 or
    /// that the system takes for others; sorted by path.
    Troubles unread;
    /// Links, which are not followed, pipes, devices.
    std::uint64_t leftOut = 0;

    /// Whether the path is, or lies below, one that could not be read: nobody knows whether it is
    /// there.
    bool IsUnknown(const std::string& path) const;
};

/// `checkPoint` is called now and then and may throw. Throws Failure (LocalFile) only where the
/// folder itself cannot be listed.
FolderContents WalkFolder(const std::string& folder, const std::function<void()>& checkPoint);

}  // namespace Mirqos::Tool
