#include "tools/mirqos/LocalFile.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/win32/FileStatus.h"

namespace Mirqos::Tool {

namespace {

HANDLE SystemHandle(std::intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t kMostPerCall = std::size_t{1} << 30U;

}  // namespace

LocalFile LocalFile::OpenForReading(const std::string& name) {
    if (IsFolder(name)) {
        throw Failure(ExitCode::LocalFile, "'" + Printable(name) + "' is not an ordinary file");
    }
    const HANDLE handle = CreateFileW(SystemPath(name).c_str(), GENERIC_READ, kShareAll, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        FailWith(GetLastError(), "open", name);
    }
    LocalFile file(reinterpret_cast<Handle>(handle), name);
    if (GetFileType(handle) != FILE_TYPE_DISK) {
        throw Failure(ExitCode::LocalFile, "'" + Printable(name) + "' is not an ordinary file");
    }
    return file;
}

LocalFile LocalFile::CreateNew(const std::string& name) {
    const HANDLE handle =
        CreateFileW(SystemPath(name).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                    nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        FailWith(GetLastError(), "create", name);
    }
    return LocalFile(reinterpret_cast<Handle>(handle), name);
}

LocalFile::LocalFile(Handle handle, std::string name) : m_handle(handle), m_name(std::move(name)) {
}

LocalFile::LocalFile(LocalFile&& rhs) noexcept
    : m_handle(std::exchange(rhs.m_handle, kClosed)), m_name(std::move(rhs.m_name)) {
}

LocalFile& LocalFile::operator=(LocalFile&& rhs) noexcept {
    std::swap(m_handle, rhs.m_handle);
    std::swap(m_name, rhs.m_name);
    return *this;
}

LocalFile::~LocalFile() {
    if (m_handle != kClosed) {
        CloseHandle(SystemHandle(m_handle));
    }
}

void LocalFile::Fail(const char* doing) const {
    FailWith(GetLastError(), doing, m_name);
}

FileState LocalFile::State() const {
    const auto state = StateOf(SystemHandle(m_handle));
    if (!state) {
        Fail("examine");
    }
    return *state;
}

std::size_t LocalFile::Read(unsigned char* to, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(size - done, kMostPerCall));
        if (::ReadFile(SystemHandle(m_handle), to + done, wanted, &count, nullptr) == 0) {
            Fail("read");
        }
        if (count == 0) {
            break;
        }
        done += count;
    }
    return done;
}

void LocalFile::WriteAt(std::uint64_t offset, const unsigned char* from, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const std::uint64_t place = offset + done;
        OVERLAPPED at{};
        at.Offset = static_cast<DWORD>(place & 0xFFFFFFFFU);
        at.OffsetHigh = static_cast<DWORD>(place >> 32U);
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(size - done, kMostPerCall));
        if (::WriteFile(SystemHandle(m_handle), from + done, wanted, &count, &at) == 0) {
            Fail("write");
        }
        if (count == 0) {
            FailWith(ERROR_WRITE_FAULT, "write", m_name);
        }
        done += count;
    }
}

void LocalFile::SetModified(FileTime time) {
    const FILETIME modified = SystemTimeOf(time);
    if (SetFileTime(SystemHandle(m_handle), nullptr, nullptr, &modified) == 0) {
        Fail("set the time of");
    }
}

void LocalFile::Flush() {
    if (FlushFileBuffers(SystemHandle(m_handle)) == 0) {
        Fail("write");
    }
}

void LocalFile::Close() {
    const Handle handle = std::exchange(m_handle, kClosed);
    if (handle != kClosed && CloseHandle(SystemHandle(handle)) == 0) {
        Fail("close");
    }
}

void MoveOver(const std::string& from, const std::string& to) {
    if (MoveFileExW(SystemPath(from).c_str(), SystemPath(to).c_str(),
                    MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
        FailWith(GetLastError(), "write", to);
    }
}

bool RemoveFile(const std::string& name) noexcept {
    return DeleteFileW(SystemPath(name).c_str()) != 0 || GetLastError() == ERROR_FILE_NOT_FOUND;
}

bool IsFolder(const std::string& name) {
    const DWORD attributes = GetFileAttributesW(SystemPath(name).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsOtherThanFile(const std::string& name) {
    const DWORD attributes = GetFileAttributesW(SystemPath(name).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) != 0;
}

bool FileExists(const std::string& name) {
    return GetFileAttributesW(SystemPath(name).c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace Mirqos::Tool
