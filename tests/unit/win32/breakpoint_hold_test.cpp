// Threads that a viewer's breakpoints hold. Each is let go by the test, or freed by the viewer's
// end.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "log/dbg/win32/CSMOutput.h"
#include "log/dbg/win32/WindowsCalls.h"
#include "tests/support/Gate.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/HeldWriter.h"
#include "tests/support/win32/IsOpenToEveryone.h"
#include "tests/support/win32/ViewerSide.h"

namespace {

using LOGUTILS::WindowsCalls;
using Mirqos::Test::AnnouncedViewer;
using Mirqos::Test::BreakpointBoard;
using Mirqos::Test::BreakpointBytes;
using Mirqos::Test::CallSpy;
using Mirqos::Test::Gate;
using Mirqos::Test::HeldWriter;
using Mirqos::Test::ListenedChannel;
using NSDBG::CSMOutput;

constexpr wchar_t kExecutable[] = L"Breakpoint.Hold.exe";
constexpr char16_t kChannel[] = u"bREAKPOINT.hOLD.EXE";
constexpr char16_t kPattern[] = u"Stop here";
constexpr wchar_t kMatching[] = L"please Stop here now";

class BreakpointHold : public testing::Test {
protected:
    BreakpointHold() { Table().Set(3, 0xABCD, kChannel, kPattern); }

    BreakpointBytes Table() { return m_board.Table(); }

    /// A line that is not held, seen by the table having no hit.
    void PassesBy(const wchar_t* pszText = kMatching) {
        const std::int64_t nBefore = m_channel.Ring().LastWritten();
        m_output.Write(1, 0, pszText);
        EXPECT_EQ(m_channel.Ring().LastWritten(), nBefore + 1);
        EXPECT_TRUE(Table().IsFree(0));
        EXPECT_FALSE(m_board.IsHit());
        EXPECT_TRUE(Mirqos::Test::IsFree(Mirqos::Test::kTableMutex));
    }
    /// Lets everything go, also when a test fails half-way.
    void TearDown() override { m_viewer.Leave(); }

    void Open() { m_output.Write(1, 0, L"it opens"); }

    AnnouncedViewer m_viewer;
    BreakpointBoard m_board;
    ListenedChannel m_channel{kExecutable};
    CSMOutput m_output{kExecutable, L"Source.dll"};
};

TEST_F(BreakpointHold, AMatchingLineHoldsItsThreadUntilItIsReleased) {
    const HeldWriter writer(m_output, kMatching);
    ASSERT_TRUE(m_board.WaitForHit());
    EXPECT_FALSE(writer.IsDone());
    EXPECT_EQ(m_channel.Ring().Line(0), u"please Stop here now");  // the line is seen first
    EXPECT_EQ(Table().Number(BreakpointBytes::HitAt(0)), 0xABCDu);
    EXPECT_TRUE(Table().IsZero(BreakpointBytes::HitAt(0) + 4, 12));
    EXPECT_FALSE(Table().IsZero(BreakpointBytes::HitIdAt(0), 16));
    EXPECT_EQ(Table().Number(BreakpointBytes::HitProcessAt(0)), GetCurrentProcessId());
    EXPECT_EQ(Table().Number(BreakpointBytes::HitThreadAt(0)), writer.ThreadId());
    EXPECT_TRUE(Table().IsFree(1));
    EXPECT_TRUE(m_board.Release(0));
    EXPECT_TRUE(writer.WaitUntilDone());
}

TEST_F(BreakpointHold, ReleaseEventIsNamedAfterTheHitAndOpenToEveryone) {
    std::wstring name;
    const CallSpy<&WindowsCalls::createEvent> createEvent(
        [&](SECURITY_ATTRIBUTES* pSecurity, BOOL bManual, BOOL bSignalled, LPCWSTR pszName) {
            EXPECT_TRUE(Mirqos::Test::IsOpenToEveryone(pSecurity));
            EXPECT_FALSE(bManual);
            EXPECT_FALSE(bSignalled);
            name = pszName;
            return CreateEventW(pSecurity, bManual, bSignalled, pszName);
        });
    const HeldWriter writer(m_output, kMatching);
    ASSERT_TRUE(m_board.WaitForHit());
    const std::string id = Table().HitName(0);
    EXPECT_EQ(name, L"Global\\BPHIT_EVENT_" + std::wstring(id.begin(), id.end()));
    EXPECT_TRUE(Mirqos::Test::EventExists(name));
    EXPECT_TRUE(m_board.Release(0));
    EXPECT_TRUE(writer.WaitUntilDone());
    EXPECT_FALSE(Mirqos::Test::EventExists(name));
}

TEST_F(BreakpointHold, OtherLinesPassBy) {
    Open();
    PassesBy(L"please stop here");
    PassesBy(L"a line");
}

TEST_F(BreakpointHold, ProcessAndThreadNarrowIt) {
    Open();
    Table().SetNumber(BreakpointBytes::ProcessAt(3), GetCurrentProcessId() + 1);
    PassesBy();
    Table().SetNumber(BreakpointBytes::ProcessAt(3), GetCurrentProcessId());
    Table().SetNumber(BreakpointBytes::ThreadAt(3), GetCurrentThreadId() + 1);
    PassesBy();
    Table().SetNumber(BreakpointBytes::ThreadAt(3), 0);
    const HeldWriter writer(m_output, kMatching);
    ASSERT_TRUE(m_board.WaitForHit());
    // only this thread, from now on
    Table().SetNumber(BreakpointBytes::ThreadAt(3), writer.ThreadId());
    m_output.Write(1, 0, kMatching);
    EXPECT_TRUE(Table().IsFree(1));
    EXPECT_TRUE(m_board.Release(0));
    EXPECT_TRUE(writer.WaitUntilDone());
}

TEST_F(BreakpointHold, ADisabledOrNamelessOneOrAnotherProgramsHoldsNobody) {
    Open();
    Table().SetNumber(BreakpointBytes::EnabledAt(3), 0);
    PassesBy();
    Table().SetNumber(BreakpointBytes::EnabledAt(3), 1);
    Table().SetNumber(BreakpointBytes::IdAt(3), 0);
    PassesBy();
    Table().SetNumber(BreakpointBytes::IdAt(3), 1);
    Table().SetText(BreakpointBytes::ChannelAt(3), BreakpointBytes::kChannelUnits, u"Other.exe");
    PassesBy();
    Table().SetText(BreakpointBytes::ChannelAt(3), BreakpointBytes::kChannelUnits, kChannel);
    Table().SetNumber(BreakpointBytes::kCountAt, 0);
    PassesBy();
}

TEST_F(BreakpointHold, FirstBreakpointThatMatchesIsTheOneThatIsHit) {
    Table().Set(1, 0x1111, kChannel, u"here");
    Table().Set(2, 0x2222, kChannel, u"nowhere");
    const HeldWriter writer(m_output, kMatching);
    ASSERT_TRUE(m_board.WaitForHit());
    EXPECT_EQ(Table().Number(BreakpointBytes::HitAt(0)), 0x1111u);
    EXPECT_TRUE(m_board.Release(0));
    EXPECT_TRUE(writer.WaitUntilDone());
}

TEST_F(BreakpointHold, WholeLineIsTestedThoughTheRecordIsCut) {
    const HeldWriter writer(m_output, std::wstring(3000, L'-') + kMatching);
    ASSERT_TRUE(m_board.WaitForHit());
    EXPECT_EQ(m_channel.Ring().Line(0), std::u16string(1023, u'-'));
    EXPECT_TRUE(m_board.Release(0));
    EXPECT_TRUE(writer.WaitUntilDone());
}

TEST_F(BreakpointHold, NarrowLinesAreTestedToo) {
    std::thread writer([this] { m_output.Write(1, 0, "please Stop here now"); });
    EXPECT_TRUE(m_board.WaitForHit());
    EXPECT_TRUE(m_board.Release(0));
    writer.join();
}

TEST_F(BreakpointHold, OthersGoOnLoggingThroughTheSameOutput) {
    const HeldWriter writer(m_output, kMatching);
    ASSERT_TRUE(m_board.WaitForHit());
    std::vector<std::thread> others;
    for (int n = 0; n < 3; ++n) {
        others.emplace_back([this] {
            for (int i = 0; i < 10; ++i) {
                m_output.Write(1, 0, L"another line");
                m_output.GetLevel();
            }
        });
    }
    for (std::thread& other : others) {
        other.join();
    }
    EXPECT_EQ(m_channel.Ring().LastWritten(), 30);
    EXPECT_TRUE(Mirqos::Test::IsFree(m_channel.Names().mutex));
    EXPECT_TRUE(Mirqos::Test::IsFree(Mirqos::Test::kTableMutex));
    EXPECT_FALSE(writer.IsDone());
    m_output.Close();  // by a thread that saw the viewer leave, say
    EXPECT_FALSE(writer.IsDone());
    EXPECT_TRUE(m_board.Release(0));
    EXPECT_TRUE(writer.WaitUntilDone());
}

TEST_F(BreakpointHold, TwoHeldThreadsAreReleasedInEitherOrder) {
    const HeldWriter first(m_output, kMatching);
    ASSERT_TRUE(m_board.WaitForHit());
    const HeldWriter second(m_output, kMatching);
    ASSERT_TRUE(m_board.WaitForHit());
    EXPECT_EQ(Table().Number(BreakpointBytes::HitThreadAt(0)), first.ThreadId());
    EXPECT_EQ(Table().Number(BreakpointBytes::HitThreadAt(1)), second.ThreadId());
    EXPECT_NE(Table().HitName(0), Table().HitName(1));
    EXPECT_TRUE(m_board.Release(1));
    EXPECT_TRUE(second.WaitUntilDone());
    EXPECT_FALSE(first.IsDone());
    EXPECT_TRUE(m_board.Release(0));
    EXPECT_TRUE(first.WaitUntilDone());
}

TEST_F(BreakpointHold, AFullHitTableStopsNobody) {
    for (std::size_t hit = 0; hit < BreakpointBytes::kHits; ++hit) {
        Table().SetNumber(BreakpointBytes::HitAt(hit), 1);
    }
    m_output.Write(1, 0, kMatching);
    EXPECT_EQ(m_channel.Ring().LastWritten(), 0);
    EXPECT_FALSE(m_board.IsHit());
    Table().SetNumber(BreakpointBytes::HitAt(9999), 0);
    const HeldWriter writer(m_output, kMatching);
    ASSERT_TRUE(m_board.WaitForHit());
    EXPECT_EQ(Table().Number(BreakpointBytes::HitThreadAt(9999)), writer.ThreadId());
    EXPECT_TRUE(m_board.Release(9999));
    EXPECT_TRUE(writer.WaitUntilDone());
}

TEST_F(BreakpointHold, ATableThatIsNotToBeHadFor10SecondsHoldsNobody) {
    Open();
    for (const DWORD dwResult : {DWORD{WAIT_TIMEOUT}, DWORD{WAIT_FAILED}}) {
        std::vector<DWORD> limits;
        const CallSpy<&WindowsCalls::waitForSingleObject> wait([&](HANDLE hObject, DWORD dwLimit) {
            limits.push_back(dwLimit);
            return dwLimit == 10000 ? dwResult : WaitForSingleObject(hObject, dwLimit);
        });
        PassesBy();
        EXPECT_EQ(limits, (std::vector<DWORD>{5000, 10000}));
    }
}

TEST_F(BreakpointHold, ATableThatCannotBeMappedHoldsNobody) {
    Open();
    const CallSpy<&WindowsCalls::mapViewOfFile> map(
        [](HANDLE hMapping, DWORD dwAccess, DWORD dwHigh, DWORD dwLow, SIZE_T nSize) -> void* {
            return nSize == BreakpointBytes::kSize
                       ? nullptr
                       : MapViewOfFile(hMapping, dwAccess, dwHigh, dwLow, nSize);
        });
    PassesBy();
    EXPECT_EQ(map.Calls(), 2);
}

TEST_F(BreakpointHold, AHitThatGetsNoIdHoldsNobody) {
    Open();
    const CallSpy<&WindowsCalls::uuidCreate> none(
        [](UUID*) { return RPC_STATUS{RPC_S_UUID_NO_ADDRESS}; });
    PassesBy();
    EXPECT_EQ(none.Calls(), 1);
}

TEST_F(BreakpointHold, AHitThatNobodyCouldReleaseIsToldAndHoldsNobody) {
    Open();
    const CallSpy<&WindowsCalls::createEvent> refused(
        [](SECURITY_ATTRIBUTES*, BOOL, BOOL, LPCWSTR) -> HANDLE { return nullptr; });
    m_output.Write(1, 0, kMatching);
    EXPECT_EQ(refused.Calls(), 1);
    EXPECT_TRUE(m_board.IsHit());
    EXPECT_FALSE(Table().IsFree(0));
}

TEST_F(BreakpointHold, ATableWhoseMutexWasAbandonedIsUsedAndItsMutexGivenBack) {
    Open();
    Mirqos::Test::Abandon(Mirqos::Test::kTableMutex);
    const HeldWriter writer(m_output, kMatching);
    ASSERT_TRUE(m_board.WaitForHit());
    EXPECT_TRUE(Mirqos::Test::IsFree(Mirqos::Test::kTableMutex));
    EXPECT_TRUE(m_board.Release(0));
    EXPECT_TRUE(writer.WaitUntilDone());
}

/// Answers the waits of held threads: each stops at a gate and has then timed out.
class HeldWaits {
public:
    const Gate& AtWait() const { return m_gate; }
    int Waits() const { return m_nWaits; }

private:
    Gate m_gate;
    std::atomic<int> m_nWaits{0};
    std::atomic<HANDLE> m_hRelease{nullptr};
    CallSpy<&WindowsCalls::createEvent> m_createEvent{
        [this](SECURITY_ATTRIBUTES* pSecurity, BOOL bManual, BOOL bSignalled, LPCWSTR pszName) {
            m_hRelease = CreateEventW(pSecurity, bManual, bSignalled, pszName);
            return m_hRelease.load();
        }};
    CallSpy<&WindowsCalls::waitForSingleObject> m_wait{[this](HANDLE hObject, DWORD dwLimit) {
        if (hObject != m_hRelease) {
            return WaitForSingleObject(hObject, dwLimit);
        }
        EXPECT_EQ(dwLimit, 5000u);
        ++m_nWaits;
        m_gate.Pass();
        return DWORD{WAIT_TIMEOUT};
    }};
};

TEST_F(BreakpointHold, AHeldThreadLooksForTheViewerBetweenItsWaits) {
    const HeldWaits waits;
    const HeldWriter writer(m_output, kMatching);
    ASSERT_TRUE(waits.AtWait().WaitUntilReached(1));
    waits.AtWait().Allow();
    ASSERT_TRUE(waits.AtWait().WaitUntilReached(2));  // the viewer is there: it waits on
    EXPECT_FALSE(writer.IsDone());
    m_viewer.Leave();
    waits.AtWait().Allow();
    EXPECT_TRUE(writer.WaitUntilDone());
    EXPECT_EQ(waits.Waits(), 2);
}

TEST_F(BreakpointHold, AViewerThatWentAtOnceHoldsNobody) {
    Open();
    const CallSpy<&WindowsCalls::setEvent> setEvent([this](HANDLE hEvent) {
        const BOOL bSet = SetEvent(hEvent);
        if (!Table().IsFree(0)) {
            m_viewer.Leave();  // as soon as it was told of the hit
        }
        return bSet;
    });
    m_output.Write(1, 0, kMatching);
    EXPECT_FALSE(Table().IsFree(0));
}

TEST_F(BreakpointHold, AWaitThatFailsEndsTheHold) {
    std::atomic<HANDLE> hRelease{nullptr};
    const CallSpy<&WindowsCalls::createEvent> createEvent(
        [&](SECURITY_ATTRIBUTES* pSecurity, BOOL bManual, BOOL bSignalled, LPCWSTR pszName) {
            hRelease = CreateEventW(pSecurity, bManual, bSignalled, pszName);
            return hRelease.load();
        });
    const CallSpy<&WindowsCalls::waitForSingleObject> wait([&](HANDLE hObject, DWORD dwLimit) {
        return hObject == hRelease ? DWORD{WAIT_FAILED} : WaitForSingleObject(hObject, dwLimit);
    });
    m_output.Write(1, 0, kMatching);
    EXPECT_FALSE(Table().IsFree(0));
}

TEST_F(BreakpointHold, AViewerThatGoesFreesTheThreadWithinItsWait) {
    std::atomic<HANDLE> hRelease{nullptr};
    const Gate waiting;
    waiting.Open();
    const CallSpy<&WindowsCalls::createEvent> createEvent(
        [&](SECURITY_ATTRIBUTES* pSecurity, BOOL bManual, BOOL bSignalled, LPCWSTR pszName) {
            hRelease = CreateEventW(pSecurity, bManual, bSignalled, pszName);
            return hRelease.load();
        });
    const CallSpy<&WindowsCalls::waitForSingleObject> wait([&](HANDLE hObject, DWORD dwLimit) {
        if (hObject == hRelease) {
            waiting.Pass();
        }
        return WaitForSingleObject(hObject, dwLimit);
    });
    const HeldWriter writer(m_output, kMatching);
    ASSERT_TRUE(waiting.WaitUntilReached());
    m_viewer.Leave();
    EXPECT_TRUE(writer.WaitUntilDone());  // 5 seconds, and those of a busy machine
    EXPECT_EQ(waiting.Reached(), 1);
}

TEST(BreakpointHoldAlone, ATableLivesAsLongAsAThreadIsHeld) {
    AnnouncedViewer viewer;
    auto board = std::make_unique<BreakpointBoard>();
    const ListenedChannel channel(kExecutable);
    CSMOutput output(kExecutable, L"Source.dll");
    board->Table().Set(0, 1, kChannel, kPattern);
    {
        const HeldWaits waits;
        const HeldWriter writer(output, kMatching);
        EXPECT_TRUE(waits.AtWait().WaitUntilReached(1));
        output.Close();
        board.reset();
        // so that a viewer which comes now finds in it whom to release
        EXPECT_TRUE(Mirqos::Test::MappingExists(Mirqos::Test::kGlobalTable));
        viewer.Leave();
        waits.AtWait().Open();
        EXPECT_TRUE(writer.WaitUntilDone());
    }
    EXPECT_FALSE(Mirqos::Test::MappingExists(Mirqos::Test::kGlobalTable));
}

TEST(BreakpointHoldAlone, ATableInTheLocalNamespaceServes) {
    // Wine has one namespace for both, so that the other name has to be hidden
    const CallSpy<&WindowsCalls::openFileMapping> openMapping(
        [](DWORD dwAccess, BOOL bInherit, LPCWSTR pszName) -> HANDLE {
            const bool bGlobalTable = std::wstring(pszName) == Mirqos::Test::kGlobalTable;
            return bGlobalTable ? nullptr : OpenFileMappingW(dwAccess, bInherit, pszName);
        });
    AnnouncedViewer viewer;
    BreakpointBoard board(Mirqos::Test::kLocalTable);
    const ListenedChannel channel(kExecutable);
    CSMOutput output(kExecutable, L"Source.dll");
    board.Table().Set(0, 1, kChannel, kPattern);
    {
        const HeldWriter writer(output, kMatching);
        EXPECT_TRUE(board.WaitForHit());
        EXPECT_TRUE(board.Release(0));
        EXPECT_TRUE(writer.WaitUntilDone());
    }
    viewer.Leave();
}

}  // namespace
