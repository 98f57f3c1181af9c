#include "tests/support/win32/LogFolder.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <winioctl.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <system_error>

#include "log/dbg/LogFilePath.h"
#include "log/dbg/LogText.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "log/dbg/win32/Owned.h"

namespace Mirqos::Test {
namespace {

using LOGUTILS::File;

File OpenFile(const std::wstring& path, DWORD dwAccess, DWORD dwDisposition) {
    return File(CreateFileW(path.c_str(), dwAccess, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            dwDisposition, 0, nullptr));
}

void Put(const File& file, const std::string& bytes) {
    DWORD dwWritten = 0;
    EXPECT_TRUE(
        WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &dwWritten, nullptr));
    EXPECT_EQ(dwWritten, bytes.size());
}

template <typename Char>
std::vector<std::basic_string<Char>> Split(std::basic_string_view<Char> text) {
    constexpr Char kEnd[] = {'\r', '\n', 0};
    std::vector<std::basic_string<Char>> lines;
    while (!text.empty()) {
        const std::size_t nEnd = text.find(kEnd);
        if (nEnd == text.npos) {
            ADD_FAILURE() << "the last line has no end";
            break;
        }
        lines.emplace_back(text.substr(0, nEnd));
        text.remove_prefix(nEnd + 2);
    }
    return lines;
}

}  // namespace

LogFolder::LogFolder() {
    static std::atomic<int> number{0};
    m_path = LOGUTILS::ExecutablePath() + L"." + std::to_wstring(GetCurrentProcessId()) + L"." +
             std::to_wstring(++number);
    EXPECT_TRUE(CreateDirectoryW(m_path.c_str(), nullptr)) << GetLastError();
}

LogFolder::~LogFolder() {
    std::error_code failure;
    std::filesystem::remove_all(m_path, failure);
    EXPECT_FALSE(failure) << failure.message();
}

std::vector<std::wstring> LogFolder::Names() const {
    std::vector<std::wstring> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_path)) {
        names.push_back(entry.path().filename().wstring());
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool Exists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::uint64_t FileSizeOf(const std::wstring& path) {
    LARGE_INTEGER size = {};
    GetFileSizeEx(OpenFile(path, GENERIC_READ, OPEN_EXISTING).Get(), &size);
    return static_cast<std::uint64_t>(size.QuadPart);
}

std::string BytesOf(const std::wstring& path, std::uint64_t nOffset) {
    const File file = OpenFile(path, GENERIC_READ, OPEN_EXISTING);
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(file.Get(), &size)) {
        return {};
    }
    LARGE_INTEGER offset = {};
    offset.QuadPart = static_cast<LONGLONG>(nOffset);
    EXPECT_TRUE(SetFilePointerEx(file.Get(), offset, nullptr, FILE_BEGIN));
    std::string bytes(static_cast<std::size_t>(size.QuadPart - offset.QuadPart), '\0');
    DWORD dwRead = 0;
    EXPECT_TRUE(
        ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &dwRead, nullptr));
    bytes.resize(dwRead);
    return bytes;
}

void WriteBytes(const std::wstring& path, const std::string& bytes) {
    const File file = OpenFile(path, GENERIC_WRITE, CREATE_ALWAYS);
    ASSERT_TRUE(file) << GetLastError();
    Put(file, bytes);
}

void WriteSparse(const std::wstring& path, std::uint64_t nSize, const std::string& bytes) {
    const File file = OpenFile(path, GENERIC_WRITE, CREATE_ALWAYS);
    ASSERT_TRUE(file) << GetLastError();
    DWORD dwReturned = 0;  // where the file system has no sparse files it does without
    DeviceIoControl(file.Get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &dwReturned, nullptr);
    Put(file, bytes);
    LARGE_INTEGER end = {};
    end.QuadPart = static_cast<LONGLONG>(nSize);
    ASSERT_TRUE(SetFilePointerEx(file.Get(), end, nullptr, FILE_BEGIN));
    ASSERT_TRUE(SetEndOfFile(file.Get())) << GetLastError();
}

std::wstring TextOfUtf16(const std::string& bytes) {
    EXPECT_EQ(bytes.size() % 2, 0u);
    std::wstring text;
    for (std::size_t n = 0; n + 1 < bytes.size(); n += 2) {
        text += static_cast<wchar_t>(static_cast<unsigned char>(bytes[n]) |
                                     static_cast<unsigned char>(bytes[n + 1]) << 8);
    }
    return text;
}

std::vector<std::wstring> LinesIn(const std::wstring& text) {
    return Split(std::wstring_view(text));
}

std::vector<std::string> LinesIn(const std::string& text) {
    return Split(std::string_view(text));
}

std::vector<std::wstring> LinesOf(const std::wstring& path) {
    const std::string bytes = BytesOf(path);
    const std::string mark(LOGUTILS::kByteOrderMark);
    EXPECT_EQ(bytes.substr(0, mark.size()), mark);
    return bytes.size() < mark.size() ? std::vector<std::wstring>()
                                      : LinesIn(TextOfUtf16(bytes.substr(mark.size())));
}

std::size_t CountContaining(const std::vector<std::wstring>& lines, const std::wstring& part) {
    return static_cast<std::size_t>(std::count_if(
        lines.begin(), lines.end(),
        [&](const std::wstring& line) { return line.find(part) != std::wstring::npos; }));
}

}  // namespace Mirqos::Test
