#include "tools/mirqos/PartFolder.h"

#include <utility>

#include "tools/mirqos/BackupPath.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Folder.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

std::string MakeOwnFolder(const std::string& folder) {
    const std::string name = JoinPath(folder, std::string(kOwnFolder));
    MakeFolders(folder);
    // an abrupt end leaves it empty on Windows, where open files go only with their process
    if (!MakeFolder(name) && !ListFolder(name).empty()) {
        throw Failure(ExitCode::LocalFile, "'" + Printable(name) +
                                               "' exists: another run is restoring there, or one "
                                               "was killed; in that case remove it");
    }
    return name;
}

void RemoveWithFiles(const std::string& folder) noexcept {
    try {
        for (const FolderEntry& entry : ListFolder(folder)) {
            RemoveFile(JoinPath(folder, entry.name));
        }
    } catch (const Failure&) {
        // then it cannot be removed either
    }
    RemoveEmptyFolder(folder);
}

}  // namespace

PartFolder::PartFolder(const std::string& folder, Interruption& interruption)
    : m_name(MakeOwnFolder(folder)),
      m_sign(LocalFile::CreateNew(JoinPath(m_name, "in-use"))),
      m_cleanup(interruption.OnAbruptEnd([name = m_name] { RemoveWithFiles(name); })) {
}

PartFolder::~PartFolder() {
    // Windows removes an open file only when it is closed
    { const LocalFile closed(std::move(m_sign)); }
    RemoveWithFiles(m_name);
}

std::string PartFolder::NameOf(std::size_t number) const {
    return JoinPath(m_name, std::to_string(number) + ".part");
}

}  // namespace Mirqos::Tool
