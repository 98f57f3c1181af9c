#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "log/dbg/LogFilePath.h"
#include "log/dbg/win32/CLogConfig.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/FileOutputTest.h"
#include "tests/support/win32/IsOpenToEveryone.h"

namespace Mirqos::Test {
namespace {

using Access = NSDBG::FileOutputTestAccess;
using LOGUTILS::WindowsCalls;
using NSDBG::CFileOutput;

/// Which file the lines go to, and on which mutex its writers meet.
class FilePaths : public FileOutputTest {
protected:
    // The names of the mutexes that `work` makes outputs create.
    template <typename Work>
    std::vector<std::wstring> MutexNames(Work work) {
        std::vector<std::wstring> names;
        const CallSpy<&WindowsCalls::createMutex> createMutex(
            [&](SECURITY_ATTRIBUTES* pSecurity, BOOL bOwned, const wchar_t* pszName) {
                names.emplace_back(pszName);
                EXPECT_FALSE(bOwned);
                EXPECT_TRUE(IsOpenToEveryone(pSecurity));
                return createMutex.Real(pSecurity, bOwned, pszName);
            });
        work();
        return names;
    }
};

TEST_F(FilePaths, AnOutputBeginsWithTheseMembers) {
    const CFileOutput output;
    const std::wstring name = LOGUTILS::ExecutableName();
    EXPECT_FALSE(name.empty());
    EXPECT_EQ(Access::Path(output), m_path);
    EXPECT_EQ(Access::ConfigName(output), name);
    EXPECT_EQ(Access::LibraryName(output), name);
    EXPECT_EQ(Access::ProcessName(output), name);
    EXPECT_EQ(Access::ModuleVersion(output), 0u);
    EXPECT_TRUE(Access::IsUnicode(output));
    EXPECT_EQ(Access::Level(output), 2);
    EXPECT_FALSE(Access::IsFileOpen(output));
    EXPECT_FALSE(Access::HasMutex(output));
    EXPECT_FALSE(Access::IgnoresGlobalPath(output));
}

TEST_F(FilePaths, AnOutputThatNobodyConfiguredRegistersAndTakesTheDefaultPath) {
    EditBlock(&LOGUTILS::ClearBlock);
    const CFileOutput output;
    const std::wstring executable = LOGUTILS::ExecutablePath();
    const std::wstring path = executable.substr(0, executable.rfind(L'\\')) + L"\\Logs\\" +
                              LOGUTILS::ExecutableName() + L".Log";
    EXPECT_EQ(Access::Path(output), path);
    EXPECT_EQ(ConfiguredPath(), path);
    EditEntry([](LOGUTILS::LogModuleEntry& entry) {
        EXPECT_EQ(entry.m_nLevel, -1);
        EXPECT_EQ(entry.m_dwFlags, 0xFFFFu);
    });
}

TEST_F(FilePaths, TheFileIsOpenedOpenToEveryoneAndStaysOpen) {
    const CallSpy<&WindowsCalls::createFile> createFile(
        [&](const wchar_t* pszPath, DWORD dwAccess, DWORD dwShare, SECURITY_ATTRIBUTES* pSecurity,
            DWORD dwDisposition, DWORD dwFlags, HANDLE hTemplate) {
            if (dwDisposition == OPEN_ALWAYS) {
                EXPECT_EQ(pszPath, m_path);
                EXPECT_EQ(dwAccess, GENERIC_READ | GENERIC_WRITE);
                EXPECT_EQ(dwShare, static_cast<DWORD>(FILE_SHARE_READ | FILE_SHARE_WRITE));
                EXPECT_EQ(dwFlags, static_cast<DWORD>(FILE_FLAG_SEQUENTIAL_SCAN));
                EXPECT_TRUE(IsOpenToEveryone(pSecurity));
            }
            return createFile.Real(pszPath, dwAccess, dwShare, pSecurity, dwDisposition, dwFlags,
                                   hTemplate);
        });
    CFileOutput output;
    output.Write(1, 0, "one");
    output.Write(1, 0, "two");
    EXPECT_EQ(createFile.Calls(), 1);
    EXPECT_FALSE(DeleteFileW(m_path.c_str())) << "nobody deletes an open log";
}

TEST_F(FilePaths, AChangedPathIsFollowedFromTheNextLineOnAndTheFormerFileClosed) {
    CFileOutput output;
    output.Write(1, 0, "one");
    SetPath(PathOf(L"b.Log"));
    output.Write(1, 0, "two");
    EXPECT_EQ(MessagesOf(m_path).size(), 1u);
    EXPECT_EQ(MessagesOf(PathOf(L"b.Log")).size(), 1u);
    EXPECT_EQ(Access::Path(output), PathOf(L"b.Log"));
    EXPECT_TRUE(DeleteFileW(m_path.c_str())) << GetLastError();
}

TEST_F(FilePaths, AChangedPathMayLieInAFolderThatHasToBeMade) {
    CFileOutput output;
    output.Write(1, 0, "one");
    SetPath(PathOf(L"new\\folder\\b.Log"));
    output.Write(1, 0, "two");
    EXPECT_EQ(MessagesOf(PathOf(L"new\\folder\\b.Log")).size(), 1u);
    EXPECT_TRUE(m_trace.Texts().empty());
}

TEST_F(FilePaths, APathThatDiffersInLetterCaseIsTheSameFile) {
    CFileOutput output;
    output.Write(1, 0, "one");
    SetPath(PathOf(L"A.DLL.LOG"));
    const CallSpy<&WindowsCalls::createFile> createFile;
    output.Write(1, 0, "two");
    EXPECT_EQ(createFile.Calls(), 0);
}

TEST_F(FilePaths, AnotherFileOfTheSeriesIsTakenAsLongAsNoneIsOpen) {
    CFileOutput output;
    const std::wstring third = PathOf(L"a.dll.00000003.log");
    SetPath(third);
    output.Write(1, 0, "one");
    EXPECT_EQ(m_folder.Names(), std::vector<std::wstring>{L"a.dll.00000003.log"});
    SetPath(m_path);
    output.Write(1, 0, "two");
    EXPECT_EQ(MessagesOf(third).size(), 2u) << "the open one counts as the one asked for";
}

TEST_F(FilePaths, APlainNameInTheBlockGoesIntoTheLogRoot) {
    CFileOutput output;
    SetPath(L"plain-name.Log");
    output.Write(1, 0, "one");
    output.Write(1, 0, "two");
    const std::wstring path =
        std::wstring(NSDBG::CLogConfig::Instance().LogRoot()) + L"plain-name.Log";
    EXPECT_EQ(Access::Path(output), path);
    EXPECT_EQ(ConfiguredPath(), path);
    EXPECT_EQ(MessagesOf(path).size(), 2u);
    SetPath(m_path);
    output.Write(1, 0, "three");
    EXPECT_TRUE(DeleteFileW(path.c_str()));
}

TEST_F(FilePaths, TheSharedPathServesOutputsThatFollowIt) {
    EditEntry([](LOGUTILS::LogModuleEntry& entry) { entry.m_dwFlags = 0xFFFF; });
    CFileOutput output;
    SetPath(m_path);
    SetGlobalPath(PathOf(L"all.Log"));
    output.Write(1, 0, "shared");
    SetGlobalPath(L"");
    output.Write(1, 0, "own");
    EXPECT_EQ(MessagesOf(PathOf(L"all.Log")).size(), 1u);
    EXPECT_EQ(MessagesOf(m_path).size(), 1u);
}

TEST_F(FilePaths, TheSharedPathIsNothingToAnEntryThatDoesNotFollowIt) {
    CFileOutput output;
    SetGlobalPath(PathOf(L"all.Log"));
    output.Write(1, 0, "own");
    EXPECT_EQ(m_folder.Names(), std::vector<std::wstring>{L"a.dll.Log"});
}

TEST_F(FilePaths, AProcessThatIgnoresTheSharedPathWritesToItsOwn) {
    EditEntry([](LOGUTILS::LogModuleEntry& entry) { entry.m_dwFlags = 0xFFFF; });
    CFileOutput output;
    SetPath(m_path);
    Access::PutPath(output, m_path);
    Access::IgnoreGlobalPath(output);
    SetGlobalPath(PathOf(L"all.Log"));
    output.Write(1, 0, "own");
    EXPECT_EQ(m_folder.Names(), std::vector<std::wstring>{L"a.dll.Log"});
    EXPECT_EQ(GlobalPath(), PathOf(L"all.Log"));
}

TEST_F(FilePaths, AnEmptyPathOpensNothing) {
    CFileOutput output;
    SetPath(L"");
    output.Write(1, 0, "lost");
    EXPECT_EQ(m_trace.Texts(),
              std::vector<std::wstring>{TracePrefix() + L"Failed to create file []. ERR=3\r\n"});
    SetPath(m_path);
    output.Write(1, 0, "written");
    EXPECT_EQ(MessagesOf(m_path).size(), 1u);
}

TEST_F(FilePaths, ADamagedBlockLeavesPathAndLevelAsTheyWere) {
    SetLevel(4);
    CFileOutput output;
    output.Write(4, 0, "one");
    for (const auto magic :
         {&LOGUTILS::LogConfigBlock::m_dwMagic, &LOGUTILS::LogConfigBlock::m_dwEndMagic}) {
        EditBlock([&](LOGUTILS::LogConfigBlock& block) { block.*magic = 0; });
        EXPECT_EQ(output.GetLevel(), 4);
        output.Write(4, 0, "still written");
        EditBlock([&](LOGUTILS::LogConfigBlock& block) { block.*magic = LOGUTILS::kBlockMagic; });
    }
    EXPECT_EQ(MessagesOf(m_path).size(), 3u);
    EXPECT_GT(m_trace.CountContaining(L"Share memory was destroied\r\n"), 0u);
}

TEST_F(FilePaths, ABlockThatIsNotReachedInTimeLeavesPathAndLevelAsTheyWere) {
    SetLevel(4);
    CFileOutput output;
    output.Write(4, 0, "one");
    SetLevel(0);
    SetPath(PathOf(L"b.Log"));
    int nWaits = 0;  // of a line: for the block twice, then for the file
    const CallSpy<&WindowsCalls::waitForSingleObject> wait([&](HANDLE hObject, DWORD dwWait) {
        return ++nWaits <= 2 ? static_cast<DWORD>(WAIT_TIMEOUT) : wait.Real(hObject, dwWait);
    });
    output.Write(4, 0, "still written");
    EXPECT_EQ(nWaits, 3);
    EXPECT_EQ(MessagesOf(m_path).size(), 2u);
}

TEST_F(FilePaths, TheMutexIsNamedAfterThePathInUpperCaseWithSlashes) {
    SetPath(PathOf(L"B c.Log"));
    CFileOutput output;
    const std::vector<std::wstring> names = MutexNames([&] { output.Write(1, 0, "one"); });
    std::wstring expected = L"Global\\";
    for (const wchar_t c : PathOf(L"B C.LOG")) {
        expected += c == L'\\' ? L'/' : LOGUTILS::UpperCase(std::wstring(1, c)).at(0);
    }
    EXPECT_EQ(names, std::vector<std::wstring>{expected});
}

TEST_F(FilePaths, WritersOfOneFileMeetWhateverTheCaseAndTheSlashesOfTheirPaths) {
    std::wstring other = LOGUTILS::UpperCase(m_path);
    for (wchar_t& c : other) {
        c = c == L'\\' ? L'/' : c;
    }
    CFileOutput output;
    const std::vector<std::wstring> names = MutexNames([&] {
        output.Write(1, 0, "one");
        SetPath(other);
        output.Write(1, 0, "two");
    });
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[0], names[1]);
}

TEST_F(FilePaths, ANameOfAMutexIsCutTo259Characters) {
    const std::wstring longPath = L"C:\\" + std::wstring(300, L'x') + L".Log";
    SetPath(longPath);
    CFileOutput output;
    const CallSpy<&WindowsCalls::createFile> createFile(
        [&](const wchar_t*, DWORD dwAccess, DWORD dwShare, SECURITY_ATTRIBUTES* pSecurity,
            DWORD dwDisposition, DWORD dwFlags, HANDLE hTemplate) {
            return createFile.Real(m_path.c_str(), dwAccess, dwShare, pSecurity, dwDisposition,
                                   dwFlags, hTemplate);
        });
    const std::vector<std::wstring> names = MutexNames([&] { output.Write(1, 0, "one"); });
    EXPECT_EQ(names,
              std::vector<std::wstring>{(L"Global\\C:/" + std::wstring(300, L'X')).substr(0, 259)});
    EXPECT_EQ(MessagesOf(m_path).size(), 1u);
}

}  // namespace
}  // namespace Mirqos::Test
