#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Mirqos::Test {

/// A fresh folder for the log files of a test, below the test program's own; removed at the end.
class LogFolder {
public:
    LogFolder();
    ~LogFolder();
    LogFolder(const LogFolder&) = delete;
    LogFolder& operator=(const LogFolder&) = delete;

    /// The full path, without a "\" at its end.
    const std::wstring& Path() const { return m_path; }
    /// The full path of a file in it.
    std::wstring PathOf(const std::wstring& name) const { return m_path + L"\\" + name; }
    /// The names of the files in it, in alphabetical order.
    std::vector<std::wstring> Names() const;

private:
    std::wstring m_path;
};

bool Exists(const std::wstring& path);
/// 0 when there is no such file.
std::uint64_t FileSizeOf(const std::wstring& path);
/// The bytes of a file from `nOffset` on; none when there is no such file. Writers do not mind.
std::string BytesOf(const std::wstring& path, std::uint64_t nOffset = 0);
/// Makes the file, or empties it, and gives it these bytes.
void WriteBytes(const std::wstring& path, const std::string& bytes);
/// Makes the file with these bytes and then nothing, which takes no room, up to `nSize` bytes.
void WriteSparse(const std::wstring& path, std::uint64_t nSize, const std::string& bytes);

/// The text of UTF-16LE bytes.
std::wstring TextOfUtf16(const std::string& bytes);
/// A text's lines, each of which has to end in CR LF, without these ends.
std::vector<std::wstring> LinesIn(const std::wstring& text);
std::vector<std::string> LinesIn(const std::string& text);
/// The lines of a UTF-16LE log file; its byte-order mark has to be there and is left out.
std::vector<std::wstring> LinesOf(const std::wstring& path);
/// How many lines contain `part`.
std::size_t CountContaining(const std::vector<std::wstring>& lines, const std::wstring& part);

}  // namespace Mirqos::Test
