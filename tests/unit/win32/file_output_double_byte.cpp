#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/win32/FileOutputTest.h"

namespace Mirqos::Test {
namespace {

using NSDBG::CFileOutput;

/// Log files where the ANSI code page is that of Japan, in which most characters are two bytes.
class FileOutputOfTwoBytes : public FileOutputTest {
protected:
    void SetUp() override { ASSERT_EQ(GetACP(), 932u); }

    static std::wstring Wide(std::size_t nCharacters) {
        return std::wstring(nCharacters, L'\x65E5');
    }
    static std::string Narrow(std::size_t nCharacters) {
        std::string text;
        while (text.size() < 2 * nCharacters) {
            text += "\x93\xFA";
        }
        return text;
    }
};

TEST_F(FileOutputOfTwoBytes, AnAnsiFileTakesWideMessagesUpTo1023Bytes) {
    WriteBytes(m_path, "old\r\n");
    CFileOutput output;
    output.Write(1, 0, (Wide(511) + L"x").c_str());
    output.Write(1, 0, Wide(512).c_str());
    const std::vector<std::string> lines = LinesIn(BytesOf(m_path));
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_NE(lines[1].find("] " + Narrow(511) + "x   {"), std::string::npos);
    EXPECT_NE(lines[2].find("]    {"), std::string::npos);
}

TEST_F(FileOutputOfTwoBytes, AUnicodeFileTakesNarrowMessagesUpTo1023Characters) {
    CFileOutput output;
    output.Write(1, 0, Narrow(1023).c_str());
    output.Write(1, 0, Narrow(1024).c_str());
    const std::vector<std::wstring> lines = MessagesOf(m_path);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[0].find(L"] " + Wide(1023) + L"   {"), std::wstring::npos);
    EXPECT_NE(lines[1].find(L"]    {"), std::wstring::npos);
}

}  // namespace
}  // namespace Mirqos::Test
