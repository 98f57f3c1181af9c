#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "tools/mirqos/LocalFile.h"

namespace Mirqos::Tool {

/// What a backup knows of one file.
struct FileRecord {
    FileState state;
    std::string sha256;  ///< lower-case hexadecimal
    /// Changed so shortly before it was read that a later change may bear the same time.
    bool recent = false;
    /// The file is no longer in the folder; its object is still stored.
    bool deleted = false;
    /// A run was about to replace or remove the object: nobody knows whether it still holds this.
    bool unsure = false;

    bool operator==(const FileRecord& rhs) const {
        return state == rhs.state && sha256 == rhs.sha256 && recent == rhs.recent &&
               deleted == rhs.deleted && unsure == rhs.unsure;
    }
};

/// What a backup holds, by path. Names no object that is not stored, but where it is unsure.
struct Manifest {
    std::map<std::string, FileRecord> files;
    std::set<std::string> emptyFolders;
    /// False while a run is under way: files may be missing, or stand here as they were before.
    bool runEnded = true;

    bool operator==(const Manifest& rhs) const {
        return files == rhs.files && emptyFolders == rhs.emptyFolders && runEnded == rhs.runEnded;
    }
};

/// One JSON document a line: what this is, then a file or an empty folder each, and at last how
/// many lines these are and the SHA-256 digest of all bytes before the last line.
///     {"format":"mirqos-manifest","version":1,"runEnded":true}
///     {"path":"a/b.txt","size":5,"modified":17000000000000000,"sha256":"..."}
///     {"path":"a/c.txt","size":5,"modified":17000000000000000,"sha256":"...","deleted":true}
///     {"path":"a/d.txt","size":5,"modified":17000000000000000,"sha256":"...","unsure":true}
///     {"emptyFolder":"d"}
///     {"lines":4,"sha256":"..."}
std::string FormatManifest(const Manifest& manifest);

/// Throws Failure (OperationFailed) for what FormatManifest did not write, to the byte, so that a
/// damaged manifest is never taken for a smaller one.
Manifest ParseManifest(std::string_view text);

}  // namespace Mirqos::Tool
