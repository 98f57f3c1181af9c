#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "tools/mirqos/BackupPlan.h"
#include "tools/mirqos/Manifest.h"

namespace Mirqos::Tool {

/// The manifest of a run under way. It is saved at the end, and now and then before, so that a run
/// that was killed need not begin again; and before an object is replaced or removed of which the
/// stored manifest would no longer be true. All members may be called from any thread. They throw
/// what saving throws.
class BackupLedger {
public:
    using SaveManifest = std::function<void(const Manifest& manifest)>;

    /// `saved`: whether the plan's manifest is stored like this already.
    BackupLedger(SaveManifest save, const BackupPlan& plan, bool saved);

    /// The object of the task is about to be replaced. When this returns, what is stored says that
    /// nobody knows what it holds.
    void Replace(const BackupPlan::Task& task);
    /// The object of the task holds this now.
    void Record(const BackupPlan::Task& task, const FileRecord& record);
    /// Saves the manifest of a run that went to its end.
    void SaveEnded();
    /// Saves that of a run that failed, whose failure is the one to tell. No task is under way.
    void SaveUnfinished() noexcept;

    /// The objects of the files that are deleted are about to be removed: returns their paths, and
    /// the next save says that nobody knows whether they are there.
    std::vector<std::string> DoomDeleted();
    /// They are gone.
    void ForgetDeleted();

private:
    using Clock = std::chrono::steady_clock;
    using Lock = std::lock_guard<std::mutex>;
    void Doubt(const Lock& held, const std::string& path);
    void Settle(const Lock& held);
    void Save(const Lock& held, bool runEnded);

    const SaveManifest m_save;
    std::mutex m_mutex;
    Manifest m_manifest;
    /// Known objects that will most likely be replaced, and are not yet.
    std::set<std::string> m_expected;
    bool m_saved;
    bool m_changed = false;  ///< since the last save
    bool m_doubted = false;  ///< since the last save
    Clock::time_point m_lastSave = Clock::now();
};

}  // namespace Mirqos::Tool
