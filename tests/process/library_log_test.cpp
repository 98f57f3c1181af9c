#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "tests/process/ChildProcess.h"
#include "tests/support/win32/LogFolder.h"

namespace Mirqos::Test {
namespace {

using Lines = std::vector<std::wstring>;

constexpr std::size_t kHeaderLines = 7;
constexpr wchar_t kHost[] = L"process.library_host.exe";
constexpr wchar_t kLibrary[] = L"MIRQOS.dll";
constexpr wchar_t kDisableGlobalOption[] = L"DisableGlobalOption";
constexpr wchar_t kSummary[] = L"================ SUMMARY LOG =======================";

/// The log of the library as it is built, in a program of another name and version: in the other
/// tests of log files library and program are one.
class LibraryLog : public testing::Test {
protected:
    // Runs the host on a machine with these registry values; the lines stand in own.Log and
    // all.Log.
    void Run(const Lines& values) {
        Lines arguments = {m_own, m_all};
        arguments.insert(arguments.end(), values.begin(), values.end());
        const ChildProcess host(L"process.library_host", arguments);
        m_id = std::to_wstring(host.Id());
        ASSERT_EQ(host.ExitCode(), 0u);
    }

    // What follows the prefix of one of the host's lines of that level; all of another line.
    std::wstring AfterPrefix(const std::wstring& line, int nLevel) const {
        const std::wregex prefix(L"\\[\\d{4}/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d:\\d{3}   0" +
                                 std::to_wstring(nLevel) + L"   0*" + m_id +
                                 L"   \\d{5,} {13}\\] ");
        return std::regex_replace(
            line, prefix, L"",
            std::regex_constants::format_first_only | std::regex_constants::match_continuous);
    }
    // The last line but one, before that of the library's end; nothing in a file without.
    std::wstring LineOfTheStore(const std::wstring& path) const {
        const Lines lines = LinesOf(path);
        return lines.size() < 2 ? std::wstring() : AfterPrefix(lines[lines.size() - 2], 1);
    }
    static std::wstring ExpectedLineOfTheStore() {
        return std::wstring(L"AwsS3Store::Init thread count -7 counts as 0.   {") + kHost + L"::" +
               kLibrary + L"(" + std::to_wstring(MIRQOS_BUILD) + L".0)}";
    }
    // The level up to which the output writes is that of the header's lines.
    void ExpectHeaderOfLevel(int nLevel) const {
        const Lines lines = LinesOf(m_all);
        ASSERT_EQ(lines.size(), kHeaderLines + 2);
        EXPECT_EQ(AfterPrefix(lines[1], nLevel), kSummary) << lines[1].c_str();
    }

    const LogFolder m_folder;
    const std::wstring m_own = m_folder.PathOf(L"own.Log");
    const std::wstring m_all = m_folder.PathOf(L"all.Log");
    std::wstring m_id;
};

TEST_F(LibraryLog, NamesTheProgramThenTheLibraryAndItsVersion) {
    Run({});
    const Lines lines = LinesOf(m_all);
    ASSERT_EQ(lines.size(), kHeaderLines + 2);
    EXPECT_EQ(LineOfTheStore(m_all), ExpectedLineOfTheStore());
}

TEST_F(LibraryLog, BeginsWithTheVersionOfTheProgramWhereNothingIsInstalled) {
    Run({});
    const Lines lines = LinesOf(m_all);
    ASSERT_EQ(lines.size(), kHeaderLines + 2);
    EXPECT_EQ(lines[0], L"[   Date        Time      Level  PID     TID   ErrCode    ] .......");
    EXPECT_EQ(AfterPrefix(lines[1], 2), kSummary);
    EXPECT_EQ(AfterPrefix(lines[2], 2),
              L"Product Info: [Quorvane (USA) LLC] [quorvane Halvestor] Ver[r7.3 (Update 5)]");
}

TEST_F(LibraryLog, TakesTheLevelOfTheProgramBeforeThatOfTheLibrary) {
    Run({kHost, L"1", kLibrary, L"0"});
    ExpectHeaderOfLevel(1);
}

TEST_F(LibraryLog, TakesTheLevelOfTheLibraryWhereTheProgramHasNone) {
    Run({kLibrary, L"3"});
    ExpectHeaderOfLevel(3);
}

TEST_F(LibraryLog, IgnoresASharedPathInAListedProgram) {
    Run({kDisableGlobalOption, std::wstring(L"other.exe ") + kHost});
    EXPECT_EQ(m_folder.Names(), Lines{L"own.Log"});
    EXPECT_EQ(LineOfTheStore(m_own), ExpectedLineOfTheStore());
}

TEST_F(LibraryLog, GoesByASharedPathWhereNotTheProgramButTheLibraryIsListed) {
    Run({kDisableGlobalOption, std::wstring(L"other.exe ") + kLibrary});
    EXPECT_EQ(LineOfTheStore(m_all), ExpectedLineOfTheStore());
}

}  // namespace
}  // namespace Mirqos::Test
