#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "log/dbg/LogText.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/FileOutputTest.h"

namespace Mirqos::Test {
namespace {

using Access = NSDBG::FileOutputTestAccess;
using LOGUTILS::WindowsCalls;
using NSDBG::CFileOutput;

constexpr std::uint64_t kFourGibibytes = 1ull << 32;

/// How a full file is followed by the next of its series.
class FileRotation : public FileOutputTest {
protected:
    const std::wstring m_first = PathOf(L"a.dll.00000001.log");
    const std::wstring m_second = PathOf(L"a.dll.00000002.log");
};

TEST_F(FileRotation, AFileOfExactly100MiBIsFollowedByTheFirstOfItsSeries) {
    WriteFull(m_path);
    CFileOutput output;
    output.Write(1, 0, "message");
    EXPECT_EQ(FileSizeOf(m_path), kFull);
    EXPECT_EQ(MessagesOf(m_first).size(), 1u);
    EXPECT_EQ(Access::Path(output), m_first);
    EXPECT_EQ(ConfiguredPath(), m_first);
    EXPECT_EQ(m_trace.Texts(), std::vector<std::wstring>{TracePrefix() + L"Redirect file from [" +
                                                         m_path + L"] to [" + m_first + L"]\r\n"});
    output.Write(1, 0, "message");
    EXPECT_EQ(MessagesOf(m_first).size(), 2u);
}

TEST_F(FileRotation, AFileOfOneByteLessIsContinued) {
    WriteSparse(m_path, kFull - 1, std::string(LOGUTILS::kByteOrderMark));
    CFileOutput output;
    output.Write(1, 0, "message");
    EXPECT_EQ(m_folder.Names(), std::vector<std::wstring>{L"a.dll.Log"});
    const std::string appended = BytesOf(m_path, kFull - 1);
    EXPECT_NE(TextOfUtf16(appended).find(L"message"), std::wstring::npos);
    output.Write(1, 0, "message");
    EXPECT_EQ(FileSizeOf(m_path), kFull - 1 + appended.size());
    EXPECT_EQ(MessagesOf(m_first).size(), 1u) << "now it is full";
}

TEST_F(FileRotation, FullSuccessorsArePassedOver) {
    WriteFull(m_path);
    WriteFull(m_first);
    WriteSparse(m_second, kFull - 1, std::string(LOGUTILS::kByteOrderMark));
    CFileOutput output;
    output.Write(1, 0, "message");
    EXPECT_EQ(FileSizeOf(m_first), kFull);
    EXPECT_GT(FileSizeOf(m_second), kFull);
    EXPECT_EQ(m_folder.Names().size(), 3u);
    EXPECT_EQ(ConfiguredPath(), m_second);
}

TEST_F(FileRotation, ANumberedFileIsFollowedByTheNextNumber) {
    const std::wstring path = PathOf(L"a.dll.00000007.log");
    SetPath(path);
    WriteFull(path);
    CFileOutput().Write(1, 0, "message");
    EXPECT_EQ(ConfiguredPath(), PathOf(L"a.dll.00000008.log"));
}

TEST_F(FileRotation, AFileOfAnotherEndingKeepsItInTheSeries) {
    const std::wstring path = PathOf(L"log.txt");
    SetPath(path);
    WriteFull(path);
    CFileOutput().Write(1, 0, "message");
    EXPECT_EQ(ConfiguredPath(), PathOf(L"log.txt.00000001.log"));
}

TEST_F(FileRotation, AFileThatFillsUpWhileItIsOpenIsLeftWithoutLookingAtItsFolder) {
    CFileOutput output;
    output.Write(1, 0, "one");
    WriteFull(m_path);
    const CallSpy<&WindowsCalls::createDirectory> createDirectory;
    const CallSpy<&WindowsCalls::getNamedSecurityInfo> security;
    output.Write(1, 0, "two");
    EXPECT_EQ(MessagesOf(m_first).size(), 1u);
    EXPECT_EQ(FileSizeOf(m_path), kFull);
    EXPECT_EQ(createDirectory.Calls(), 0);
    EXPECT_EQ(security.Calls(), 0);
}

TEST_F(FileRotation, AChangedPathThatIsFullIsRotatedInAPreparedFolder) {
    CFileOutput output;
    output.Write(1, 0, "one");
    const std::wstring path = PathOf(L"b.Log");
    WriteFull(path);
    SetPath(path);
    const CallSpy<&WindowsCalls::createDirectory> createDirectory;
    output.Write(1, 0, "two");
    EXPECT_EQ(createDirectory.Calls(), 1);
    EXPECT_EQ(FileSizeOf(path), kFull);
    EXPECT_EQ(MessagesOf(PathOf(L"b.00000001.log")).size(), 1u);
    EXPECT_EQ(ConfiguredPath(), PathOf(L"b.00000001.log"));
    EXPECT_EQ(MessagesOf(m_path).size(), 1u);
}

TEST_F(FileRotation, OtherOutputsFollowWhetherTheirFileIsOpenOrNot) {
    CFileOutput open;
    open.Write(1, 0, "one");
    CFileOutput notOpen;
    WriteFull(m_path);
    CFileOutput rotating;
    rotating.Write(1, 0, "two");
    open.Write(1, 0, "three");
    notOpen.Write(1, 0, "four");
    EXPECT_EQ(FileSizeOf(m_path), kFull);
    EXPECT_EQ(MessagesOf(m_first).size(), 3u);
    EXPECT_EQ(m_folder.Names().size(), 2u);
}

TEST_F(FileRotation, APathThatIsSetBackWithinTheSeriesChangesNothing) {
    WriteFull(m_path);
    CFileOutput output;
    output.Write(1, 0, "one");
    SetPath(m_path);
    output.Write(1, 0, "two");
    EXPECT_EQ(MessagesOf(m_first).size(), 2u);
}

TEST_F(FileRotation, AnotherRoundOfWritersFindsTheSeriesAgain) {
    WriteFull(m_path);
    CFileOutput().Write(1, 0, "one");
    SetPath(m_path);  // as after a restart
    CFileOutput().Write(1, 0, "two");
    EXPECT_EQ(MessagesOf(m_first).size(), 2u);
}

TEST_F(FileRotation, TheSuccessorOfASharedFileIsSharedAsWell) {
    EditEntry([](LOGUTILS::LogModuleEntry& entry) { entry.m_dwFlags = 0xFFFF; });
    const std::wstring path = PathOf(L"all.Log");
    SetGlobalPath(path);
    WriteFull(path);
    CFileOutput().Write(1, 0, "message");
    EXPECT_EQ(GlobalPath(), PathOf(L"all.00000001.log"));
    EXPECT_EQ(MessagesOf(PathOf(L"all.00000001.log")).size(), 1u);
}

TEST_F(FileRotation, TheSuccessorOfAnAnsiFileIsAnsiWithoutAMark) {
    WriteSparse(m_path, kFull, "old\r\n");
    CFileOutput output;
    output.Write(1, 0, "not yet seen");  // the file is full before its encoding is looked at
    EXPECT_EQ(MessagesOf(m_first).size(), 1u);

    SetPath(PathOf(L"b.Log"));
    WriteBytes(PathOf(L"b.Log"), "old\r\n");
    output.Write(1, 0, "one");
    WriteSparse(PathOf(L"b.Log"), kFull, "old\r\n");
    output.Write(1, 0, L"two");
    const std::vector<std::string> lines = LinesIn(BytesOf(PathOf(L"b.00000001.log")));
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(lines[0], "[   Date        Time      Level  PID     TID   ErrCode    ] .......");
    EXPECT_NE(lines[7].find("] two   {"), std::string::npos);
    EXPECT_FALSE(Access::IsUnicode(output));
}

TEST_F(FileRotation, OnlyTheLow32BitsOfTheSizeCount) {
    WriteSparse(m_path, kFourGibibytes + kFull - 1, std::string(LOGUTILS::kByteOrderMark));
    CFileOutput output;
    output.Write(1, 0, "one");
    EXPECT_EQ(m_folder.Names().size(), 1u);
    EXPECT_GT(FileSizeOf(m_path), kFourGibibytes + kFull);
    output.Write(1, 0, "two");
    EXPECT_EQ(MessagesOf(m_first).size(), 1u) << "the open file is full by its low 32 bits";
    SetPath(PathOf(L"b.Log"));
    WriteSparse(PathOf(L"b.Log"), kFourGibibytes + kFull, std::string(LOGUTILS::kByteOrderMark));
    output.Write(1, 0, "three");
    EXPECT_EQ(MessagesOf(PathOf(L"b.00000001.log")).size(), 1u);
}

TEST_F(FileRotation, AFileOf4GiBIsContinuedAtItsEndAndNotBegunAnew) {
    WriteSparse(m_path, kFourGibibytes, "old\r\n");
    CFileOutput().Write(1, 0, "message");
    const std::vector<std::string> lines = LinesIn(BytesOf(m_path, kFourGibibytes));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("] message   {"), std::string::npos);
}

TEST_F(FileRotation, TheMutexFollowsTheFile) {
    std::vector<std::wstring> names;
    const CallSpy<&WindowsCalls::createMutex> createMutex(
        [&](SECURITY_ATTRIBUTES* pSecurity, BOOL bOwned, const wchar_t* pszName) {
            names.emplace_back(pszName);
            return createMutex.Real(pSecurity, bOwned, pszName);
        });
    CFileOutput output;
    output.Write(1, 0, "one");
    output.Write(1, 0, "two");
    WriteFull(m_path);
    output.Write(1, 0, "three");
    output.Write(1, 0, "four");
    EXPECT_EQ(names, (std::vector<std::wstring>{LOGUTILS::FileMutexName(m_path),
                                                LOGUTILS::FileMutexName(m_first)}));
}

BOOL WINAPI EveryFileIsFull(const wchar_t*, GET_FILEEX_INFO_LEVELS, void* pFacts) {
    auto& facts = *static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(pFacts);
    facts = {};
    facts.nFileSizeLow = 104857600;
    return TRUE;
}

TEST_F(FileRotation, ASuccessorWhosePathHasNoRoomCostsTheLineAndNotTheProcess) {
    const std::wstring path = L"C:\\" + std::wstring(500, L'x') + L".Log";
    SetPath(path);
    const CallSpy<&WindowsCalls::createFile> createFile;
    CFileOutput output;
    {
        const CallSpy<&WindowsCalls::getFileAttributesEx> size(&EveryFileIsFull);
        output.Write(1, 0, "lost");
        output.Write(1, 0, "lost");
    }
    EXPECT_EQ(createFile.Calls(), 0);
    EXPECT_EQ(ConfiguredPath(), path);
    SetPath(m_path);
    output.Write(1, 0, "written");
    EXPECT_EQ(MessagesOf(m_path).size(), 1u);
}

}  // namespace
}  // namespace Mirqos::Test
