#include "tools/mirqos/FolderWalk.h"

#include <algorithm>
#include <vector>

#include "tools/mirqos/BackupPath.h"
#include "tools/mirqos/Folder.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

bool IsBefore(const Trouble& a, const Trouble& b) {
    return a.path < b.path;
}

/// Folders wait in a list and not on the stack, which deep ones could exhaust.
class Walk {
public:
    explicit Walk(const std::string& folder) : m_folder(folder) {}

    FolderContents Run(const std::function<void()>& checkPoint) {
        Take("", ListFolder(m_folder));
        while (!m_waiting.empty()) {
            checkPoint();
            const std::string path = m_waiting.back();
            m_waiting.pop_back();
            try {
                Take(path, ListFolder(JoinPath(m_folder, path)));
            } catch (const Failure& failure) {
                m_contents.unread.push_back({path, failure.what()});
            }
        }
        std::sort(m_contents.unread.begin(), m_contents.unread.end(), &IsBefore);
        return std::move(m_contents);
    }

private:
    void Take(const std::string& path, const std::vector<FolderEntry>& entries) {
        if (entries.empty() && !path.empty() && !IsOwn(path)) {
            m_contents.emptyFolders.insert(path);
        }
        for (const FolderEntry& entry : entries) {
            TakeEntry(path.empty() ? entry.name : path + "/" + entry.name, entry);
        }
    }

    void TakeEntry(const std::string& path, const FolderEntry& entry) {
        if (entry.kind == FolderEntry::Kind::Other) {
            ++m_contents.leftOut;
        } else if (!IsUtf8(entry.name)) {
            m_contents.unread.push_back({path, "its name is not valid UTF-8"});
        } else if (std::string fault = FaultOfName(entry.name, OwnNameRules()); !fault.empty()) {
            // opened by its name, it would be something else
            m_contents.unread.push_back({path, "cannot be read: " + fault});
        } else if (entry.kind == FolderEntry::Kind::Unknown) {
            m_contents.unread.push_back({path, entry.why});
        } else if (entry.kind == FolderEntry::Kind::Folder) {
            m_waiting.push_back(path);
        } else {
            m_contents.files[path] = entry.state;
        }
    }

    const std::string& m_folder;
    std::vector<std::string> m_waiting;
    FolderContents m_contents;
};

}  // namespace

bool FolderContents::IsUnknown(const std::string& path) const {
    Trouble sought{path, ""};
    while (!std::binary_search(unread.begin(), unread.end(), sought, &IsBefore)) {
        const std::size_t slash = sought.path.rfind('/');
        if (slash == std::string::npos) {
            return false;
        }
        sought.path.resize(slash);
    }
    return true;
}

FolderContents WalkFolder(const std::string& folder, const std::function<void()>& checkPoint) {
    return Walk(folder).Run(checkPoint);
}

}  // namespace Mirqos::Tool
