#include "tools/mirqos/BackupLedger.h"

#include <exception>
#include <utility>

namespace Mirqos::Tool {

namespace {

// what a killed run has to send again at most
constexpr std::chrono::seconds kBetweenSaves{60};

}  // namespace

BackupLedger::BackupLedger(const BackupStore& backup, MIRQOSInterface& store, Manifest manifest,
                           bool saved)
    : m_backup(backup), m_store(store), m_manifest(std::move(manifest)), m_saved(saved) {
}

void BackupLedger::Record(const std::string& path, const FileRecord& record) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_manifest.files[path] = record;
    m_recorded = true;
    if (Clock::now() - m_lastSave > kBetweenSaves) {
        Save(lock, false);
    }
}

void BackupLedger::SaveEnded() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_recorded || !m_saved) {
        Save(lock, true);
    }
}

void BackupLedger::SaveUnfinished() noexcept {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_recorded) {
        try {
            Save(lock, false);
        } catch (const std::exception&) {
            // the next run sends again what this one has sent
        }
    }
}

std::vector<std::string> BackupLedger::ForgetDeleted() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::string> paths;
    for (auto file = m_manifest.files.begin(); file != m_manifest.files.end();) {
        if (file->second.deleted) {
            paths.push_back(file->first);
            file = m_manifest.files.erase(file);
            m_saved = false;
        } else {
            ++file;
        }
    }
    return paths;
}

void BackupLedger::Save(const std::lock_guard<std::mutex>& /*held*/, bool runEnded) {
    m_manifest.runEnded = runEnded;
    m_backup.Save(m_store, m_manifest);
    m_saved = runEnded;
    m_recorded = false;
    m_lastSave = Clock::now();
}

}  // namespace Mirqos::Tool
