#pragma once

#include <string>
#include <vector>

#include "tools/mirqos/LocalFile.h"

namespace Mirqos::Tool {

/// The characters between a folder's name and what stands in it.
extern const char* const kFolderSeparators;

/// Equal for paths whose names the system takes for the same.
std::string NameIdentity(const std::string& path);

/// What stands in a folder.
struct FolderEntry {
    enum class Kind {
        File,
        Folder,
        Other,   ///< a link, a pipe, a device
        Unknown  ///< the system does not tell
    };

    std::string name;  ///< without the folder's; UTF-8, but for foreign bytes of a POSIX name
    Kind kind = Kind::Other;
    FileState state;  ///< of a file
    std::string why;  ///< nobody knows what it is
};

/// Everything in the folder but "." and "..", sorted by name. Links are not followed, the folder's
/// own name may be one. Throws Failure (LocalFile).
std::vector<FolderEntry> ListFolder(const std::string& folder);

/// Makes the folder and those above it; none of them has to be missing. Throws Failure (LocalFile).
void MakeFolders(const std::string& folder);

/// Makes one folder. Returns false where there is something with that name. Throws Failure
/// (LocalFile).
bool MakeFolder(const std::string& folder);

/// Removes the folder where it is empty.
void RemoveEmptyFolder(const std::string& folder) noexcept;

/// The system's clock, as it stamps files.
FileTime Now();

/// `folder`/`path`.
std::string JoinPath(const std::string& folder, const std::string& path);

}  // namespace Mirqos::Tool
