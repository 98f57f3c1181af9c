// Several processes at a live channel and its breakpoints, some of which end where they stand.
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "log/dbg/win32/CSMOutput.h"
#include "tests/process/ChildProcess.h"
#include "tests/support/RandomDamage.h"
#include "tests/support/win32/HeldWriter.h"
#include "tests/support/win32/ViewerSide.h"

namespace Mirqos::Test {
namespace {

using NSDBG::CLogShareMemory;
using NSDBG::CSMOutput;
using NSDBG::LogMessages;

constexpr wchar_t kWriter[] = L"process.channel_writer";
constexpr wchar_t kChannel[] = L"Process.Channel.exe";
constexpr std::size_t kProcesses = 8;

/// Looks again and again, half a minute at most: what another process does next tells nobody.
template <typename Condition>
bool Becomes(Condition condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

ChildProcess Start(const std::wstring& mode, const SharedSignal& ready,
                   const std::vector<std::wstring>& more = {}) {
    std::vector<std::wstring> arguments = {mode, kChannel, ready.Name()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return {kWriter, arguments};
}

/// A viewer that checks what it reads: each line is whole, and a process's lines come in order.
class CheckingViewer {
public:
    void ReadUntilEachWrote(std::size_t nLines) {
        ASSERT_TRUE(m_channel.WaitForRecord());
        m_reader.Open();
        LogMessages messages;
        while (!HasFromEach(nLines)) {
            ASSERT_TRUE(m_channel.WaitForRecord());
            ASSERT_EQ(m_reader.Read(messages), 1);
            // before the newest 1,024 stand lost ones
            const std::size_t nLost = messages.size() > 1024 ? messages.size() - 1024 : 0;
            for (std::size_t n = nLost; n < messages.size(); ++n) {
                Check(*messages[n]);
            }
        }
    }

private:
    void Check(const NSDBG::CLogMessage& message) {
        EXPECT_STREQ(message.GetChannel(), kChannel);
        EXPECT_STREQ(message.GetSource(), L"channel_writer");
        EXPECT_EQ(message.GetLevel(), 1u);
        std::vector<int>& lines = m_lines[message.GetProcessId()];
        const int nLine = std::stoi(message.GetText());
        EXPECT_EQ(std::to_wstring(nLine), message.GetText());
        EXPECT_TRUE(lines.empty() || nLine > lines.back());
        lines.push_back(nLine);
    }

    bool HasFromEach(std::size_t nLines) const {
        std::size_t nDone = 0;
        for (const auto& [id, lines] : m_lines) {
            nDone += lines.size() >= nLines ? 1 : 0;
        }
        return nDone == kProcesses;
    }

    AnnouncedViewer m_viewer;
    ListenedChannel m_channel{kChannel};
    CLogShareMemory m_reader{kChannel};
    std::map<std::uint32_t, std::vector<int>> m_lines;
};

TEST(ProcessChannel, AViewerComesAndGoesAndComesWhileEightProcessesWrite) {
    const SharedSignal stop(UniqueName(L"stop"));
    std::vector<ChildProcess> writers;
    for (std::size_t n = 0; n < kProcesses; ++n) {
        const SharedSignal ready(UniqueName(L"ready"));
        writers.push_back(Start(L"write", ready, {stop.Name()}));
        ASSERT_TRUE(ready.Wait());
    }
    const ChannelObjects names(kChannel);
    EXPECT_FALSE(MappingExists(names.globalRing));
    for (int nTime = 0; nTime < 2; ++nTime) {
        CheckingViewer().ReadUntilEachWrote(50);
        // each process lets go with its next line
        EXPECT_TRUE(Becomes([&] { return !MappingExists(names.globalRing); }));
        EXPECT_TRUE(Becomes([&] { return !MutexExists(names.mutex); }));
    }
    stop.Set();
    for (const ChildProcess& writer : writers) {
        EXPECT_EQ(writer.ExitCode(), 0u);
    }
}

class ProcessChannelTest : public testing::Test {
protected:
    void ExpectThatLinesStillArrive() {
        const std::int64_t nBefore = m_channel.Ring().LastWritten();
        m_output.Write(1, 0, L"another line");
        EXPECT_EQ(m_channel.Ring().LastWritten(), nBefore + 1);
        CLogShareMemory reader(kChannel);
        reader.Open();
        LogMessages messages;
        ASSERT_EQ(reader.Read(messages), 1);
        ASSERT_FALSE(messages.empty());
        EXPECT_STREQ(messages.back()->GetText(), L"another line");
        EXPECT_TRUE(IsFree(m_channel.Names().mutex));
    }

    AnnouncedViewer m_viewer;
    ListenedChannel m_channel{kChannel};
    CSMOutput m_output{kChannel, L"test"};
};

TEST_F(ProcessChannelTest, AWriterKilledWhileItHoldsTheRingHoldsNobodyUp) {
    m_output.Write(1, 0, L"a line");
    const SharedSignal ready(UniqueName(L"ready"));
    const ChildProcess writer = Start(L"stop-appending", ready);
    ASSERT_TRUE(ready.Wait());
    EXPECT_FALSE(IsFree(m_channel.Names().mutex));
    writer.Kill();
    ExpectThatLinesStillArrive();
}

TEST_F(ProcessChannelTest, AReaderKilledWhileItHoldsTheRingHoldsNobodyUp) {
    m_output.Write(1, 0, L"a line");
    const SharedSignal ready(UniqueName(L"ready"));
    const ChildProcess reader = Start(L"stop-reading", ready);
    ASSERT_TRUE(ready.Wait());
    EXPECT_FALSE(IsFree(m_channel.Names().mutex));
    reader.Kill();
    ExpectThatLinesStillArrive();
}

TEST_F(ProcessChannelTest, AWriterKilledWhileItHoldsTheTableHoldsNobodyUp) {
    BreakpointBoard board;
    board.Table().Set(0, 1, u"Process.Channel.exe", u"hold me");
    m_output.Write(1, 0, L"a line");
    const SharedSignal ready(UniqueName(L"ready"));
    const ChildProcess writer = Start(L"stop-testing", ready);
    ASSERT_TRUE(ready.Wait());
    EXPECT_FALSE(IsFree(kTableMutex));
    writer.Kill();
    ExpectThatLinesStillArrive();
    EXPECT_TRUE(IsFree(kTableMutex));
    const HeldWriter held(m_output, L"please hold me");
    EXPECT_TRUE(board.WaitForHit());
    EXPECT_TRUE(board.Release(0));
    EXPECT_TRUE(held.WaitUntilDone());
}

/// Reads lines until one of the writer's is whole; what was damaged comes between.
bool ReadsAWholeLine(const ListenedChannel& channel, CLogShareMemory& reader) {
    return Becomes([&] {
        LogMessages messages;
        EXPECT_TRUE(channel.WaitForRecord());
        reader.Read(messages);
        return !messages.empty() &&
               messages.back()->GetSource() == std::wstring(L"channel_writer") &&
               std::wstring(messages.back()->GetText()).find_first_not_of(L"0123456789") ==
                   std::wstring::npos;
    });
}

TEST(ProcessChannel, RandomDamageToRingAndBreakpointsEndsNoWriterAndHoldsNoneForEver) {
    const SharedSignal ready(UniqueName(L"ready"));
    const SharedSignal stop(UniqueName(L"stop"));
    const ChildProcess writer = Start(L"write", ready, {stop.Name()});
    ASSERT_TRUE(ready.Wait());
    RandomDamage damage(1);
    for (int nViewer = 0; nViewer < 8; ++nViewer) {
        const AnnouncedViewer viewer;
        ListenedChannel channel(kChannel);
        BreakpointBoard board;
        BreakpointBytes table = board.Table();
        table.Set(0, 1, u"Process.Channel.exe", u"77");
        ASSERT_TRUE(channel.WaitForRecord());
        CLogShareMemory reader(kChannel);
        reader.Open();
        RingBytes ring = channel.Ring();
        for (int nBlow = 0; nBlow < 500; ++nBlow) {
            // the records are large: more often what tells of them
            damage.Strike(ring, nBlow % 2 == 0 ? RingBytes::RecordAt(0) : RingBytes::kSize);
            damage.Strike(table,
                          nBlow % 2 == 0 ? BreakpointBytes::IdAt(2) : BreakpointBytes::kSize);
            if (nBlow % 16 == 0) {
                LogMessages messages;
                reader.Read(messages);
            }
            if (board.IsHit()) {
                board.Release(0);
            }
            ASSERT_TRUE(writer.IsRunning());
        }
        // With the counters mended and no breakpoints left, lines arrive again.
        table.SetNumber(BreakpointBytes::kCountAt, 0);
        ring.SetLongNumber(RingBytes::kLastReadAt, -1);
        ring.SetLongNumber(RingBytes::kLastWrittenAt, -1);
        for (std::size_t nHit = 0; nHit < BreakpointBytes::kHits; ++nHit) {
            if (!table.IsFree(nHit)) {
                board.Release(nHit);
            }
        }
        if (nViewer % 2 == 0) {
            EXPECT_TRUE(ReadsAWholeLine(channel, reader));
        }
    }
    stop.Set();
    EXPECT_EQ(writer.ExitCode(), 0u);
}

TEST(ProcessChannel, AKilledViewerFreesWhomItHolds) {
    const SharedSignal ready(UniqueName(L"ready"));
    const SharedSignal held(UniqueName(L"held"));
    const ChildProcess viewer = Start(L"view", ready, {held.Name()});
    ASSERT_TRUE(ready.Wait());
    CSMOutput output(kChannel, L"test");
    const HeldWriter writer(output, L"please hold me");
    ASSERT_TRUE(held.Wait());
    EXPECT_FALSE(writer.IsDone());
    viewer.Kill();
    EXPECT_TRUE(writer.WaitUntilDone());
    output.Write(1, 0, L"please hold me");  // nobody is there any more
}

}  // namespace
}  // namespace Mirqos::Test
