#include "tools/mirqos/BackupPlan.h"

#include <map>
#include <utility>

#include "tools/mirqos/BackupPath.h"
#include "tools/mirqos/StoredKey.h"

namespace Mirqos::Tool {

namespace {

class Planner {
public:
    Planner(const FolderContents& contents, const Manifest& before,
            const BackupPlanOptions& options)
        : m_contents(contents), m_options(options) {
        m_plan.manifest.files = before.files;
        m_plan.manifest.emptyFolders = contents.emptyFolders;
        for (const std::string& folder : before.emptyFolders) {
            if (contents.IsUnknown(folder)) {
                m_plan.manifest.emptyFolders.insert(folder);
            }
        }
    }

    BackupPlan Run() {
        for (const auto& [path, state] : m_contents.files) {
            const std::string fault = Fault(path);
            if (fault.empty()) {
                Take(path, state);
            } else {
                m_plan.refused.push_back({path, "cannot be backed up: " + fault});
            }
        }
        for (auto& [path, record] : m_plan.manifest.files) {
            const bool there = m_contents.files.count(path) > 0 || m_contents.IsUnknown(path);
            if (!there && !record.deleted) {
                record.deleted = true;
                ++m_plan.gone;
            }
        }
        return std::move(m_plan);
    }

private:
    std::string Fault(const std::string& path) {
        if (std::string fault = FaultOfSource(m_options.base, path); !fault.empty()) {
            return fault;
        }
        const auto [other, first] =
            m_keys.emplace(StoredKey(m_options.provider, m_options.base + path), path);
        return first ? "" : "the service would store it as it stores '" + other->second + "'";
    }

    void Take(const std::string& path, const FileState& state) {
        const auto known = m_plan.manifest.files.find(path);
        const bool stored = known != m_plan.manifest.files.end();
        if (stored && known->second.state == state && !known->second.recent && !m_options.rehash) {
            known->second.deleted = false;
            ++m_plan.unchanged;
            m_plan.unchangedBytes += state.size;
            return;
        }
        BackupPlan::Task task;
        task.path = path;
        task.size = state.size;
        if (stored) {
            task.stored = known->second;
        }
        m_plan.tasks.push_back(std::move(task));
    }

    const FolderContents& m_contents;
    const BackupPlanOptions& m_options;
    BackupPlan m_plan;
    std::map<std::string, std::string> m_keys;
};

}  // namespace

BackupPlan PlanBackup(const FolderContents& contents, const Manifest& before,
                      const BackupPlanOptions& options) {
    return Planner(contents, before, options).Run();
}

}  // namespace Mirqos::Tool
