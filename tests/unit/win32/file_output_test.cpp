#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "log/dbg/LogText.h"
#include "platform/process.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/FileOutputTest.h"

namespace Mirqos::Test {
namespace {

using LOGUTILS::WindowsCalls;
using NSDBG::CFileOutput;

/// What stands in a log file.
class FileOutput : public FileOutputTest {
protected:
    // The line without time, prefix and tag.
    static std::wstring MessageIn(const std::wstring& line) {
        const std::size_t nPrefix = PrefixWithoutTime(1).size();
        const std::size_t nTag = UnversionedTag().size();
        EXPECT_GE(line.size(), nPrefix + nTag) << "the line is cut";
        return line.size() < nPrefix + nTag ? std::wstring()
                                            : line.substr(nPrefix, line.size() - nPrefix - nTag);
    }
};

TEST_F(FileOutput, ANewFileBeginsWithTheMarkThenTheHeaderThenTheFirstLine) {
    CFileOutput output;
    EXPECT_FALSE(Exists(m_path)) << "opened before the first line";
    output.Write(1, 0, "first");

    EXPECT_EQ(BytesOf(m_path).substr(0, 4), std::string("\xFF\xFE[\0", 4));
    const std::vector<std::wstring> lines = LinesOf(m_path);
    ASSERT_EQ(lines.size(), 8u);
    const std::wstring prefix = PrefixWithoutTime(2);
    wchar_t szComputer[128] = {};
    DWORD dwRoom = 128;
    ASSERT_TRUE(GetComputerNameW(szComputer, &dwRoom));
    OSVERSIONINFOW system = {};
    system.dwOSVersionInfoSize = sizeof(system);
    ASSERT_TRUE(LOGUTILS::Windows().getVersion(&system));
    EXPECT_EQ(lines[0], L"[   Date        Time      Level  PID     TID   ErrCode    ] .......");
    EXPECT_EQ(WithoutTime(lines[1]),
              prefix + L"================ SUMMARY LOG =======================");
    EXPECT_EQ(WithoutTime(lines[2]),
              prefix + L"Product Info: [Quorvane (USA) LLC] [quorvane Halvestor] Ver[r0.0]");
    EXPECT_EQ(WithoutTime(lines[3]), prefix + L"OS      Info: Computer Name[" + szComputer +
                                         L"] Version[" + std::to_wstring(system.dwMajorVersion) +
                                         L"." + std::to_wstring(system.dwMinorVersion) +
                                         L"] Platform[X64]");
    EXPECT_EQ(WithoutTime(lines[4]),
              prefix + L"Log level of each module can be controlled by registry key:");
    EXPECT_EQ(WithoutTime(lines[5]),
              prefix +
                  L"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Quorvane\\Halvestor\\Engine\\Debug\\"
                  L"ModuleName:DWORD]");
    EXPECT_EQ(WithoutTime(lines[6]),
              prefix + L"=====================================================");
    EXPECT_EQ(WithoutTime(lines[7]), PrefixWithoutTime(1) + L"first" + UnversionedTag());
    for (std::size_t n = 2; n < 7; ++n) {
        EXPECT_EQ(lines[n].substr(0, prefix.size()), lines[1].substr(0, prefix.size()))
            << "the header has one time";
    }
    EXPECT_EQ(m_trace.Texts(), std::vector<std::wstring>());
}

TEST_F(FileOutput, EveryLineEndsWithFourBytesInAUnicodeFile) {
    CFileOutput output;
    output.Write(1, 0, "narrow");
    output.Write(1, 0, L"wide");
    const std::string bytes = BytesOf(m_path);
    EXPECT_EQ(bytes.substr(bytes.size() - 4), std::string("\r\0\n\0", 4));
    EXPECT_EQ(bytes.find('\n'), bytes.find(std::string("\r\0\n\0", 4)) + 2);
}

TEST_F(FileOutput, TheHeaderCarriesTheLevelOfTheOutput) {
    SetLevel(5);
    CFileOutput().Write(1, 0, "first");
    EXPECT_EQ(WithoutTime(LinesOf(m_path).at(1)).substr(0, PrefixWithoutTime(5).size()),
              PrefixWithoutTime(5));
}

TEST_F(FileOutput, NarrowAndWideMessagesMakeTheSameLine) {
    CFileOutput output;
    output.Write(2, 0, "message");
    output.Write(2, 0, L"message");
    const std::vector<std::wstring> lines = MessagesOf(m_path);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(WithoutTime(lines[0]), PrefixWithoutTime(2) + L"message" + UnversionedTag());
    EXPECT_EQ(WithoutTime(lines[1]), WithoutTime(lines[0]));
}

TEST_F(FileOutput, AnErrorCodeStandsInThePrefixUnlessItIsZero) {
    CFileOutput output;
    output.Write(1, 0, "none");
    output.Write(1, 5, "five");
    output.Write(1, -1, L"minus one");
    const std::vector<std::wstring> lines = MessagesOf(m_path);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(WithoutTime(lines[0]),
              PrefixWithoutTime(1, L"             ") + L"none" + UnversionedTag());
    EXPECT_EQ(lines[0].find(L"0X"), std::wstring::npos);
    EXPECT_EQ(WithoutTime(lines[1]),
              PrefixWithoutTime(1, L"   0X00000005") + L"five" + UnversionedTag());
    EXPECT_EQ(WithoutTime(lines[2]),
              PrefixWithoutTime(1, L"   0Xffffffff") + L"minus one" + UnversionedTag());
}

TEST_F(FileOutput, AnEmptyMessageMakesALine) {
    CFileOutput output;
    output.Write(1, 0, "");
    output.Write(1, 0, L"");
    const std::vector<std::wstring> lines = MessagesOf(m_path);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(WithoutTime(lines[0]), PrefixWithoutTime(1) + UnversionedTag());
    EXPECT_EQ(WithoutTime(lines[1]), WithoutTime(lines[0]));
}

TEST_F(FileOutput, ANarrowMessageOf1023CharactersIsConvertedALongerOneIsEmpty) {
    CFileOutput output;
    output.Write(1, 0, std::string(1023, 'x').c_str());
    output.Write(1, 0, std::string(1024, 'x').c_str());
    output.Write(1, 0, std::string(5000, 'x').c_str());
    const std::vector<std::wstring> lines = MessagesOf(m_path);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(MessageIn(lines[0]), std::wstring(1023, L'x'));
    EXPECT_EQ(MessageIn(lines[1]), L"");
    EXPECT_EQ(MessageIn(lines[2]), L"");
}

TEST_F(FileOutput, AWideMessageNeedsNoConversionAndIsWrittenWhole) {
    CFileOutput output;
    output.Write(1, 0, std::wstring(5000, L'x').c_str());
    EXPECT_EQ(MessageIn(MessagesOf(m_path).at(0)), std::wstring(5000, L'x'));
}

TEST_F(FileOutput, AnAnsiFileConvertsWideMessagesUpTo1023BytesAndTakesNarrowOnesWhole) {
    WriteBytes(m_path, "old\r\n");
    CFileOutput output;
    output.Write(1, 0, std::wstring(1023, L'x').c_str());
    output.Write(1, 0, std::wstring(1024, L'x').c_str());
    output.Write(1, 0, std::string(5000, 'x').c_str());
    const std::vector<std::string> lines = LinesIn(BytesOf(m_path));
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], "old");
    const std::size_t nRest = PrefixWithoutTime(1).size() + UnversionedTag().size();
    EXPECT_EQ(lines[1].size(), nRest + 1023);
    EXPECT_EQ(lines[2].size(), nRest);
    EXPECT_EQ(lines[3].size(), nRest + 5000);
}

TEST_F(FileOutput, CharactersOfTheAnsiCodePageAreConverted) {
    ASSERT_EQ(GetACP(), 1252u);
    CFileOutput output;
    output.Write(1, 0, "f\xFCnf \x80");
    output.Write(1, 0, L"\x4E2D\x6587 \xD83D\xDE00");
    const std::vector<std::wstring> lines = MessagesOf(m_path);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(MessageIn(lines[0]), L"f\x00FCnf \x20AC");
    EXPECT_EQ(MessageIn(lines[1]), L"\x4E2D\x6587 \xD83D\xDE00");
}

TEST_F(FileOutput, WhatTheAnsiCodePageLacksIsReplacedInAnAnsiFile) {
    ASSERT_EQ(GetACP(), 1252u);
    WriteBytes(m_path, "old\r\n");
    CFileOutput output;
    output.Write(1, 0, L"f\x00FCnf \x20AC \x4E2D");
    output.Write(1, 0, "f\xFCnf");
    const std::vector<std::string> lines = LinesIn(BytesOf(m_path));
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_NE(lines[1].find("] f\xFCnf \x80 ?   {"), std::string::npos) << lines[1];
    EXPECT_NE(lines[2].find("] f\xFCnf   {"), std::string::npos) << lines[2];
}

TEST_F(FileOutput, AnExistingFileWithoutAMarkIsContinuedInAnsiWithoutAHeader) {
    WriteBytes(m_path, "old\r\n");
    CFileOutput output;
    output.Write(1, 7, L"wide");
    const std::vector<std::string> lines = LinesIn(BytesOf(m_path));
    ASSERT_EQ(lines.size(), 2u);
    const std::wstring line(lines[1].begin(), lines[1].end());
    EXPECT_EQ(WithoutTime(line),
              PrefixWithoutTime(1, L"   0X00000007") + L"wide" + UnversionedTag());
}

TEST_F(FileOutput, AnExistingFileWithTheMarkIsContinuedInUnicodeWithoutAHeader) {
    WriteBytes(m_path, "\xFF\xFE" + LOGUTILS::Utf16Bytes(L"old\r\n"));
    CFileOutput output;
    output.Write(1, 0, "narrow");
    const std::vector<std::wstring> lines = LinesOf(m_path);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], L"old");
    EXPECT_EQ(WithoutTime(lines[1]), PrefixWithoutTime(1) + L"narrow" + UnversionedTag());
}

TEST_F(FileOutput, AFileOfTheMarkAloneGetsTheHeader) {
    WriteBytes(m_path, "\xFF\xFE");
    CFileOutput().Write(1, 0, "first");
    EXPECT_EQ(LinesOf(m_path).size(), 8u);
}

TEST_F(FileOutput, AFileOfUpToTwoOtherBytesIsBegunAnew) {
    for (const std::string bytes : {"a", "ab"}) {
        WriteBytes(m_path, bytes);
        CFileOutput().Write(1, 0, "first");
        EXPECT_EQ(LinesOf(m_path).size(), 8u);
    }
}

TEST_F(FileOutput, AFileOfThreeBytesIsContinued) {
    WriteBytes(m_path, "a\r\n");
    CFileOutput().Write(1, 0, "first");
    EXPECT_EQ(LinesIn(BytesOf(m_path)).size(), 2u);
}

TEST_F(FileOutput, AFileThatIsReplacedByOneOfTheOtherEncodingIsFollowed) {
    CFileOutput output;
    output.Write(1, 0, "unicode");
    SetPath(PathOf(L"ansi.Log"));
    WriteBytes(PathOf(L"ansi.Log"), "old\r\n");
    output.Write(1, 0, "ansi");
    SetPath(m_path);
    output.Write(1, 0, "unicode again");
    EXPECT_EQ(MessagesOf(m_path).size(), 2u);
    EXPECT_EQ(LinesIn(BytesOf(PathOf(L"ansi.Log"))).size(), 2u);
}

TEST_F(FileOutput, OnceAnAnsiFileWasMetNewFilesAreAnsiAsWell) {
    WriteBytes(m_path, "old\r\n");
    CFileOutput output;
    output.Write(1, 0, "one");
    SetPath(PathOf(L"new.Log"));
    output.Write(1, 0, "two");
    const std::vector<std::string> lines = LinesIn(BytesOf(PathOf(L"new.Log")));
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(lines[0], "[   Date        Time      Level  PID     TID   ErrCode    ] .......");
    EXPECT_EQ(lines[1].substr(lines[1].find("] ")),
              "] ================ SUMMARY LOG =======================");
    EXPECT_NE(lines[7].find("] two   {"), std::string::npos);
}

TEST_F(FileOutput, ALineAtTheLevelIsWrittenOneAboveIsNot) {
    CFileOutput output;
    EXPECT_EQ(output.GetLevel(), 2);
    output.Write(2, 0, "two");
    output.Write(3, 0, "three");
    output.Write(3, 0, L"three");
    output.Write(-7, 0, "minus seven");
    const std::vector<std::wstring> lines = MessagesOf(m_path);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(WithoutTime(lines[1]).substr(0, 29), L"[0000/00/00 00:00:00:000   -7");
}

TEST_F(FileOutput, TheLevelOfTheBlockCountsFromTheNextLineOn) {
    CFileOutput output;
    SetLevel(4);
    output.Write(4, 0, "four");
    EXPECT_EQ(output.GetLevel(), 4);
    SetLevel(0);
    output.Write(1, 0, "one");
    EXPECT_EQ(output.GetLevel(), 0);
    output.Write(0, 0, "zero");
    EXPECT_EQ(MessagesOf(m_path).size(), 2u);
}

TEST_F(FileOutput, WithoutALevelInTheBlockTheOutputKeepsItsOwn) {
    CFileOutput output;
    SetLevel(4);
    EXPECT_EQ(output.GetLevel(), 4);
    SetLevel(-1);
    EXPECT_EQ(output.GetLevel(), 4);
    EXPECT_EQ(CFileOutput().GetLevel(), 2);
}

TEST_F(FileOutput, TheSystemVersionIsAskedForInTheExtendedFormFirst) {
    std::vector<DWORD> sizes;
    const CallSpy<&WindowsCalls::getVersion> version([&](OSVERSIONINFOW* pVersion) {
        sizes.push_back(pVersion->dwOSVersionInfoSize);
        pVersion->dwMajorVersion = 10;
        pVersion->dwMinorVersion = 3;
        return TRUE;
    });
    CFileOutput().Write(1, 0, "first");
    EXPECT_EQ(sizes, std::vector<DWORD>{sizeof(OSVERSIONINFOEXW)});
    EXPECT_NE(LinesOf(m_path).at(3).find(L"] Version[10.3] Platform["), std::wstring::npos);
}

TEST_F(FileOutput, TheSystemVersionIsAskedForInTheBasicFormNext) {
    const CallSpy<&WindowsCalls::getVersion> version([&](OSVERSIONINFOW* pVersion) {
        pVersion->dwMajorVersion = 5;
        pVersion->dwMinorVersion = 1;
        return pVersion->dwOSVersionInfoSize == sizeof(OSVERSIONINFOW) ? TRUE : FALSE;
    });
    CFileOutput().Write(1, 0, "first");
    EXPECT_EQ(version.Calls(), 2);
    EXPECT_NE(LinesOf(m_path).at(3).find(L"] Version[5.1] Platform["), std::wstring::npos);
}

TEST_F(FileOutput, AnUnknownSystemVersionIsMinusOne) {
    const CallSpy<&WindowsCalls::getVersion> version([](OSVERSIONINFOW* pVersion) {
        pVersion->dwMajorVersion = 5;
        return FALSE;
    });
    CFileOutput().Write(1, 0, "first");
    EXPECT_EQ(version.Calls(), 2);
    EXPECT_NE(LinesOf(m_path).at(3).find(L"] Version[-1.-1] Platform["), std::wstring::npos);
}

TEST_F(FileOutput, TheNativeProcessorIsNamed) {
    WORD nArchitecture = 0;
    const CallSpy<&WindowsCalls::getNativeSystemInfo> system(
        [&](SYSTEM_INFO* pInfo) { pInfo->wProcessorArchitecture = nArchitecture; });
    const auto platform = [&](WORD nNative) {
        nArchitecture = nNative;
        WriteBytes(m_path, "");
        CFileOutput().Write(1, 0, "first");
        const std::wstring line = LinesOf(m_path).at(3);
        return line.substr(line.find(L"Platform"));
    };
    EXPECT_EQ(platform(PROCESSOR_ARCHITECTURE_INTEL), L"Platform[X86]");
    EXPECT_EQ(platform(PROCESSOR_ARCHITECTURE_AMD64), L"Platform[X64]");
    EXPECT_EQ(platform(PROCESSOR_ARCHITECTURE_IA64), L"Platform[IA64]");
    EXPECT_EQ(platform(PROCESSOR_ARCHITECTURE_ARM), L"Platform[Unknown]");
    EXPECT_EQ(platform(12), L"Platform[Unknown]");  // ARM64
}

TEST_F(FileOutput, AComputerThatDoesNotTellItsNameHasNone) {
    DWORD dwRoom = 0;
    const CallSpy<&WindowsCalls::getComputerName> name([&](wchar_t*, DWORD* pdwRoom) {
        dwRoom = *pdwRoom;
        return FALSE;
    });
    CFileOutput().Write(1, 0, "first");
    EXPECT_EQ(dwRoom, 128u);
    EXPECT_NE(LinesOf(m_path).at(3).find(L"Computer Name[] "), std::wstring::npos);
}

}  // namespace
}  // namespace Mirqos::Test
