#include "tools/mirqos/PartFile.h"

#include <utility>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

LocalFile CreatePart(const std::string& name, const std::string& partName) {
    if (IsFolder(name)) {
        throw Failure(ExitCode::LocalFile,
                      "'" + Printable(name) + "' is a folder; name the file to write");
    }
    if (IsOtherThanFile(name)) {
        throw Failure(ExitCode::LocalFile, "'" + Printable(name) + "' is not an ordinary file");
    }
    if (FileExists(partName)) {
        throw Failure(ExitCode::LocalFile, "'" + Printable(partName) +
                                               "' exists: another run is writing it, or one was "
                                               "killed; in that case remove it");
    }
    return LocalFile::CreateNew(partName);
}

}  // namespace

PartFile::PartFile(std::string name, std::string partName)
    : m_name(std::move(name)),
      m_partName(std::move(partName)),
      m_file(CreatePart(m_name, m_partName)) {
}

PartFile::~PartFile() {
    if (!m_committed) {
        // Windows removes an open file only when it is closed
        { const LocalFile closed(std::move(m_file)); }
        RemoveFile(m_partName);
    }
}

void PartFile::Commit() {
    m_file.Flush();
    m_file.Close();
    MoveOver(m_partName, m_name);
    m_committed = true;
}

}  // namespace Mirqos::Tool
