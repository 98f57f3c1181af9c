#include "log/dbg/win32/LogFile.h"

#include "log/dbg/LogText.h"
#include "log/dbg/win32/OpenToEveryone.h"
#include "log/dbg/win32/WindowsCalls.h"

namespace LOGUTILS {
namespace {

bool IsFullSize(std::uint32_t dwLowSize) {
    return dwLowSize >= kFullSize;
}

}  // namespace

File OpenLogFile(const WideString& path) {
    OpenToEveryone security;
    return File(Windows().createFile(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE, security.Attributes(),
                                     OPEN_ALWAYS, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

std::optional<std::uint64_t> SizeOf(const File& file) {
    LARGE_INTEGER size = {};
    if (!Windows().getFileSizeEx(file.Get(), &size)) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(size.QuadPart);
}

bool IsFull(const File& file) {
    return IsFullSize(static_cast<std::uint32_t>(SizeOf(file).value_or(0)));
}

bool IsFull(const WideString& path) {
    WIN32_FILE_ATTRIBUTE_DATA facts = {};
    return Windows().getFileAttributesEx(path.c_str(), GetFileExInfoStandard, &facts) != 0 &&
           IsFullSize(facts.nFileSizeLow);
}

// A position in the OVERLAPPED record makes one call of seeking and reading or writing.

std::optional<std::array<char, 2>> ReadBeginning(const File& file) {
    OVERLAPPED start = {};
    std::array<char, 2> bytes = {};
    DWORD dwRead = 0;
    if (!Windows().readFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &dwRead,
                            &start) ||
        dwRead != bytes.size()) {
        return std::nullopt;
    }
    return bytes;
}

void WriteByteOrderMark(const File& file) {
    OVERLAPPED start = {};
    DWORD dwWritten = 0;
    Windows().writeFile(file.Get(), kByteOrderMark.data(),
                        static_cast<DWORD>(kByteOrderMark.size()), &dwWritten, &start);
    Windows().flushFileBuffers(file.Get());
}

}  // namespace LOGUTILS
