#include "platform/file_system.h"

#include <windows.h>

namespace Mirqos {
namespace {

constexpr DWORD kMostFolderCharacters = 260;

SystemResult ResultOf(BOOL ok) {
    return ok ? SystemResult{} : SystemResult{false, GetLastError()};
}

class WindowsFile final : public SystemFile {
public:
    explicit WindowsFile(HANDLE file) : m_file(file) {}
    ~WindowsFile() override { CloseHandle(m_file); }
    WindowsFile(const WindowsFile&) = delete;
    WindowsFile& operator=(const WindowsFile&) = delete;

    SystemResult Seek(std::uint64_t offset) override {
        LARGE_INTEGER distance;
        distance.QuadPart = static_cast<LONGLONG>(offset);
        return ResultOf(SetFilePointerEx(m_file, distance, nullptr, FILE_BEGIN));
    }
    SystemResult EndHere() override { return ResultOf(SetEndOfFile(m_file)); }
    SystemResult Read(void* bytes, std::uint32_t size, std::uint32_t& got) override {
        DWORD count = 0;
        const SystemResult result = ResultOf(ReadFile(m_file, bytes, size, &count, nullptr));
        got = count;
        return result;
    }
    SystemResult Write(const void* bytes, std::uint32_t size, std::uint32_t& written) override {
        DWORD count = 0;
        const SystemResult result = ResultOf(WriteFile(m_file, bytes, size, &count, nullptr));
        written = count;
        return result;
    }
    SystemResult Size(std::uint64_t& size) override {
        LARGE_INTEGER value = {};
        const SystemResult result = ResultOf(GetFileSizeEx(m_file, &value));
        size = static_cast<std::uint64_t>(value.QuadPart);
        return result;
    }

private:
    const HANDLE m_file;
};

class WindowsFiles final : public FileSystem {
public:
    SystemResult TemporaryFolder(std::wstring& folder) override {
        wchar_t room[kMostFolderCharacters + 1];
        const DWORD length = GetTempPathW(kMostFolderCharacters, room);
        if (length == 0) {
            return {false, GetLastError()};
        }
        if (length > kMostFolderCharacters) {
            return {false, ERROR_BUFFER_OVERFLOW};  // the call sets none
        }
        folder.assign(room, length);
        return {};
    }
    SystemResult NewTemporaryFile(const std::wstring& folder, const wchar_t* prefix,
                                  std::wstring& name) override {
        wchar_t room[MAX_PATH] = {};
        const SystemResult result =
            ResultOf(GetTempFileNameW(folder.c_str(), prefix, 0, room) != 0);
        name = room;
        return result;
    }
    SystemResult Create(const std::wstring& name, std::unique_ptr<SystemFile>& file) override {
        return Handle(name, GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS, file);
    }
    SystemResult Open(const std::wstring& name, std::unique_ptr<SystemFile>& file) override {
        return Handle(name, GENERIC_READ, OPEN_EXISTING, file);
    }
    bool Exists(const std::wstring& name) override {
        return GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES;
    }
    SystemResult Delete(const std::wstring& name) override {
        return ResultOf(DeleteFileW(name.c_str()));
    }

private:
    static SystemResult Handle(const std::wstring& name, DWORD access, DWORD disposition,
                               std::unique_ptr<SystemFile>& file) {
        const HANDLE handle = CreateFileW(name.c_str(), access, FILE_SHARE_READ, nullptr,
                                          disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle == INVALID_HANDLE_VALUE) {
            return {false, GetLastError()};
        }
        file = std::make_unique<WindowsFile>(handle);
        return {};
    }
};

}  // namespace

FileSystem& SystemFiles() {
    static WindowsFiles files;
    return files;
}

}  // namespace Mirqos
