#pragma once

#include <cstdint>
#include <memory>
#include <string>

/// The few calls to the operating system's files that the library makes. Names are wide on both
/// platforms; errors are the platform's own numbers.
namespace Mirqos {

/// What a call came back with. A failed call may carry the error 0, where the system set none.
struct SystemResult {
    bool ok = true;
    std::uint32_t error = 0;
};

/// An open file; closed when destroyed. One thread at a time.
class SystemFile {
public:
    virtual ~SystemFile() = default;
    /// Moves the position to `offset`, counted from the file's start.
    virtual SystemResult Seek(std::uint64_t offset) = 0;
    /// Makes the file end at the position.
    virtual SystemResult EndHere() = 0;
    /// Reads up to `size` bytes; `got` is 0 at the end of the file.
    virtual SystemResult Read(void* bytes, std::uint32_t size, std::uint32_t& got) = 0;
    /// Writes up to `size` bytes; `written` tells how many went.
    virtual SystemResult Write(const void* bytes, std::uint32_t size, std::uint32_t& written) = 0;
    virtual SystemResult Size(std::uint64_t& size) = 0;
};

/// Any thread may call any member.
class FileSystem {
public:
    virtual ~FileSystem() = default;
    /// The folder for temporary files, of at most 260 characters.
    virtual SystemResult TemporaryFolder(std::wstring& folder) = 0;
    /// Creates a new, empty file of a name that no other has, which begins with `prefix`.
    virtual SystemResult NewTemporaryFile(const std::wstring& folder, const wchar_t* prefix,
                                          std::wstring& name) = 0;
    /// Creates the file, or empties it, for reading and writing.
    virtual SystemResult Create(const std::wstring& name, std::unique_ptr<SystemFile>& file) = 0;
    /// Opens an existing file for reading.
    virtual SystemResult Open(const std::wstring& name, std::unique_ptr<SystemFile>& file) = 0;
    virtual bool Exists(const std::wstring& name) = 0;
    virtual SystemResult Delete(const std::wstring& name) = 0;
};

/// The system's own files, or what ReplaceFileSystem put in their place.
FileSystem& TheFileSystem();

/// Puts `replacement` in the place of the system's files; null brings them back. For tests, while
/// no other thread uses files.
void ReplaceFileSystem(FileSystem* replacement);

/// The system's own files, one for each platform.
FileSystem& SystemFiles();

}  // namespace Mirqos
