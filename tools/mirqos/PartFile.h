#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "tools/mirqos/LocalFile.h"

namespace Mirqos::Tool {

/// A file that appears under its name only when it is complete. Until Commit its bytes are in
/// NAME.part, which the destructor removes; a file that had the name before stays as it was.
class PartFile {
public:
    /// Throws Failure (LocalFile) also when NAME is a folder or a device, or NAME.part exists:
    /// another run may be using that one, and it may be the user's own.
    explicit PartFile(const std::string& name) : PartFile(name, name + ".part") {}
    /// The bytes are collected in `partName`, on the same file system.
    PartFile(std::string name, std::string partName);
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;
    ~PartFile();

    const std::string& PartName() const { return m_partName; }

    /// Several threads may write different places at once. Throws Failure (LocalFile).
    void WriteAt(std::uint64_t offset, const unsigned char* from, std::size_t size) {
        m_file.WriteAt(offset, from, size);
    }

    /// What the file will say of when it was changed; without it, now.
    void SetModified(FileTime time) { m_file.SetModified(time); }

    /// Brings the bytes to the disk and gives the file its name, replacing one that has it. On
    /// failure, a Failure (LocalFile), the old file is untouched.
    void Commit();

private:
    std::string m_name;
    std::string m_partName;
    LocalFile m_file;
    bool m_committed = false;
};

}  // namespace Mirqos::Tool
