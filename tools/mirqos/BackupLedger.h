#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <vector>

#include "tools/mirqos/BackupStore.h"
#include "tools/mirqos/Manifest.h"

namespace Mirqos::Tool {

/// The manifest of a run under way. It is saved at the end, and now and then before, so that a run
/// that was killed need not begin again. All members may be called from any thread.
class BackupLedger {
public:
    /// `saved`: whether the manifest is stored like this already.
    BackupLedger(const BackupStore& backup, MIRQOSInterface& store, Manifest manifest, bool saved);

    /// The object of the path holds this now. Throws what BackupStore::Save throws.
    void Record(const std::string& path, const FileRecord& record);
    /// Saves the manifest of a run that went to its end.
    void SaveEnded();
    /// Saves that of a run that failed, whose failure is the one to tell.
    void SaveUnfinished() noexcept;

    /// Forgets the files that are deleted; returns their paths.
    std::vector<std::string> ForgetDeleted();

private:
    using Clock = std::chrono::steady_clock;
    void Save(const std::lock_guard<std::mutex>& held, bool runEnded);

    const BackupStore& m_backup;
    MIRQOSInterface& m_store;
    std::mutex m_mutex;
    Manifest m_manifest;
    bool m_saved;
    bool m_recorded = false;
    Clock::time_point m_lastSave = Clock::now();
};

}  // namespace Mirqos::Tool
