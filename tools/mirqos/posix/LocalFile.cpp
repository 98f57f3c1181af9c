#include "tools/mirqos/LocalFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/posix/FileStatus.h"

namespace Mirqos::Tool {

namespace {

int Descriptor(std::intptr_t handle) {
    return static_cast<int>(handle);
}

// one system call moves at most about 2 GiB
constexpr std::size_t kMostPerCall = std::size_t{1} << 30U;

}  // namespace

LocalFile LocalFile::OpenForReading(const std::string& name) {
    // not blocking: a pipe without a writer would wait for one before it could be refused
    const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        FailWith(errno, "open", name);
    }
    LocalFile file(descriptor, name);
    struct stat info {};
    if (::fstat(descriptor, &info) != 0) {
        file.Fail("examine");
    }
    if (!S_ISREG(info.st_mode)) {
        throw Failure(ExitCode::LocalFile, "'" + Printable(name) + "' is not an ordinary file");
    }
    return file;
}

LocalFile LocalFile::CreateNew(const std::string& name) {
    const int descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        FailWith(errno, "create", name);
    }
    return LocalFile(descriptor, name);
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
        ::close(Descriptor(m_handle));
    }
}

void LocalFile::Fail(const char* doing) const {
    FailWith(errno, doing, m_name);
}

FileState LocalFile::State() const {
    struct stat info {};
    if (::fstat(Descriptor(m_handle), &info) != 0) {
        Fail("examine");
    }
    return StateOf(info);
}

std::size_t LocalFile::Read(unsigned char* to, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count =
            ::read(Descriptor(m_handle), to + done, std::min(size - done, kMostPerCall));
        if (count == 0) {
            break;
        }
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            Fail("read");
        }
    }
    return done;
}

void LocalFile::WriteAt(std::uint64_t offset, const unsigned char* from, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count =
            ::pwrite(Descriptor(m_handle), from + done, std::min(size - done, kMostPerCall),
                     static_cast<off_t>(offset + done));
        if (count >= 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            Fail("write");
        }
    }
}

void LocalFile::SetModified(FileTime time) {
    const timespec modified = TimespecOf(time);
    const std::array<timespec, 2> times = {modified, modified};
    if (::futimens(Descriptor(m_handle), times.data()) != 0) {
        Fail("set the time of");
    }
}

void LocalFile::Flush() {
    if (::fsync(Descriptor(m_handle)) != 0) {
        Fail("write");
    }
}

void LocalFile::Close() {
    const Handle handle = std::exchange(m_handle, kClosed);
    if (handle != kClosed && ::close(Descriptor(handle)) != 0) {
        Fail("close");
    }
}

void MoveOver(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) != 0) {
        FailWith(errno, "write", to);
    }
}

bool RemoveFile(const std::string& name) noexcept {
    return ::unlink(name.c_str()) == 0 || errno == ENOENT;
}

bool IsFolder(const std::string& name) {
    struct stat info {};
    return ::stat(name.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool IsOtherThanFile(const std::string& name) {
    struct stat info {};
    return ::stat(name.c_str(), &info) == 0 && !S_ISREG(info.st_mode);
}

bool FileExists(const std::string& name) {
    struct stat info {};
    return ::lstat(name.c_str(), &info) == 0;
}

}  // namespace Mirqos::Tool
