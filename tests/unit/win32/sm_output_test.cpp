#include "log/dbg/win32/CSMOutput.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "log/CMIRQOSLog.h"
#include "log/ModuleLog.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "log/dbg/win32/WindowsCalls.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/Gate.h"
#include "tests/support/RecordingOutput.h"
#include "tests/support/win32/CallSlot.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/ViewerSide.h"

namespace {

using LOGUTILS::WindowsCalls;
using Mirqos::Test::AnnouncedViewer;
using Mirqos::Test::BreakpointBoard;
using Mirqos::Test::CallSlot;
using Mirqos::Test::CallSpy;
using Mirqos::Test::ListenedChannel;
using Mirqos::Test::RingBytes;
using NSDBG::CSMOutput;

constexpr wchar_t kPresence[] = L"Global\\EVENT_9CF42DA4-ACD1-4F3F-8D6F-31023974A079";

std::u16string OwnName() {
    const std::wstring name = LOGUTILS::ExecutableName();
    return {name.begin(), name.end()};
}

/// Counts every call of the library that goes to the system's objects.
struct AllCalls {
    CallSpy<&WindowsCalls::openEvent> openEvent;
    CallSpy<&WindowsCalls::createEvent> createEvent;
    CallSpy<&WindowsCalls::setEvent> setEvent;
    CallSpy<&WindowsCalls::createMutex> createMutex;
    CallSpy<&WindowsCalls::openMutex> openMutex;
    CallSpy<&WindowsCalls::releaseMutex> releaseMutex;
    CallSpy<&WindowsCalls::waitForSingleObject> wait;
    CallSpy<&WindowsCalls::createFileMapping> createMapping;
    CallSpy<&WindowsCalls::openFileMapping> openMapping;
    CallSpy<&WindowsCalls::mapViewOfFile> map;
    CallSpy<&WindowsCalls::uuidCreate> uuidCreate;
    CallSpy<&WindowsCalls::getModuleFileName> getModuleFileName;

    int Sum() const {
        return openEvent.Calls() + createEvent.Calls() + setEvent.Calls() + createMutex.Calls() +
               openMutex.Calls() + releaseMutex.Calls() + wait.Calls() + createMapping.Calls() +
               openMapping.Calls() + map.Calls() + uuidCreate.Calls() + getModuleFileName.Calls();
    }
};

TEST(SMOutput, WithoutAViewerALineCostsOneLookUp) {
    const ListenedChannel channel(LOGUTILS::ExecutableName());
    CSMOutput output;
    {
        const AllCalls calls;
        output.Write(1, 0, "a line");
        EXPECT_EQ(calls.openEvent.Calls(), 1);
        EXPECT_EQ(calls.Sum(), 1);
    }
    {
        const AllCalls calls;
        output.Write(1, 0, L"a line");
        EXPECT_EQ(calls.openEvent.Calls(), 1);
        EXPECT_EQ(calls.Sum(), 1);
    }
    EXPECT_FALSE(channel.HasRing());
}

TEST(SMOutput, WithoutAViewerItsLevelIs0AndCostsOneLookUp) {
    CSMOutput output;
    const AllCalls calls;
    EXPECT_EQ(output.GetLevel(), 0);
    EXPECT_EQ(calls.openEvent.Calls(), 1);
    EXPECT_EQ(calls.Sum(), 1);
}

TEST(SMOutput, MakingAndEndingItCostsNothing) {
    const AllCalls calls;
    { CSMOutput output; }
    EXPECT_EQ(calls.Sum(), 0);
}

TEST(SMOutput, WithAViewerItsLevelIs9999) {
    CSMOutput output;
    AnnouncedViewer viewer;
    const CallSpy<&WindowsCalls::openEvent> openEvent(
        [](DWORD dwAccess, BOOL bInherit, LPCWSTR pszName) {
            EXPECT_EQ(dwAccess, DWORD{EVENT_ALL_ACCESS});
            EXPECT_STREQ(pszName, kPresence);
            return OpenEventW(dwAccess, bInherit, pszName);
        });
    EXPECT_EQ(output.GetLevel(), 9999);
    viewer.Leave();
    EXPECT_EQ(output.GetLevel(), 0);  // the look kept nothing open
    EXPECT_EQ(openEvent.Calls(), 2);
}

TEST(SMOutput, AChannelThatTheViewerDoesNotAskForIsNotOpened) {
    const AnnouncedViewer viewer;
    CSMOutput output;
    const AllCalls calls;
    output.Write(1, 0, L"a line");
    EXPECT_EQ(calls.openEvent.Calls(), 2);
    EXPECT_EQ(calls.createMutex.Calls() + calls.createMapping.Calls() + calls.wait.Calls(), 0);
    EXPECT_FALSE(
        Mirqos::Test::MutexExists(Mirqos::Test::ChannelObjects(LOGUTILS::ExecutableName()).mutex));
}

class SMOutputTest : public testing::Test {
protected:
    RingBytes Ring() { return m_channel.Ring(); }

    AnnouncedViewer m_viewer;
    ListenedChannel m_channel{LOGUTILS::ExecutableName()};
    CSMOutput m_output;
};

TEST_F(SMOutputTest, LinesArriveWithTheNamesOfProgramAndLibrary) {
    m_output.Write(2, 5, L"a \u4E2D line");
    EXPECT_TRUE(m_channel.IsTold());
    EXPECT_EQ(Ring().LastWritten(), 0);
    EXPECT_EQ(Ring().Line(0), u"a \u4E2D line");
    EXPECT_EQ(Ring().Channel(0), OwnName());
    EXPECT_EQ(Ring().Source(0), OwnName());  // the library is linked into the program
    EXPECT_EQ(Ring().Number(RingBytes::LevelAt(0)), 2u);
    EXPECT_EQ(Ring().Number(RingBytes::ErrorCodeAt(0)), 5u);
    m_output.Write(1, 0, "narrow");
    EXPECT_EQ(Ring().Line(1), u"narrow");
    EXPECT_EQ(Ring().Number(RingBytes::ErrorCodeAt(1)), 0u);
}

TEST_F(SMOutputTest, NamesThatWereGivenStand) {
    ListenedChannel channel(L"SMOutput.Given.exe");
    CSMOutput output(L"SMOutput.Given.exe", L"Given.dll");
    output.Write(1, 0, L"line");
    EXPECT_EQ(channel.Ring().Channel(0), u"SMOutput.Given.exe");
    EXPECT_EQ(channel.Ring().Source(0), u"Given.dll");
    EXPECT_FALSE(m_channel.HasRing());
}

TEST_F(SMOutputTest, NothingFiltersByLevel) {
    m_output.Write(10000, 0, L"line");
    m_output.Write(-1, 0, L"line");
    EXPECT_EQ(Ring().LastWritten(), 1);
    EXPECT_EQ(Ring().Number(RingBytes::LevelAt(1)), 0xFFFFFFFFu);
}

TEST_F(SMOutputTest, NarrowLinesAreReadInTheAnsiCodePage) {
    const char narrow[] = "caf\xE9";
    wchar_t expected[16] = {};
    ASSERT_GT(MultiByteToWideChar(CP_ACP, 0, narrow, -1, expected, 16), 0);
    m_output.Write(1, 0, narrow);
    const std::wstring text(expected);
    EXPECT_EQ(Ring().Line(0), std::u16string(text.begin(), text.end()));
}

TEST_F(SMOutputTest, ANarrowLineThatDoesNotFitIsNotRecordedAndAWideOneIsCut) {
    m_output.Write(1, 0, std::string(1023, 'n').c_str());
    EXPECT_EQ(Ring().Line(0), std::u16string(1023, u'n'));
    m_output.Write(1, 0, std::string(1024, 'n').c_str());
    m_output.Write(1, 0, std::string(5000, 'n').c_str());
    EXPECT_EQ(Ring().LastWritten(), 0);
    m_output.Write(1, 0, std::wstring(5000, L'w').c_str());
    EXPECT_EQ(Ring().Line(1), std::u16string(1023, u'w'));
}

TEST_F(SMOutputTest, AnEmptyLineIsNotRecorded) {
    m_output.Write(1, 0, "");
    m_output.Write(1, 0, L"");
    EXPECT_EQ(Ring().LastWritten(), -1);
    EXPECT_FALSE(m_channel.IsTold());
}

TEST_F(SMOutputTest, AnOpenChannelCostsALineTwoLookUpsAndOneAppend) {
    m_output.Write(1, 0, L"it opens");
    const AllCalls calls;
    m_output.Write(1, 0, L"line");
    EXPECT_EQ(calls.openEvent.Calls(), 2);  // the viewer, and its breakpoints, which it has not
    EXPECT_EQ(calls.wait.Calls(), 1);
    EXPECT_EQ(calls.map.Calls(), 1);
    EXPECT_EQ(calls.releaseMutex.Calls(), 1);
    EXPECT_EQ(calls.setEvent.Calls(), 1);
    EXPECT_EQ(calls.Sum(), 6);
}

TEST_F(SMOutputTest, ChannelClosesWhenTheViewerGoesAndOpensWhenOneComes) {
    const std::wstring mutexName = m_channel.Names().mutex;
    m_output.Write(1, 0, L"one");
    EXPECT_TRUE(m_channel.HasRing());
    m_viewer.Leave();
    EXPECT_TRUE(m_channel.HasRing());
    m_output.Write(1, 0, L"two");
    EXPECT_FALSE(m_channel.HasRing());
    EXPECT_FALSE(Mirqos::Test::MutexExists(mutexName));
    m_viewer = AnnouncedViewer();
    m_output.Write(1, 0, L"three");
    EXPECT_EQ(Ring().LastWritten(), 0);
    EXPECT_EQ(Ring().Line(0), u"three");
}

TEST_F(SMOutputTest, EndOfTheOutputClosesTheChannel) {
    auto output = std::make_unique<CSMOutput>();
    output->Write(1, 0, L"line");
    EXPECT_TRUE(m_channel.HasRing());
    output.reset();
    EXPECT_FALSE(m_channel.HasRing());
}

DWORD WINAPI WriteALine(void* pOutput) {
    static_cast<CSMOutput*>(pOutput)->Write(1, 0, L"line");
    return 0;
}

TEST_F(SMOutputTest, EndOfTheOutputDoesNotWaitForAThreadThatWasEndedInIt) {
    auto output = std::make_unique<CSMOutput>();
    output->Write(1, 0, L"line");
    const Mirqos::Test::Gate inside;
    {
        const CallSpy<&WindowsCalls::openEvent> look([&](DWORD, BOOL, LPCWSTR) -> HANDLE {
            inside.Pass();
            return nullptr;
        });
        const LOGUTILS::KernelObject thread(
            CreateThread(nullptr, 0, &WriteALine, output.get(), 0, nullptr));
        ASSERT_TRUE(inside.WaitUntilReached());
        // as all other threads are when a process ends
        ASSERT_TRUE(TerminateThread(thread.Get(), 0));
        ASSERT_EQ(WaitForSingleObject(thread.Get(), INFINITE), DWORD{WAIT_OBJECT_0});
    }
    output.reset();
    EXPECT_FALSE(m_channel.HasRing());
}

TEST_F(SMOutputTest, AChannelThatCannotBeMadeIsTriedAgainByTheNextLine) {
    {
        const CallSpy<&WindowsCalls::createMutex> refused(
            [](SECURITY_ATTRIBUTES*, BOOL, LPCWSTR) -> HANDLE { return nullptr; });
        EXPECT_EQ(m_output.Connect(), 0);
        m_output.Write(1, 0, L"lost");
    }
    {
        const CallSpy<&WindowsCalls::createFileMapping> refused(
            [](HANDLE, SECURITY_ATTRIBUTES*, DWORD, DWORD, DWORD, LPCWSTR) -> HANDLE {
                SetLastError(ERROR_ACCESS_DENIED);
                return nullptr;
            });
        m_output.Write(1, 0, L"lost too");
        EXPECT_FALSE(Mirqos::Test::MutexExists(m_channel.Names().mutex));
    }
    m_output.Write(1, 0, L"line");
    EXPECT_EQ(Ring().LastWritten(), 0);
    EXPECT_EQ(Ring().Line(0), u"line");
}

TEST_F(SMOutputTest, ALineThatThereIsNoMemoryForIsLostInSilence) {
    {
        const Mirqos::Test::FailingAllocation failing(sizeof(NSDBG::CLogShareMemory));
        m_output.Write(1, 0, "lost");
        m_output.Write(1, 0, L"lost");
    }
    m_output.Write(1, 0, L"line");
    EXPECT_EQ(Ring().LastWritten(), 0);
}

TEST_F(SMOutputTest, AProgramWithoutAPathHasNoChannel) {
    const CallSpy<&WindowsCalls::getModuleFileName> nameless([](HMODULE, LPWSTR pszPath, DWORD) {
        pszPath[0] = L'x';
        pszPath[1] = L'\0';
        return DWORD{1};
    });
    EXPECT_EQ(m_output.CheckViewer(), 0);
    m_output.Write(1, 0, L"line");
    EXPECT_FALSE(m_channel.HasRing());
}

TEST_F(SMOutputTest, StepsTellWhetherTheySucceeded) {
    EXPECT_EQ(m_output.CheckViewer(), 1);
    EXPECT_EQ(m_output.OpenChannel(), 1);
    EXPECT_EQ(m_output.OpenChannel(), 1);
    EXPECT_EQ(m_output.Connect(), 1);
    m_output.Flush();
    EXPECT_EQ(Ring().LastWritten(), -1);
    m_output.Close();
    m_output.Close();
    m_output.WriteToChannel(1, 0, L"nothing is open");
    EXPECT_EQ(Ring().LastWritten(), -1);
    m_viewer.Leave();
    EXPECT_EQ(m_output.CheckViewer(), 0);
    EXPECT_EQ(m_output.Connect(), 0);
}

TEST_F(SMOutputTest, ALoggersLinesReachTheChannel) {
    CMIRQOSLog log(Aws::Utils::Logging::LogLevel::Warn);
    log.m_pFileOutput = std::make_unique<Mirqos::Test::RecordingOutput>(0);
    ModuleLog(&log, 2, "\na narrow line\n");
    ModuleLogW(&log, 1, L"a wide line");
    ModuleLog(&log, 3, "dropped");
    EXPECT_EQ(Ring().LastWritten(), 1);
    EXPECT_EQ(Ring().Line(0), u"a narrow line");
    EXPECT_EQ(Ring().Number(RingBytes::LevelAt(0)), 2u);
    EXPECT_EQ(Ring().Line(1), u"a wide line");
    EXPECT_EQ(Ring().Number(RingBytes::ErrorCodeAt(1)), 0u);
}

TEST_F(SMOutputTest, OutputsAndThreadsOfAProcessShareTheChannel) {
    constexpr int kThreads = 4;
    constexpr int kLines = 200;
    CSMOutput second;
    std::vector<std::thread> threads;
    for (int n = 0; n < kThreads; ++n) {
        threads.emplace_back([&, n] {
            CSMOutput& output = n % 2 == 0 ? m_output : second;
            for (int i = 0; i < kLines; ++i) {
                output.Write(n, 0, std::to_wstring(i).c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ASSERT_EQ(Ring().LastWritten(), kThreads * kLines - 1);
    int nNext[kThreads] = {};
    for (std::size_t slot = 0; slot < kThreads * kLines; ++slot) {
        const std::uint32_t nThread = Ring().Number(RingBytes::LevelAt(slot));
        ASSERT_LT(nThread, 4u);
        const std::string expected = std::to_string(nNext[nThread]++);
        ASSERT_EQ(Ring().Line(slot), std::u16string(expected.begin(), expected.end()));
    }
}

TEST_F(SMOutputTest, BreakpointsStayOffWhileOneOfTheirObjectsIsMissing) {
    const LOGUTILS::KernelObject hitEvent = Mirqos::Test::MakeEvent(Mirqos::Test::kHitEvent);
    {
        const AllCalls calls;
        m_output.Write(1, 0, L"no mutex");
        EXPECT_EQ(calls.openMutex.Calls(), 1);
        EXPECT_EQ(calls.openMapping.Calls(), 0);
    }
    const LOGUTILS::KernelObject mutex(CreateMutexW(nullptr, FALSE, Mirqos::Test::kTableMutex));
    {
        std::vector<std::wstring> tried;
        const CallSpy<&WindowsCalls::openFileMapping> openMapping(
            [&](DWORD dwAccess, BOOL bInherit, LPCWSTR pszName) {
                EXPECT_EQ(dwAccess, DWORD{FILE_MAP_ALL_ACCESS});
                tried.emplace_back(pszName);
                return OpenFileMappingW(dwAccess, bInherit, pszName);
            });
        m_output.Write(1, 0, L"no table");
        EXPECT_EQ(tried, (std::vector<std::wstring>{Mirqos::Test::kGlobalTable,
                                                    Mirqos::Test::kLocalTable}));
    }
    EXPECT_EQ(Ring().LastWritten(), 1);
}

TEST_F(SMOutputTest, BreakpointsThatWereOpenedInPartAreClosed) {
    auto hitEvent =
        std::make_unique<LOGUTILS::KernelObject>(Mirqos::Test::MakeEvent(Mirqos::Test::kHitEvent));
    m_output.Write(1, 0, L"no mutex");
    hitEvent.reset();
    EXPECT_FALSE(Mirqos::Test::EventExists(Mirqos::Test::kHitEvent));
}

TEST_F(SMOutputTest, OpenBreakpointsAreNotLookedUpAgain) {
    BreakpointBoard board;
    m_output.Write(1, 0, L"it opens");
    const AllCalls calls;
    m_output.Write(1, 0, L"line");
    EXPECT_EQ(calls.openEvent.Calls(), 1);
    EXPECT_EQ(calls.openMutex.Calls() + calls.openMapping.Calls(), 0);
    EXPECT_EQ(calls.wait.Calls(), 2);
    EXPECT_EQ(calls.map.Calls(), 2);
}

TEST_F(SMOutputTest, BreakpointsAreClosedWhenTheViewerGoes) {
    {
        const BreakpointBoard board;
        m_output.Write(1, 0, L"line");
    }
    EXPECT_TRUE(Mirqos::Test::MappingExists(Mirqos::Test::kGlobalTable));
    m_viewer.Leave();
    m_output.Write(1, 0, L"line");
    EXPECT_FALSE(Mirqos::Test::MappingExists(Mirqos::Test::kGlobalTable));
    EXPECT_FALSE(Mirqos::Test::MutexExists(Mirqos::Test::kTableMutex));
    EXPECT_FALSE(Mirqos::Test::EventExists(Mirqos::Test::kHitEvent));
}

TEST_F(SMOutputTest, OperationsStandInTheirOrder) {
    CallSlot<void>(m_output, MIRQOS_NARROW_WRITE_SLOT, 1, 0, "narrow");
    CallSlot<void>(m_output, 5 - MIRQOS_NARROW_WRITE_SLOT, 1, 0, L"wide");
    EXPECT_EQ(Ring().Line(0), u"narrow");
    EXPECT_EQ(Ring().Line(1), u"wide");
    EXPECT_EQ(CallSlot<int>(m_output, 4), 9999);
    {
        const AllCalls calls;
        CallSlot<void>(m_output, 5);
        EXPECT_EQ(calls.Sum(), 0);
    }
    m_viewer.Leave();
    EXPECT_EQ(CallSlot<int>(m_output, 8), 0);
    EXPECT_EQ(CallSlot<int>(m_output, 9), 1);
    CallSlot<void>(m_output, 11, 1, 0, L"to the channel");
    EXPECT_EQ(Ring().Line(2), u"to the channel");
    EXPECT_EQ(CallSlot<int>(m_output, 7), 0);
    CallSlot<void>(m_output, 11, 1, 0, L"it is closed");
    EXPECT_EQ(Ring().LastWritten(), 2);
    m_viewer = AnnouncedViewer();
    {
        const CallSpy<&WindowsCalls::openEvent> openEvent(
            [](DWORD, BOOL, LPCWSTR pszName) -> HANDLE {
                EXPECT_STREQ(pszName, Mirqos::Test::kHitEvent);
                return nullptr;
            });
        CallSlot<void>(m_output, 10);
        EXPECT_EQ(openEvent.Calls(), 1);
    }
    EXPECT_EQ(CallSlot<int>(m_output, 7), 1);
    CallSlot<void>(m_output, 6);
    CallSlot<void>(m_output, 11, 1, 0, L"it is closed");
    EXPECT_EQ(Ring().LastWritten(), 2);
}

}  // namespace
