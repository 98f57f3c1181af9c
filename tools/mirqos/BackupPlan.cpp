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
        TakeKeys();
        for (const auto& [path, state] : m_contents.files) {
            if (const std::string fault = FaultOfSource(m_options.base, path); !fault.empty()) {
                Refuse(path, fault);
                continue;
            }
            std::string& owner = m_owners.emplace(KeyOf(path), path).first->second;
            if (owner != path && IsThere(owner)) {
                Refuse(path, "the service would store it as it stores '" + owner + "'");
                continue;
            }
            Take(path, state, owner == path ? "" : owner);
            owner = path;
        }
        for (auto& [path, record] : m_plan.manifest.files) {
            if (!IsThere(path) && !record.deleted) {
                record.deleted = true;
                ++m_plan.gone;
            }
        }
        return std::move(m_plan);
    }

private:
    std::string KeyOf(const std::string& path) const {
        return StoredKey(m_options.provider, m_options.base + path);
    }

    bool IsThere(const std::string& path) const {
        return m_contents.files.count(path) > 0 || m_contents.IsUnknown(path);
    }

    void Refuse(const std::string& path, const std::string& fault) {
        m_plan.refused.push_back({path, "cannot be backed up: " + fault});
    }

    /// What is stored keeps its key. Of two files that share one, as where the kind of provider was
    /// another before, one is forgotten, and whose the object is nobody knows.
    void TakeKeys() {
        auto& files = m_plan.manifest.files;
        for (auto next = files.begin(); next != files.end();) {
            const auto file = next++;
            const auto [key, free] = m_owners.emplace(KeyOf(file->first), file->first);
            if (free) {
                continue;
            }
            auto kept = files.find(key->second);
            auto forgotten = file;
            if (!IsThere(kept->first)) {
                std::swap(kept, forgotten);
            }
            kept->second.unsure = true;
            key->second = kept->first;
            files.erase(forgotten);
        }
    }

    void Take(const std::string& path, const FileState& state, const std::string& displaced) {
        BackupPlan::Task task;
        task.path = path;
        task.size = state.size;
        task.displaced = displaced;
        const auto known = m_plan.manifest.files.find(path);
        if (known != m_plan.manifest.files.end()) {
            FileRecord& record = known->second;
            record.deleted = false;
            const bool trusted = !record.unsure && !m_options.fresh;
            const bool same = trusted && record.state == state;
            if (same && !record.recent && !m_options.rehash) {
                ++m_plan.unchanged;
                m_plan.unchangedBytes += state.size;
                return;
            }
            task.likely = !same;
            if (trusted) {
                task.stored = record;
            }
        }
        m_plan.tasks.push_back(std::move(task));
    }

    const FolderContents& m_contents;
    const BackupPlanOptions& m_options;
    BackupPlan m_plan;
    std::map<std::string, std::string> m_owners;  ///< paths, by the key that the service gives
};

}  // namespace

BackupPlan PlanBackup(const FolderContents& contents, const Manifest& before,
                      const BackupPlanOptions& options) {
    return Planner(contents, before, options).Run();
}

}  // namespace Mirqos::Tool
