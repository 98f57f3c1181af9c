#include "platform/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/text.h"

namespace Mirqos {
namespace {

SystemResult ResultOf(bool ok) {
    return ok ? SystemResult{} : SystemResult{false, static_cast<std::uint32_t>(errno)};
}

class PosixFile final : public SystemFile {
public:
    explicit PosixFile(int file) : m_file(file) {}
    ~PosixFile() override { close(m_file); }
    PosixFile(const PosixFile&) = delete;
    PosixFile& operator=(const PosixFile&) = delete;

    SystemResult Seek(std::uint64_t offset) override {
        return ResultOf(lseek(m_file, static_cast<off_t>(offset), SEEK_SET) >= 0);
    }
    SystemResult EndHere() override {
        const off_t position = lseek(m_file, 0, SEEK_CUR);
        return ResultOf(position >= 0 && ftruncate(m_file, position) == 0);
    }
    SystemResult Read(void* bytes, std::uint32_t size, std::uint32_t& got) override {
        return Count(read(m_file, bytes, size), got);
    }
    SystemResult Write(const void* bytes, std::uint32_t size, std::uint32_t& written) override {
        return Count(write(m_file, bytes, size), written);
    }
    SystemResult Size(std::uint64_t& size) override {
        struct stat status = {};
        const SystemResult result = ResultOf(fstat(m_file, &status) == 0);
        size = static_cast<std::uint64_t>(status.st_size);
        return result;
    }

private:
    static SystemResult Count(ssize_t moved, std::uint32_t& count) {
        const SystemResult result = ResultOf(moved >= 0);
        count = moved >= 0 ? static_cast<std::uint32_t>(moved) : 0;
        return result;
    }

    const int m_file;
};

class PosixFiles final : public FileSystem {
public:
    SystemResult TemporaryFolder(std::wstring& folder) override {
        const char* const named = std::getenv("TMPDIR");
        folder = WidenText(named != nullptr ? named : "/tmp");
        folder += L'/';
        return {};
    }
    SystemResult NewTemporaryFile(const std::wstring& folder, const wchar_t* prefix,
                                  std::wstring& name) override {
        std::string pattern = NarrowText((folder + prefix + L"XXXXXX").c_str());
        const int file = mkstemp(pattern.data());
        const SystemResult result = ResultOf(file >= 0);
        if (file >= 0) {
            close(file);
            name = WidenText(pattern.c_str());
        }
        return result;
    }
    SystemResult Create(const std::wstring& name, std::unique_ptr<SystemFile>& file) override {
        return Descriptor(name, O_RDWR | O_CREAT | O_TRUNC, file);
    }
    SystemResult Open(const std::wstring& name, std::unique_ptr<SystemFile>& file) override {
        return Descriptor(name, O_RDONLY, file);
    }
    bool Exists(const std::wstring& name) override {
        return access(NarrowText(name.c_str()).c_str(), F_OK) == 0;
    }
    SystemResult Delete(const std::wstring& name) override {
        return ResultOf(unlink(NarrowText(name.c_str()).c_str()) == 0);
    }

private:
    static SystemResult Descriptor(const std::wstring& name, int flags,
                                   std::unique_ptr<SystemFile>& file) {
        constexpr mode_t kOwnerOnly = 0600;
        const int descriptor =
            open(NarrowText(name.c_str()).c_str(), flags | O_CLOEXEC, kOwnerOnly);
        const SystemResult result = ResultOf(descriptor >= 0);
        if (descriptor >= 0) {
            file = std::make_unique<PosixFile>(descriptor);
        }
        return result;
    }
};

}  // namespace

FileSystem& SystemFiles() {
    static PosixFiles files;
    return files;
}

}  // namespace Mirqos
