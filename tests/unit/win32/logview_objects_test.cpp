// The viewer's objects against the library, and against their documented names.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "log/dbg/win32/CSMOutput.h"
#include "log/dbg/win32/ViewerNames.h"
#include "log/dbg/win32/WindowsCalls.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/Gate.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/HeldWriter.h"
#include "tests/support/win32/ViewerSide.h"
#include "tools/mirqos-logview/Failure.h"
#include "tools/mirqos-logview/HeldThreads.h"
#include "tools/mirqos-logview/Presence.h"
#include "tools/mirqos-logview/WatchedChannel.h"

namespace Mirqos::LogView {
namespace {

using LOGUTILS::WindowsCalls;
using NSDBG::CSMOutput;
using Test::CallSpy;
using Test::HeldWriter;
using Test::RingBytes;

constexpr wchar_t kExecutable[] = L"LogView.Objects.exe";
constexpr wchar_t kPresence[] = L"Global\\EVENT_9CF42DA4-ACD1-4F3F-8D6F-31023974A079";

template <typename Work>
void ExpectFailure(ExitCode code, Work work) {
    try {
        work();
        ADD_FAILURE() << "it was done";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), code) << failure.what();
    }
}

HANDLE Refuse() {
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

TEST(LogViewObjects, PresenceIsThatOfOneViewer) {
    {
        const Presence presence;
        EXPECT_TRUE(Mirqos::Test::EventExists(kPresence));
        ExpectFailure(ExitCode::OtherViewer, [] { const Presence second; });
    }
    EXPECT_FALSE(Mirqos::Test::EventExists(kPresence));
}

TEST(LogViewObjects, PresenceWaitsForAWriterThatIsJustLooking) {
    // a writer has the event of the former viewer open
    auto look = std::make_unique<LOGUTILS::KernelObject>(Mirqos::Test::MakeEvent(kPresence));
    const CallSpy<&WindowsCalls::createEvent> create(
        [&](SECURITY_ATTRIBUTES* pSecurity, BOOL bManual, BOOL bSignalled, LPCWSTR pszName) {
            if (create.Calls() == 2) {
                look.reset();
            }
            return CreateEventW(pSecurity, bManual, bSignalled, pszName);
        });
    const Presence presence;
    EXPECT_EQ(create.Calls(), 2);
}

TEST(LogViewObjects, RefusedObjectsEndTheProgramWithOneLine) {
    const CallSpy<&WindowsCalls::createEvent> refused(
        [](SECURITY_ATTRIBUTES*, BOOL, BOOL, LPCWSTR) { return Refuse(); });
    ExpectFailure(ExitCode::SystemRefused, [] { const Presence presence; });
    ExpectFailure(ExitCode::SystemRefused, [] { const WatchedChannel channel(kExecutable); });
    ExpectFailure(ExitCode::SystemRefused, [] { const BreakpointTable table; });
}

class LogViewObjectsTest : public testing::Test {
protected:
    Presence m_presence;
    WatchedChannel m_channel{kExecutable};
    CSMOutput m_output{kExecutable, L"Source.dll"};
};

TEST_F(LogViewObjectsTest, ChannelIsReadFromItsFirstLineOn) {
    EXPECT_TRUE(m_channel.Read().messages.empty());
    m_output.Write(1, 0, L"one");
    EXPECT_EQ(WaitForSingleObject(m_channel.Event(), 0), WAIT_OBJECT_0);
    const NewMessages found = m_channel.Read();
    ASSERT_EQ(found.messages.size(), 1u);
    EXPECT_STREQ(found.messages[0]->GetText(), L"one");
    EXPECT_EQ(found.lost, 0u);
    EXPECT_TRUE(m_channel.Read().messages.empty());
}

TEST_F(LogViewObjectsTest, LinesOfAWriterThatHasGoneAreStillRead) {
    m_output.Write(1, 0, L"one");
    EXPECT_EQ(m_channel.Read().messages.size(), 1u);
    m_output.Write(1, 0, L"two");
    m_output.Close();
    EXPECT_EQ(m_channel.Read().messages.size(), 1u);
    CSMOutput next(kExecutable, L"Source.dll");
    next.Write(1, 0, L"three");
    EXPECT_EQ(m_channel.Read().messages.size(), 1u);
}

TEST_F(LogViewObjectsTest, LostLinesAreCountedAndOnlyTrueOnesDelivered) {
    m_output.Write(1, 0, L"0");
    EXPECT_EQ(m_channel.Read().messages.size(), 1u);
    for (int n = 1; n <= 1024; ++n) {
        m_output.Write(1, 0, std::to_wstring(n).c_str());
    }
    NewMessages found = m_channel.Read();
    EXPECT_EQ(found.messages.size(), 1024u);
    EXPECT_EQ(found.lost, 0u);
    for (int n = 1025; n <= 2060; ++n) {
        m_output.Write(1, 0, std::to_wstring(n).c_str());
    }
    found = m_channel.Read();
    ASSERT_EQ(found.messages.size(), 1024u);
    EXPECT_EQ(found.lost, 12u);
    EXPECT_FALSE(found.lostMore);
    EXPECT_STREQ(found.messages.front()->GetText(), L"1037");
    EXPECT_STREQ(found.messages.back()->GetText(), L"2060");
}

TEST_F(LogViewObjectsTest, LossBeyondCountingIsSaid) {
    m_output.Write(1, 0, L"line");
    Mirqos::Test::ListenedChannel raw(kExecutable);
    raw.Ring().SetLongNumber(RingBytes::kLastWrittenAt, 10'000'000);
    const NewMessages found = m_channel.Read();
    EXPECT_EQ(found.messages.size(), 1024u);
    EXPECT_EQ(found.lost, 64512u);
    EXPECT_TRUE(found.lostMore);
}

class LogViewHolding : public LogViewObjectsTest {
protected:
    LogViewHolding() { m_held.Add({kExecutable, L"hold me", 0, 0}); }

    void Read() {
        for (const auto& message : m_channel.Read().messages) {
            m_held.Remember(*message);
        }
    }
    void Look() {
        m_held.Look([this] { Read(); });
    }
    /// Waits until a thread was stopped, and looks.
    bool LookAtHit() {
        const bool hit = WaitForSingleObject(m_held.HitEvent(), 30000) == WAIT_OBJECT_0;
        Look();
        return hit;
    }

    std::vector<std::string> m_notes;
    HeldThreads m_held{[this](const std::string& note) { m_notes.push_back(note); }};
};

TEST_F(LogViewHolding, AHeldThreadIsToldWithItsLineOnce) {
    const HeldWriter writer(m_output, L"please hold me");
    ASSERT_TRUE(LookAtHit());
    Look();
    ASSERT_EQ(m_notes.size(), 1u);
    EXPECT_NE(m_notes[0].find("held 1: process " + std::to_string(GetCurrentProcessId())),
              std::string::npos);
    EXPECT_NE(m_notes[0].find(std::to_string(writer.ThreadId())), std::string::npos);
    EXPECT_NE(m_notes[0].find("please hold me"), std::string::npos);
    EXPECT_EQ(m_held.Held(), m_notes[0] + "\n");
    EXPECT_FALSE(writer.IsDone());
    EXPECT_TRUE(m_held.Release(1));
    EXPECT_TRUE(writer.WaitUntilDone());
    EXPECT_EQ(m_notes.back(), "released 1");
    EXPECT_FALSE(m_held.Release(1));
    Look();
    EXPECT_EQ(m_notes.size(), 2u);
}

TEST_F(LogViewHolding, ALineThatWasCutIsSaidToBeUnseen) {
    const HeldWriter writer(m_output, std::wstring(2000, L'-') + L"hold me");
    ASSERT_TRUE(LookAtHit());
    EXPECT_NE(m_notes.at(0).find("not seen"), std::string::npos);
    EXPECT_EQ(m_held.ReleaseAll(), 1u);
    EXPECT_TRUE(writer.WaitUntilDone());
}

TEST_F(LogViewHolding, AReleaseThatComesTooEarlyIsMadeUpFor) {
    const HeldWriter writer(m_output, L"please hold me");
    ASSERT_TRUE(LookAtHit());
    {
        const CallSpy<&WindowsCalls::openEvent> missing(
            [](DWORD dwAccess, BOOL bInherit, LPCWSTR pszName) -> HANDLE {
                const bool bRelease = std::wstring(pszName).find(L"BPHIT") != std::wstring::npos;
                return bRelease ? nullptr : OpenEventW(dwAccess, bInherit, pszName);
            });
        EXPECT_TRUE(m_held.Release(1));
        Look();
        EXPECT_FALSE(writer.IsDone());
        EXPECT_NE(m_held.Held().find("held 1"), std::string::npos);
    }
    Look();
    EXPECT_TRUE(writer.WaitUntilDone());
}

TEST_F(LogViewHolding, ARemovedBreakpointHoldsNobodyElse) {
    const HeldWriter writer(m_output, L"please hold me");
    ASSERT_TRUE(LookAtHit());
    EXPECT_TRUE(m_held.Remove(1));
    m_output.Write(1, 0, L"please hold me");
    EXPECT_EQ(m_held.Breakpoints(), "no breakpoints\n");
    EXPECT_FALSE(writer.IsDone());
    EXPECT_EQ(m_held.ReleaseAll(), 1u);
    EXPECT_TRUE(writer.WaitUntilDone());
}

TEST_F(LogViewHolding, AThreadThatHasEndedIsForgotten) {
    Mirqos::Test::BreakpointBoard raw;  // clears the table: the breakpoint of the fixture is gone
    raw.Table().SetNumber(Mirqos::Test::BreakpointBytes::HitAt(5), 1);
    raw.Table().SetNumber(Mirqos::Test::BreakpointBytes::HitIdAt(5), 2);
    raw.Table().SetNumber(Mirqos::Test::BreakpointBytes::HitProcessAt(5), 0xFFFFFFF0);
    raw.Table().SetNumber(Mirqos::Test::BreakpointBytes::HitThreadAt(5), 0xFFFFFFF0);
    Look();
    ASSERT_EQ(m_notes.size(), 2u);
    EXPECT_EQ(m_notes[1], "held 1 has ended");
    EXPECT_TRUE(raw.Table().IsFree(5));
    EXPECT_EQ(m_held.Held(), "no thread is held\n");
}

TEST_F(LogViewHolding, ABreakpointThatGetsNoIdEndsTheProgram) {
    const CallSpy<&WindowsCalls::uuidCreate> none(
        [](UUID*) { return RPC_STATUS{RPC_S_UUID_NO_ADDRESS}; });
    ExpectFailure(ExitCode::SystemRefused, [this] { m_held.Add({kExecutable, L"x", 0, 0}); });
}

TEST_F(LogViewHolding, ItsTableIsTheDocumentedOne) {
    EXPECT_TRUE(Mirqos::Test::EventExists(Mirqos::Test::kHitEvent));
    EXPECT_TRUE(Mirqos::Test::MutexExists(Mirqos::Test::kTableMutex));
    EXPECT_TRUE(Mirqos::Test::MappingExists(Mirqos::Test::kGlobalTable));
}

TEST_F(LogViewObjectsTest, ATableLeftBehindIsClearedAndItsThreadsFreed) {
    Mirqos::Test::BreakpointBoard former;
    former.Table().Set(0, 1, u"LogView.Objects.exe", u"hold me");
    const HeldWriter writer(m_output, L"please hold me");
    ASSERT_TRUE(former.WaitForHit());
    // the hit is recorded and told; its thread is about to wait
    BreakpointTable table;
    EXPECT_TRUE(writer.WaitUntilDone());
    EXPECT_TRUE(former.Table().IsZero(0, Mirqos::Test::BreakpointBytes::kSize));
}

TEST_F(LogViewObjectsTest, AThreadThatDoesNotWaitYetIsFreedAllTheSame) {
    Mirqos::Test::BreakpointBoard former;
    former.Table().Set(0, 1, u"LogView.Objects.exe", u"hold me");
    const Mirqos::Test::Gate recorded;
    // the thread of the hit is about to make its event
    const CallSpy<&WindowsCalls::createEvent> createEvent(
        [&](SECURITY_ATTRIBUTES* pSecurity, BOOL bManual, BOOL bSignalled, LPCWSTR pszName) {
            if (std::wstring(pszName).find(L"BPHIT") != std::wstring::npos) {
                recorded.Pass();
            }
            return CreateEventW(pSecurity, bManual, bSignalled, pszName);
        });
    int nMissed = 0;
    const CallSpy<&WindowsCalls::openEvent> openEvent(
        [&](DWORD dwAccess, BOOL bInherit, LPCWSTR pszName) {
            const HANDLE hEvent = OpenEventW(dwAccess, bInherit, pszName);
            const bool bRelease = std::wstring(pszName).find(L"BPHIT") != std::wstring::npos;
            if (bRelease && hEvent == nullptr && ++nMissed == 2) {
                recorded.Open();
            }
            return hEvent;
        });
    const HeldWriter writer(m_output, L"please hold me");
    ASSERT_TRUE(recorded.WaitUntilReached());
    const BreakpointTable table;
    EXPECT_GE(nMissed, 2);
    EXPECT_TRUE(writer.WaitUntilDone());
}

TEST_F(LogViewObjectsTest, EndOfTheTableFreesWhomItHolds) {
    auto held = std::make_unique<HeldThreads>([](const std::string&) {});
    held->Add({kExecutable, L"hold me", 0, 0});
    const HeldWriter writer(m_output, L"please hold me");
    ASSERT_EQ(WaitForSingleObject(held->HitEvent(), 30000), WAIT_OBJECT_0);
    held.reset();
    EXPECT_TRUE(writer.WaitUntilDone());
}

TEST_F(LogViewObjectsTest, EndOfTheTableIsQuietWithoutMemory) {
    auto table = std::make_unique<BreakpointTable>();
    Mirqos::Test::BreakpointBoard raw;
    raw.Table().SetNumber(Mirqos::Test::BreakpointBytes::HitAt(5), 1);
    const Mirqos::Test::FailingAllocation full(sizeof(LOGUTILS::LogHit));  // of a list of hits
    table.reset();
    EXPECT_FALSE(raw.Table().IsFree(5));
}

TEST_F(LogViewObjectsTest, ATableThatSomebodyHoldsEndsTheProgram) {
    const BreakpointTable table;
    const CallSpy<&WindowsCalls::waitForSingleObject> busy([](HANDLE, DWORD dwLimit) {
        EXPECT_EQ(dwLimit, 5000u);
        return DWORD{WAIT_TIMEOUT};
    });
    ExpectFailure(ExitCode::SystemRefused, [&] { table.Hold([](auto&) {}); });
}

}  // namespace
}  // namespace Mirqos::LogView
