#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Mirqos::Tool {

/// A moment in steps of 100 ns since 1970 began (UTC), the finest that all systems keep of files.
using FileTime = std::int64_t;

/// What tells without reading a file whether it is still the same.
struct FileState {
    std::uint64_t size = 0;
    FileTime modified = 0;  ///< when its contents were changed last

    bool operator==(const FileState& rhs) const {
        return size == rhs.size && modified == rhs.modified;
    }
    bool operator!=(const FileState& rhs) const { return !(*this == rhs); }
};

/// An open file of this machine; names are UTF-8. Every failure throws Failure (LocalFile) that
/// names the file and says what the system says. Movable, closed by the destructor.
class LocalFile {
public:
    /// An existing ordinary file; folders, pipes and devices are refused.
    static LocalFile OpenForReading(const std::string& name);
    /// A file that must not exist yet. It can be removed by name while it is open.
    static LocalFile CreateNew(const std::string& name);

    LocalFile(LocalFile&& rhs) noexcept;
    LocalFile& operator=(LocalFile&& rhs) noexcept;
    LocalFile(const LocalFile&) = delete;
    LocalFile& operator=(const LocalFile&) = delete;
    ~LocalFile();

    FileState State() const;
    std::uint64_t Size() const { return State().size; }
    /// Reads on from where the last read ended. Less than `size` only at the end of the file.
    std::size_t Read(unsigned char* to, std::size_t size);
    /// Writes all of it. Several threads may write different places at once.
    void WriteAt(std::uint64_t offset, const unsigned char* from, std::size_t size);
    /// Of a file that was created.
    void SetModified(FileTime time);
    /// Returns when the contents have reached the disk.
    void Flush();
    void Close();

private:
    /// A POSIX descriptor or a Windows handle.
    using Handle = std::intptr_t;
    static constexpr Handle kClosed = -1;

    LocalFile(Handle handle, std::string name);
    [[noreturn]] void Fail(const char* doing) const;

    Handle m_handle = kClosed;
    std::string m_name;
};

/// Gives `from` the name `to`, in one step also where `to` exists. Throws Failure (LocalFile).
void MoveOver(const std::string& from, const std::string& to);

/// Whether the file is gone afterwards.
bool RemoveFile(const std::string& name) noexcept;

bool IsFolder(const std::string& name);

/// Whether there is something with that name, or where a link of that name leads, that is no
/// ordinary file.
bool IsOtherThanFile(const std::string& name);

/// Whether there is anything with that name.
bool FileExists(const std::string& name);

}  // namespace Mirqos::Tool
