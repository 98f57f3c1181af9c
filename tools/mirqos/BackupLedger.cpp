#include "tools/mirqos/BackupLedger.h"

#include <exception>
#include <utility>

namespace Mirqos::Tool {

namespace {

// what a killed run has to send again at most
constexpr std::chrono::seconds kBetweenSaves{60};

}  // namespace

BackupLedger::BackupLedger(SaveManifest save, const BackupPlan& plan, bool saved)
    : m_save(std::move(save)), m_manifest(plan.manifest), m_saved(saved) {
    for (const BackupPlan::Task& task : plan.tasks) {
        const auto known = m_manifest.files.find(task.path);
        if (task.likely && known != m_manifest.files.end() && !known->second.unsure) {
            m_expected.insert(task.path);
        }
    }
}

void BackupLedger::Replace(const BackupPlan::Task& task) {
    const Lock lock(m_mutex);
    Doubt(lock, task.path);
    Doubt(lock, task.displaced);
    if (m_doubted) {
        // so that one save does for all of them
        for (const std::string& path : m_expected) {
            Doubt(lock, path);
        }
        Save(lock, false);
    }
    m_expected.erase(task.path);
}

void BackupLedger::Record(const BackupPlan::Task& task, const FileRecord& record) {
    const Lock lock(m_mutex);
    m_manifest.files[task.path] = record;
    m_manifest.files.erase(task.displaced);
    m_expected.erase(task.path);
    m_changed = true;
    if (Clock::now() - m_lastSave > kBetweenSaves) {
        Save(lock, false);
    }
}

void BackupLedger::SaveEnded() {
    const Lock lock(m_mutex);
    Settle(lock);
    if (m_changed || !m_saved) {
        Save(lock, true);
    }
}

void BackupLedger::SaveUnfinished() noexcept {
    const Lock lock(m_mutex);
    Settle(lock);
    if (m_changed) {
        try {
            Save(lock, false);
        } catch (const std::exception&) {
            // the next run sends again what this one has sent
        }
    }
}

std::vector<std::string> BackupLedger::DoomDeleted() {
    const Lock lock(m_mutex);
    std::vector<std::string> paths;
    for (const auto& [path, record] : m_manifest.files) {
        if (record.deleted) {
            paths.push_back(path);
            Doubt(lock, path);
        }
    }
    return paths;
}

void BackupLedger::ForgetDeleted() {
    const Lock lock(m_mutex);
    for (auto file = m_manifest.files.begin(); file != m_manifest.files.end();) {
        if (file->second.deleted) {
            file = m_manifest.files.erase(file);
            m_changed = true;
        } else {
            ++file;
        }
    }
}

void BackupLedger::Doubt(const Lock& /*held*/, const std::string& path) {
    const auto known = m_manifest.files.find(path);
    if (known != m_manifest.files.end() && !known->second.unsure) {
        known->second.unsure = true;
        m_changed = true;
        m_doubted = true;
    }
}

/// What was not replaced after all is as it was.
void BackupLedger::Settle(const Lock& /*held*/) {
    for (const std::string& path : m_expected) {
        bool& unsure = m_manifest.files.at(path).unsure;
        m_changed = m_changed || unsure;
        unsure = false;
    }
}

void BackupLedger::Save(const Lock& /*held*/, bool runEnded) {
    m_manifest.runEnded = runEnded;
    m_save(m_manifest);
    m_saved = runEnded;
    m_changed = false;
    m_doubted = false;
    m_lastSave = Clock::now();
}

}  // namespace Mirqos::Tool
