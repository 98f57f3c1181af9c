#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/mirqos/FolderWalk.h"
#include "tools/mirqos/Manifest.h"
#include "tools/mirqos/Trouble.h"

namespace Mirqos::Tool {

/// What a run of the backup has to do.
struct BackupPlan {
    struct Task {
        std::string path;
        std::uint64_t size = 0;
        /// What is stored under the path. Where the file turns out to have the same digest it need
        /// not be sent.
        std::optional<FileRecord> stored;
        /// Whether it will most likely be sent.
        bool likely = false;
        /// A gone file whose object this one's replaces, because the service gives both one key.
        std::string displaced;
    };

    /// To be read, and sent where the contents are new.
    std::vector<Task> tasks;
    /// What is stored before any task is done. A file that will be sent stands in it as it was.
    Manifest manifest;
    /// Files that cannot be backed up under their names.
    Troubles refused;
    std::uint64_t unchanged = 0;
    std::uint64_t unchangedBytes = 0;
    std::uint64_t gone = 0;  ///< files that this run finds deleted
};

struct BackupPlanOptions {
    std::string base;           ///< see KeyBase
    std::int32_t provider = 0;  ///< see StoredKey
    bool rehash = false;        ///< take no file for unchanged because of its size and time
    bool fresh = false;         ///< take nothing for stored
};

/// `before`: the manifest of the run before, empty for the first.
BackupPlan PlanBackup(const FolderContents& contents, const Manifest& before,
                      const BackupPlanOptions& options);

}  // namespace Mirqos::Tool
