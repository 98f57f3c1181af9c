#include "log/dbg/win32/CLogShareMemory.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "log/dbg/win32/WindowsCalls.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/win32/CallSlot.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/IsOpenToEveryone.h"
#include "tests/support/win32/ViewerSide.h"

namespace {

using LOGUTILS::WindowsCalls;
using Mirqos::Test::CallSlot;
using Mirqos::Test::CallSpy;
using Mirqos::Test::IsOpenToEveryone;
using Mirqos::Test::ListenedChannel;
using Mirqos::Test::RingBytes;
using NSDBG::CLogShareMemory;
using NSDBG::LogMessages;

using CreateMutexSpy = CallSpy<&WindowsCalls::createMutex>;
using CreateMappingSpy = CallSpy<&WindowsCalls::createFileMapping>;
using MapSpy = CallSpy<&WindowsCalls::mapViewOfFile>;
using OpenEventSpy = CallSpy<&WindowsCalls::openEvent>;
using WaitSpy = CallSpy<&WindowsCalls::waitForSingleObject>;

constexpr wchar_t kExecutable[] = L"ShareMemory.Test.exe";

bool IsGlobal(LPCWSTR pszName) {
    return std::wstring(pszName).rfind(L"Global\\", 0) == 0;
}

HANDLE Refuse(DWORD dwError) {
    SetLastError(dwError);
    return nullptr;
}

std::vector<std::wstring> TextsOf(const LogMessages& messages) {
    std::vector<std::wstring> texts;
    for (const auto& message : messages) {
        texts.emplace_back(message->GetText());
    }
    return texts;
}

class ShareMemoryTest : public testing::Test {
protected:
    void Make() { ASSERT_EQ(m_writer.Create(), 1); }
    void Write(const wchar_t* pszText) { m_writer.Write(1, 0, L"Source.dll", pszText); }
    RingBytes Ring() { return m_channel.Ring(); }

    ListenedChannel m_channel{kExecutable};
    CLogShareMemory m_writer{kExecutable};
};

TEST(ShareMemory, IsNotMadeForAViewerThatHasNotAskedForTheChannel) {
    const Mirqos::Test::ChannelObjects names(kExecutable);
    CLogShareMemory writer(kExecutable);
    EXPECT_EQ(writer.Create(), 0);
    EXPECT_FALSE(Mirqos::Test::MutexExists(names.mutex));
    EXPECT_FALSE(Mirqos::Test::MappingExists(names.globalRing));
    writer.Write(1, 0, L"Source.dll", L"nobody reads this");
}

TEST_F(ShareMemoryTest, IsMadeEmptyUnderTheDocumentedNames) {
    Make();
    EXPECT_TRUE(Mirqos::Test::MutexExists(
        L"Global\\CB6AF056-4138-4342-BE43-B4B37843FE36_MUTEXT_SHAREMEMORY.TEST.EXE"));
    EXPECT_TRUE(Mirqos::Test::MappingExists(
        L"Global\\CB6AF056-4138-4342-BE43-B4B37843FE36_SM_SHAREMEMORY.TEST.EXE"));
    EXPECT_EQ(Ring().LastRead(), -1);
    EXPECT_EQ(Ring().LastWritten(), -1);
    EXPECT_TRUE(Ring().IsZero(16, RingBytes::kSize - 16));
    EXPECT_TRUE(Mirqos::Test::IsFree(m_channel.Names().mutex));
    EXPECT_FALSE(m_channel.IsTold());
}

TEST_F(ShareMemoryTest, ItsObjectsAreOpenToEveryoneAndMadeInOrder) {
    std::vector<std::string> steps;
    const OpenEventSpy openEvent([&](DWORD dwAccess, BOOL bInherit, LPCWSTR pszName) {
        EXPECT_EQ(dwAccess, DWORD{EVENT_ALL_ACCESS});
        EXPECT_EQ(pszName, m_channel.Names().event);
        steps.emplace_back("event");
        return OpenEventW(dwAccess, bInherit, pszName);
    });
    const CreateMutexSpy createMutex(
        [&](SECURITY_ATTRIBUTES* pSecurity, BOOL bOwner, LPCWSTR pszName) {
            EXPECT_TRUE(IsOpenToEveryone(pSecurity));
            EXPECT_FALSE(bOwner);
            EXPECT_EQ(pszName, m_channel.Names().mutex);
            steps.emplace_back("mutex");
            return CreateMutexW(pSecurity, bOwner, pszName);
        });
    const WaitSpy wait([&](HANDLE hObject, DWORD dwLimit) {
        EXPECT_EQ(dwLimit, INFINITE);
        steps.emplace_back("wait");
        return WaitForSingleObject(hObject, dwLimit);
    });
    const CreateMappingSpy createMapping([&](HANDLE hFile, SECURITY_ATTRIBUTES* pSecurity,
                                             DWORD dwProtect, DWORD dwHigh, DWORD dwLow,
                                             LPCWSTR pszName) {
        EXPECT_EQ(hFile, INVALID_HANDLE_VALUE);
        EXPECT_TRUE(IsOpenToEveryone(pSecurity));
        EXPECT_EQ(dwProtect, DWORD{PAGE_READWRITE});
        EXPECT_EQ(dwHigh, 0u);
        EXPECT_EQ(dwLow, RingBytes::kSize);
        EXPECT_EQ(pszName, m_channel.Names().globalRing);
        steps.emplace_back("mapping");
        return CreateFileMappingW(hFile, pSecurity, dwProtect, dwHigh, dwLow, pszName);
    });
    const CallSpy<&WindowsCalls::releaseMutex> release([&](HANDLE hMutex) {
        steps.emplace_back("release");
        return ReleaseMutex(hMutex);
    });
    Make();
    EXPECT_EQ(steps, (std::vector<std::string>{"event", "mutex", "wait", "mapping", "release"}));
}

TEST_F(ShareMemoryTest, SecondWriterGoesOnInTheRingOfTheFirst) {
    Make();
    Write(L"first");
    CLogShareMemory second(L"sharememory.TEST.exe");
    ASSERT_EQ(second.Create(), 1);
    EXPECT_EQ(Ring().LastWritten(), 0);
    second.Write(1, 0, L"", L"second");
    Write(L"third");
    EXPECT_EQ(Ring().LastWritten(), 2);
    EXPECT_EQ(Ring().Line(0), u"first");
    EXPECT_EQ(Ring().Line(1), u"second");
    EXPECT_EQ(Ring().Line(2), u"third");
    EXPECT_EQ(Ring().Channel(0), u"ShareMemory.Test.exe");
    EXPECT_EQ(Ring().Channel(1), u"sharememory.TEST.exe");
}

TEST_F(ShareMemoryTest, MakingItAgainKeepsTheRing) {
    Make();
    Write(L"line");
    const CreateMappingSpy createMapping;
    Make();
    EXPECT_EQ(createMapping.Calls(), 0);
    EXPECT_TRUE(Mirqos::Test::IsFree(m_channel.Names().mutex));
    Write(L"line");
    EXPECT_EQ(Ring().LastWritten(), 1);
}

TEST_F(ShareMemoryTest, IsNotMadeWithoutItsMutex) {
    {
        const CreateMutexSpy refused(
            [](SECURITY_ATTRIBUTES*, BOOL, LPCWSTR) { return Refuse(ERROR_ACCESS_DENIED); });
        EXPECT_EQ(m_writer.Create(), 0);
    }
    {
        const WaitSpy failing([](HANDLE, DWORD) { return DWORD{WAIT_FAILED}; });
        EXPECT_EQ(m_writer.Create(), 0);
    }
    EXPECT_FALSE(m_channel.HasRing());
    Make();
}

TEST_F(ShareMemoryTest, LiesInTheLocalNamespaceWhereTheGlobalOneIsRefused) {
    const CreateMappingSpy refused([&](HANDLE hFile, SECURITY_ATTRIBUTES* pSecurity,
                                       DWORD dwProtect, DWORD dwHigh, DWORD dwLow,
                                       LPCWSTR pszName) {
        return IsGlobal(pszName)
                   ? Refuse(ERROR_ACCESS_DENIED)
                   : CreateFileMappingW(hFile, pSecurity, dwProtect, dwHigh, dwLow, pszName);
    });
    Make();
    EXPECT_EQ(refused.Calls(), 2);
    EXPECT_TRUE(Mirqos::Test::MappingExists(m_channel.Names().localRing));
    Write(L"over there");

    CLogShareMemory reader(kExecutable);
    std::vector<std::wstring> tried;
    const CallSpy<&WindowsCalls::openFileMapping> open(
        [&](DWORD dwAccess, BOOL bInherit, LPCWSTR pszName) -> HANDLE {
            EXPECT_EQ(dwAccess, DWORD{FILE_MAP_ALL_ACCESS});
            tried.emplace_back(pszName);
            // Wine has one namespace for both
            return IsGlobal(pszName) ? Refuse(ERROR_FILE_NOT_FOUND)
                                     : OpenFileMappingW(dwAccess, bInherit, pszName);
        });
    reader.Open();
    EXPECT_EQ(tried, (std::vector<std::wstring>{m_channel.Names().globalRing,
                                                m_channel.Names().localRing}));
    LogMessages messages;
    ASSERT_EQ(reader.Read(messages), 1);
    EXPECT_EQ(TextsOf(messages), (std::vector<std::wstring>{L"over there"}));
}

TEST_F(ShareMemoryTest, OtherRefusalsOfTheRingAreFinal) {
    const CreateMappingSpy refused([](HANDLE, SECURITY_ATTRIBUTES*, DWORD, DWORD, DWORD, LPCWSTR) {
        return Refuse(ERROR_NOT_ENOUGH_MEMORY);
    });
    EXPECT_EQ(m_writer.Create(), 0);
    EXPECT_EQ(refused.Calls(), 1);
    EXPECT_TRUE(Mirqos::Test::IsFree(m_channel.Names().mutex));
}

TEST_F(ShareMemoryTest, IsNotMadeWhereBothNamespacesRefuseIt) {
    const CreateMappingSpy refused([](HANDLE, SECURITY_ATTRIBUTES*, DWORD, DWORD, DWORD, LPCWSTR) {
        return Refuse(ERROR_ACCESS_DENIED);
    });
    EXPECT_EQ(m_writer.Create(), 0);
    EXPECT_EQ(refused.Calls(), 2);
}

TEST_F(ShareMemoryTest, ARingThatCouldNotBeClearedServesAllTheSame) {
    {
        const MapSpy failing([](HANDLE, DWORD, DWORD, DWORD, SIZE_T) -> void* { return nullptr; });
        Make();
    }
    CLogShareMemory reader(kExecutable);
    reader.Open();
    LogMessages messages;
    EXPECT_EQ(reader.Read(messages), 1);
    EXPECT_TRUE(messages.empty());
    Write(L"line");
    EXPECT_EQ(reader.Read(messages), 1);
    EXPECT_EQ(TextsOf(messages), (std::vector<std::wstring>{L"line"}));
}

TEST_F(ShareMemoryTest, ARecordTellsWhoWroteWhatAndWhen) {
    Make();
    SYSTEMTIME before = {};
    SYSTEMTIME after = {};
    GetLocalTime(&before);
    m_writer.Write(7, -2147024891, L"Source.dll", L"a \u4E2D line");
    GetLocalTime(&after);
    EXPECT_TRUE(m_channel.IsTold());
    EXPECT_EQ(Ring().LastRead(), -1);
    EXPECT_EQ(Ring().LastWritten(), 0);
    EXPECT_EQ(Ring().Channel(0), u"ShareMemory.Test.exe");
    EXPECT_EQ(Ring().Source(0), u"Source.dll");
    EXPECT_EQ(Ring().Line(0), u"a \u4E2D line");
    EXPECT_EQ(Ring().Number(RingBytes::ErrorCodeAt(0)), 0x80070005u);
    EXPECT_EQ(Ring().Number(RingBytes::LevelAt(0)), 7u);
    EXPECT_EQ(Ring().Number(RingBytes::ProcessAt(0)), GetCurrentProcessId());
    EXPECT_EQ(Ring().Number(RingBytes::ThreadAt(0)), GetCurrentThreadId());

    SYSTEMTIME written = {};
    WORD* const fields[] = {&written.wYear,   &written.wMonth,       &written.wDayOfWeek,
                            &written.wDay,    &written.wHour,        &written.wMinute,
                            &written.wSecond, &written.wMilliseconds};
    for (std::size_t n = 0; n < 8; ++n) {
        *fields[n] = Ring().Short(RingBytes::TimeAt(0) + 2 * n);
    }
    FILETIME times[3] = {};
    ASSERT_TRUE(SystemTimeToFileTime(&before, &times[0]));
    ASSERT_TRUE(SystemTimeToFileTime(&written, &times[1]));
    ASSERT_TRUE(SystemTimeToFileTime(&after, &times[2]));
    EXPECT_LE(CompareFileTime(&times[0], &times[1]), 0);
    EXPECT_LE(CompareFileTime(&times[1], &times[2]), 0);
    EXPECT_TRUE(written.wDayOfWeek == before.wDayOfWeek || written.wDayOfWeek == after.wDayOfWeek);
}

TEST_F(ShareMemoryTest, AnEmptyTextIsNotRecorded) {
    Make();
    Write(L"");
    m_writer.Append(LOGUTILS::MakeRecord(kExecutable, L"Source.dll", L""));
    EXPECT_EQ(Ring().LastWritten(), -1);
    EXPECT_FALSE(m_channel.IsTold());
}

TEST_F(ShareMemoryTest, LongTextsAreCutTo1023Characters) {
    Make();
    std::size_t slot = 0;
    for (const std::size_t length : {1023u, 1024u, 5000u}) {
        Write(std::wstring(length, L'\u00E9').c_str());
        EXPECT_EQ(Ring().Line(slot), std::u16string(1023, u'\u00E9'));
        EXPECT_EQ(Ring().Short(RingBytes::TextAt(slot) + 2046), 0);
        ++slot;
    }
}

TEST_F(ShareMemoryTest, AMissingSourceIsAllZeros) {
    Make();
    m_writer.Write(1, 0, L"", L"line");
    EXPECT_TRUE(Ring().IsZero(RingBytes::SourceAt(0), 256));
    m_writer.Write(1, 0, std::wstring(200, L's').c_str(), L"line");
    EXPECT_EQ(Ring().Source(1), std::u16string(127, u's'));
}

TEST(ShareMemory, LongChannelNamesAreWholeInObjectsAndCutInRecords) {
    for (const std::size_t length : {127u, 200u}) {
        const std::wstring name(length, L'n');
        ListenedChannel channel(name);
        CLogShareMemory writer(name);
        ASSERT_EQ(writer.Create(), 1);
        EXPECT_TRUE(channel.HasRing());
        writer.Write(1, 0, L"", L"line");
        EXPECT_EQ(channel.Ring().Channel(0), std::u16string(127, u'n'));
        CLogShareMemory reader(name);
        reader.Open();
        LogMessages messages;
        ASSERT_EQ(reader.Read(messages), 1);
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0]->GetChannel(), std::wstring(127, L'n'));
    }
}

TEST_F(ShareMemoryTest, NothingIsAppendedWhileItIsClosed) {
    const WaitSpy wait;
    Write(L"before it was made");
    EXPECT_EQ(wait.Calls(), 0);
    Make();
    Write(L"line");
    Ring();
    m_writer.Close();
    Write(L"after it was closed");
    EXPECT_EQ(Ring().LastWritten(), 0);
}

TEST_F(ShareMemoryTest, ClosingItLetsEveryObjectGo) {
    Make();
    m_writer.Close();
    EXPECT_FALSE(Mirqos::Test::MutexExists(m_channel.Names().mutex));
    EXPECT_FALSE(m_channel.HasRing());
    Make();
    Write(L"line");
    EXPECT_EQ(Ring().LastWritten(), 0);
}

TEST_F(ShareMemoryTest, ARecordIsLostWhenTheMutexIsNotToBeHadFor5Seconds) {
    Make();
    for (const DWORD dwResult : {DWORD{WAIT_TIMEOUT}, DWORD{WAIT_FAILED}}) {
        const WaitSpy wait([dwResult](HANDLE, DWORD dwLimit) {
            EXPECT_EQ(dwLimit, 5000u);
            return dwResult;
        });
        Write(L"line");
        EXPECT_EQ(wait.Calls(), 1);
    }
    EXPECT_EQ(Ring().LastWritten(), -1);
    EXPECT_FALSE(m_channel.IsTold());
}

TEST_F(ShareMemoryTest, ARecordIsLostWhenTheRingCannotBeMapped) {
    Make();
    {
        const MapSpy failing([](HANDLE, DWORD, DWORD, DWORD, SIZE_T) -> void* { return nullptr; });
        Write(L"line");
    }
    EXPECT_EQ(Ring().LastWritten(), -1);
    EXPECT_FALSE(m_channel.IsTold());
    EXPECT_TRUE(Mirqos::Test::IsFree(m_channel.Names().mutex));
}

TEST_F(ShareMemoryTest, AForeignMappingThatIsTooSmallIsLeftAlone) {
    const LOGUTILS::KernelObject small(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr,
                                                          PAGE_READWRITE, 0, 4096,
                                                          m_channel.Names().globalRing.c_str()));
    Make();
    Write(L"line");
    CLogShareMemory reader(kExecutable);
    reader.Open();
    LogMessages messages;
    EXPECT_EQ(reader.Read(messages), 0);
    EXPECT_FALSE(m_channel.IsTold());
}

TEST_F(ShareMemoryTest, AMutexWhoseOwnerEndedCountsAsOwned) {
    Make();
    Mirqos::Test::Abandon(m_channel.Names().mutex);
    Write(L"one");
    EXPECT_EQ(Ring().LastWritten(), 0);
    EXPECT_TRUE(Mirqos::Test::IsFree(m_channel.Names().mutex));

    CLogShareMemory reader(kExecutable);
    reader.Open();
    Mirqos::Test::Abandon(m_channel.Names().mutex);
    LogMessages messages;
    EXPECT_EQ(reader.Read(messages), 1);
    EXPECT_EQ(messages.size(), 1u);
    EXPECT_TRUE(Mirqos::Test::IsFree(m_channel.Names().mutex));

    Mirqos::Test::Abandon(m_channel.Names().mutex);
    CLogShareMemory second(kExecutable);
    EXPECT_EQ(second.Create(), 1);
    EXPECT_TRUE(Mirqos::Test::IsFree(m_channel.Names().mutex));
}

TEST(ShareMemory, ReaderOfAChannelThatNobodyMadeReadsNothing) {
    CLogShareMemory reader(kExecutable);
    reader.Open();
    LogMessages messages;
    EXPECT_EQ(reader.Read(messages), 0);
}

TEST_F(ShareMemoryTest, ReaderOpensMutexAndRingWithFullAccess) {
    Make();
    CLogShareMemory reader(kExecutable);
    const CallSpy<&WindowsCalls::openMutex> openMutex(
        [&](DWORD dwAccess, BOOL bInherit, LPCWSTR pszName) {
            EXPECT_EQ(dwAccess, DWORD{MUTEX_ALL_ACCESS});
            EXPECT_EQ(pszName, m_channel.Names().mutex);
            return OpenMutexW(dwAccess, bInherit, pszName);
        });
    const CallSpy<&WindowsCalls::openFileMapping> openMapping(
        [&](DWORD dwAccess, BOOL bInherit, LPCWSTR pszName) {
            EXPECT_EQ(dwAccess, DWORD{FILE_MAP_ALL_ACCESS});
            return OpenFileMappingW(dwAccess, bInherit, pszName);
        });
    reader.Open();
    EXPECT_EQ(openMutex.Calls(), 1);
    EXPECT_EQ(openMapping.Calls(), 1);
}

TEST_F(ShareMemoryTest, ReaderThatIsRefusedOneOfTheObjectsReadsNothing) {
    Make();
    LogMessages messages;
    {
        CLogShareMemory reader(kExecutable);
        const CallSpy<&WindowsCalls::openMutex> refused(
            [](DWORD, BOOL, LPCWSTR) { return Refuse(ERROR_ACCESS_DENIED); });
        reader.Open();
        EXPECT_EQ(reader.Read(messages), 0);
    }
    CLogShareMemory reader(kExecutable);
    const CallSpy<&WindowsCalls::openFileMapping> refused(
        [](DWORD, BOOL, LPCWSTR) { return Refuse(ERROR_ACCESS_DENIED); });
    reader.Open();
    EXPECT_EQ(reader.Read(messages), 0);
}

TEST_F(ShareMemoryTest, ReaderTakesEachRecordOnce) {
    Make();
    CLogShareMemory reader(kExecutable);
    reader.Open();
    LogMessages messages;
    messages.emplace_back(new NSDBG::CLogMessage(LOGUTILS::MakeRecord(L"c", L"s", L"old")));
    EXPECT_EQ(reader.Read(messages), 1);  // right after creation
    EXPECT_TRUE(messages.empty());
    Write(L"one");
    Write(L"two");
    EXPECT_EQ(reader.Read(messages), 1);
    EXPECT_EQ(TextsOf(messages), (std::vector<std::wstring>{L"one", L"two"}));
    EXPECT_EQ(messages[0]->GetLevel(), 1u);
    EXPECT_STREQ(messages[0]->GetSource(), L"Source.dll");
    EXPECT_EQ(messages[0]->AddRef(), 2);
    EXPECT_EQ(messages[0]->Release(), 1);
    EXPECT_EQ(Ring().LastRead(), 1);
    EXPECT_EQ(reader.Read(messages), 1);
    EXPECT_TRUE(messages.empty());
}

TEST_F(ShareMemoryTest, ReaderWithoutMemoryFindsTheRecordsNewTheNextTime) {
    Make();
    const std::vector<std::wstring> texts = {L"one", L"two", L"three", L"four", L"five"};
    for (const std::wstring& text : texts) {
        Write(text.c_str());
    }
    CLogShareMemory reader(kExecutable);
    reader.Open();
    for (const std::size_t nSize : {texts.size() * sizeof(NSDBG::LogMessageReference),
                                    sizeof(NSDBG::CLogMessage), sizeof(LOGUTILS::LogRecord)}) {
        LogMessages messages;
        bool bThrown = false;
        try {
            const Mirqos::Test::FailingAllocation failing(nSize);
            reader.Read(messages);
        } catch (const std::bad_alloc&) {
            bThrown = true;
        }
        EXPECT_TRUE(bThrown) << nSize;
        EXPECT_TRUE(Mirqos::Test::IsFree(m_channel.Names().mutex));
    }
    EXPECT_EQ(Ring().LastRead(), -1);
    LogMessages messages;
    ASSERT_EQ(reader.Read(messages), 1);
    EXPECT_EQ(TextsOf(messages), texts);
}

TEST_F(ShareMemoryTest, ReaderTakesWhatAnotherProgramWrote) {
    Make();
    RingBytes ring = Ring();
    ring.SetText(RingBytes::ChannelAt(0), RingBytes::kNameUnits, u"other.exe");
    ring.SetText(RingBytes::SourceAt(0), RingBytes::kNameUnits, u"other.dll");
    ring.SetText(RingBytes::TextAt(0), RingBytes::kTextUnits, u"their line");
    ring.SetNumber(RingBytes::TimeAt(0), 0x000C07E8);       // 2024, December
    ring.SetNumber(RingBytes::TimeAt(0) + 4, 0x001F0002);   // Tuesday 31st
    ring.SetNumber(RingBytes::TimeAt(0) + 8, 0x003B0017);   // 23:59
    ring.SetNumber(RingBytes::TimeAt(0) + 12, 0x03E7003A);  // 58.999
    ring.SetNumber(RingBytes::ErrorCodeAt(0), 0xC0000005);
    ring.SetNumber(RingBytes::LevelAt(0), 3);
    ring.SetNumber(RingBytes::ProcessAt(0), 44);
    ring.SetNumber(RingBytes::ThreadAt(0), 55);
    ring.SetLongNumber(RingBytes::kLastWrittenAt, 0);
    CLogShareMemory reader(kExecutable);
    reader.Open();
    LogMessages messages;
    ASSERT_EQ(reader.Read(messages), 1);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_STREQ(messages[0]->GetChannel(), L"other.exe");
    EXPECT_STREQ(messages[0]->GetSource(), L"other.dll");
    EXPECT_STREQ(messages[0]->GetText(), L"their line");
    EXPECT_EQ(messages[0]->GetPrefix(),
              L"[2024/12/31 23:59:58:999   03   00044   00055   0Xc0000005] ");
    EXPECT_EQ(messages[0]->GetTime().wDayOfWeek, 2);
}

TEST_F(ShareMemoryTest, Record1025TakesTheSlotOfTheFirst) {
    Make();
    for (int n = 0; n <= 1024; ++n) {
        Write(std::to_wstring(n).c_str());
    }
    EXPECT_EQ(Ring().LastWritten(), 1024);
    EXPECT_EQ(Ring().Line(0), u"1024");
    EXPECT_EQ(Ring().Line(1), u"1");
    EXPECT_EQ(Ring().Line(1023), u"1023");

    CLogShareMemory reader(kExecutable);
    reader.Open();
    LogMessages messages;
    ASSERT_EQ(reader.Read(messages), 1);
    ASSERT_EQ(messages.size(), 1025u);
    EXPECT_STREQ(messages[0]->GetText(), L"1024");  // the lapped number gives the newer record
    EXPECT_STREQ(messages[1]->GetText(), L"1");
    EXPECT_STREQ(messages[1024]->GetText(), L"1024");
}

TEST_F(ShareMemoryTest, ReaderLappedSeveralTimesGetsEveryNumber) {
    Make();
    RingBytes ring = Ring();
    for (std::size_t slot = 0; slot < 1024; ++slot) {
        ring.SetNumber(RingBytes::TextAt(slot), 'x');
        ring.SetNumber(RingBytes::ThreadAt(slot), static_cast<std::uint32_t>(slot));
    }
    ring.SetLongNumber(RingBytes::kLastReadAt, 100);
    ring.SetLongNumber(RingBytes::kLastWrittenAt, 5100);
    CLogShareMemory reader(kExecutable);
    reader.Open();
    LogMessages messages;
    ASSERT_EQ(reader.Read(messages), 1);
    ASSERT_EQ(messages.size(), 5000u);
    for (std::size_t n = 0; n < messages.size(); ++n) {
        ASSERT_EQ(messages[n]->GetThreadId(), (101 + n) % 1024) << n;
    }
    EXPECT_EQ(Ring().LastRead(), 5100);
}

TEST_F(ShareMemoryTest, ReaderSurvivesHostileNumbers) {
    Make();
    RingBytes ring = Ring();
    ring.SetLongNumber(RingBytes::kLastReadAt, INT64_MIN);
    ring.SetLongNumber(RingBytes::kLastWrittenAt, INT64_MAX);
    CLogShareMemory reader(kExecutable);
    reader.Open();
    LogMessages messages;
    ASSERT_EQ(reader.Read(messages), 1);
    EXPECT_EQ(messages.size(), 65536u);
    EXPECT_EQ(Ring().LastRead(), INT64_MAX);
}

TEST_F(ShareMemoryTest, ReaderThatCannotHaveTheMutexOrTheRingKeepsWhatItHad) {
    Make();
    Write(L"line");
    CLogShareMemory reader(kExecutable);
    reader.Open();
    LogMessages messages;
    messages.emplace_back(new NSDBG::CLogMessage(LOGUTILS::MakeRecord(L"c", L"s", L"old")));
    for (const DWORD dwResult : {DWORD{WAIT_TIMEOUT}, DWORD{WAIT_FAILED}}) {
        const WaitSpy wait([dwResult](HANDLE, DWORD dwLimit) {
            EXPECT_EQ(dwLimit, 5000u);
            return dwResult;
        });
        EXPECT_EQ(reader.Read(messages), 0);
    }
    {
        const MapSpy failing([](HANDLE, DWORD, DWORD, DWORD, SIZE_T) -> void* { return nullptr; });
        EXPECT_EQ(reader.Read(messages), 0);
    }
    EXPECT_EQ(TextsOf(messages), (std::vector<std::wstring>{L"old"}));
    EXPECT_EQ(Ring().LastRead(), -1);
    EXPECT_TRUE(Mirqos::Test::IsFree(m_channel.Names().mutex));
    reader.Close();
    EXPECT_EQ(reader.Read(messages), 0);
}

TEST_F(ShareMemoryTest, OperationsStandInTheirOrder) {
    EXPECT_EQ(CallSlot<int>(m_writer, 2), 1);
    CallSlot<void>(m_writer, 5, 1, 0, L"Source.dll", L"written");
    const LOGUTILS::LogRecord record = LOGUTILS::MakeRecord(kExecutable, L"", L"appended");
    CallSlot<void>(m_writer, 7, &record);
    CLogShareMemory reader(kExecutable);
    LogMessages messages;
    CallSlot<void>(reader, 3);
    EXPECT_EQ(CallSlot<int>(reader, 6, &messages), 1);
    EXPECT_EQ(TextsOf(messages), (std::vector<std::wstring>{L"written", L"appended"}));
    CallSlot<void>(reader, 4);
    EXPECT_EQ(CallSlot<int>(reader, 6, &messages), 0);
}

}  // namespace
