#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "log/dbg/LogConfigBlock.h"
#include "log/dbg/LogText.h"
#include "tests/process/ChildProcess.h"
#include "tests/support/RandomDamage.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/FileOutputTest.h"
#include "tests/support/win32/RawBlock.h"

namespace Mirqos::Test {
namespace {

using LOGUTILS::WindowsCalls;
using NSDBG::CFileOutput;
using Lines = std::vector<std::wstring>;

constexpr wchar_t kWriter[] = L"process.log_writer";
constexpr wchar_t kWriterTag[] = L"   {process.log_writer.exe::process.log_writer.exe(0.0)}";

/// Several processes, each with a configuration block of its own, on one log file.
class ProcessLog : public FileOutputTest {
protected:
    struct Work {
        int nProcesses;
        int nThreads;
        int nLines;  ///< of each thread
    };

    // Starts the writers; they write once Go() was called.
    void Start(const Work& work) {
        m_work = work;
        const std::wstring go = UniqueName(L"go");
        m_pGo = std::make_unique<SharedSignal>(go);
        std::vector<SharedSignal> ready;
        for (int nProcess = 0; nProcess < work.nProcesses; ++nProcess) {
            const std::wstring name = UniqueName(L"ready");
            ready.emplace_back(name);
            m_writers.emplace_back(
                kWriter, Lines{m_path, std::to_wstring(nProcess), name, go,
                               std::to_wstring(work.nThreads), std::to_wstring(work.nLines)});
        }
        for (const SharedSignal& signal : ready) {
            ASSERT_TRUE(signal.Wait());
        }
    }
    void Go() const { m_pGo->Set(); }
    bool AreRunning() const {
        return std::any_of(m_writers.begin(), m_writers.end(),
                           [](const ChildProcess& writer) { return writer.IsRunning(); });
    }
    void AwaitEnd() const {
        for (const ChildProcess& writer : m_writers) {
            EXPECT_EQ(writer.ExitCode(), 0u);
        }
    }

    // The numbers of process, thread and line, of a line that is whole.
    static std::optional<std::array<int, 3>> NumbersOf(const std::wstring& line) {
        static const std::wregex form(
            L"\\[\\d{4}/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d:\\d{3}   01   \\d{5}   \\d{5} {13}\\] "
            L"<(\\d+):(\\d+):(\\d+)>(.*)");
        std::wsmatch match;
        if (!std::regex_match(line, match, form) || match[4] != kWriterTag) {
            return std::nullopt;
        }
        return std::array<int, 3>{std::stoi(match[1]), std::stoi(match[2]), std::stoi(match[3])};
    }

    // Every line that was written stands in `lines`, whole and once, those of a thread in order.
    // The processes before `nFirst` may have lost some.
    void ExpectAllOf(const Lines& lines, int nFirst = 0) const {
        std::vector<std::vector<int>> next(
            static_cast<std::size_t>(m_work.nProcesses),
            std::vector<int>(static_cast<std::size_t>(m_work.nThreads)));
        for (const std::wstring& line : lines) {
            const auto numbers = NumbersOf(line);
            ASSERT_TRUE(numbers) << std::string(line.begin(), line.end());
            const auto [nProcess, nThread, nLine] = *numbers;
            int& nNext =
                next.at(static_cast<std::size_t>(nProcess)).at(static_cast<std::size_t>(nThread));
            ASSERT_TRUE(nProcess < nFirst || nLine == nNext) << "lost, twice or out of order";
            ++nNext;
        }
        next.erase(next.begin(), next.begin() + nFirst);
        for (const std::vector<int>& ofThreads : next) {
            for (const int nNext : ofThreads) {
                EXPECT_EQ(nNext, m_work.nLines) << "the last lines are missing";
            }
        }
    }

    std::vector<ChildProcess> m_writers;

private:
    Work m_work = {};
    std::unique_ptr<SharedSignal> m_pGo;
};

Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST_F(ProcessLog, EightProcessesOfFourThreadsLoseTearAndMixNoLine) {
    Start({8, 4, 50000 / 32 + 1});
    Go();
    AwaitEnd();
    EXPECT_EQ(CountContaining(LinesOf(m_path), L"SUMMARY LOG"), 1u);
    ExpectAllOf(MessagesOf(m_path));
    EXPECT_EQ(m_folder.Names(), Lines{L"a.dll.Log"});
}

TEST_F(ProcessLog, ARotationInTheMiddleLosesNothing) {
    const std::uint64_t nBegin = kFull - 0x80000;
    WriteSparse(m_path, nBegin, std::string(LOGUTILS::kByteOrderMark));
    Start({8, 4, 200});
    Go();
    AwaitEnd();
    const Lines before = LinesIn(TextOfUtf16(BytesOf(m_path, nBegin)));
    const std::wstring successor = PathOf(L"a.dll.00000001.log");
    EXPECT_EQ(CountContaining(LinesOf(successor), L"SUMMARY LOG"), 1u);
    ExpectAllOf(before + MessagesOf(successor));
    EXPECT_GE(FileSizeOf(m_path), kFull);
    EXPECT_EQ(m_folder.Names(), (Lines{L"a.dll.00000001.log", L"a.dll.Log"}));
}

TEST_F(ProcessLog, RandomDamageToALiveConfigurationTearsNoLineAndLosesNoneOfAnotherProcess) {
    Start({2, 2, 1000});
    const std::string name = LOGUTILS::kBlockName + std::to_string(m_writers.front().Id());
    const RawBlock block(L"Global\\" + std::wstring(name.begin(), name.end()));
    ASSERT_TRUE(block);
    LogBlockBytes fields = block.Fields();
    // Lines of a module that is not found any more stay in the folder, too.
    fields.SetText(LogBlockBytes::kGlobalPathAt, LogBlockBytes::kPathUnits,
                   std::u16string(m_path.begin(), m_path.end()));
    const std::string before = block.Copy();
    const std::size_t nFolder = 2 * (m_path.find_last_of(L'\\') + 1);
    RandomDamage damage(1);
    Go();
    while (m_writers.front().IsRunning()) {
        for (int nBlow = 0; nBlow < 64; ++nBlow) {
            const std::size_t nEnd =
                nBlow % 2 == 0 ? LogBlockBytes::NameAt(4) : LogBlockBytes::kSize;
            const std::size_t nPlace = damage.Below(nEnd - 3);
            const std::size_t nInEntry = (nPlace + 1160 - LogBlockBytes::NameAt(0) % 1160) % 1160;
            const bool bGlobalPath = nPlace + 3 >= LogBlockBytes::kGlobalPathAt &&
                                     nPlace < LogBlockBytes::kGlobalLevelAt;
            const bool bPath = bGlobalPath || (nInEntry + 3 >= 128 && nInEntry < 1152);
            if (!bPath) {
                fields.SetNumber(nPlace, damage.Number());
            }
        }
        // Another name in the same folder.
        for (const std::size_t nPath : {LogBlockBytes::kGlobalPathAt, LogBlockBytes::PathAt(0)}) {
            fields.SetNumber(nPath + nFolder,
                             0x00410041 + static_cast<std::uint32_t>(damage.Below(8)));
        }
        if (damage.Below(4) == 0) {
            std::copy(before.begin(), before.end(), block.Data());
        }
    }
    AwaitEnd();
    ExpectAllOf(MessagesOf(m_path), 1);
    for (const std::wstring& other : m_folder.Names()) {
        for (const std::wstring& line : MessagesOf(PathOf(other))) {
            EXPECT_TRUE(NumbersOf(line)) << std::string(line.begin(), line.end());
        }
    }
}

TEST_F(ProcessLog, PathsAndLevelsThatChangeWhileAllWriteLoseNothing) {
    Start({4, 2, 500});
    const Lines paths = {m_path, PathOf(L"b.Log"), PathOf(L"new\\c.Log")};
    std::vector<OutsideConfig> configs;
    for (const ChildProcess& writer : m_writers) {
        configs.emplace_back(writer.Id());
    }
    Go();
    for (std::size_t n = 0; AreRunning(); ++n) {
        for (const OutsideConfig& config : configs) {
            if (!config.IsOpen()) {
                continue;
            }
            config.Edit([&](LOGUTILS::LogConfigBlock& block) {
                LOGUTILS::LogModuleEntry& entry = block.m_modules[0];
                LOGUTILS::PutText(entry.m_szPath, paths[n % paths.size()]);
                entry.m_nLevel = 1 + static_cast<int>(n % 3);
                // now and then all modules share a path
                LOGUTILS::PutText(block.m_szGlobalPath, n % 4 == 0
                                                            ? LOGUTILS::WideView(paths[n % 2])
                                                            : LOGUTILS::WideView());
            });
        }
    }
    AwaitEnd();
    // A thread's lines are spread over the files: in order in each, but not one after the other.
    Lines all;
    for (const std::wstring& path : paths) {
        if (Exists(path)) {
            EXPECT_EQ(CountContaining(LinesOf(path), L"SUMMARY LOG"), 1u);
            all = all + MessagesOf(path);
        }
    }
    std::stable_sort(all.begin(), all.end(), [](const std::wstring& left, const auto& right) {
        const auto number = [](const std::wstring& line) {
            const std::size_t nLast = line.rfind(L':', line.find(L'>'));
            return std::stoi(line.substr(nLast + 1));
        };
        return number(left) < number(right);
    });
    ExpectAllOf(all);
}

/// A process that is killed while it writes a line.
class KilledWriter : public ProcessLog {
protected:
    static constexpr std::size_t kWaiting = 2;
    static constexpr std::size_t kFileWait = 3;  // of a line's waits, the one for the file

    // Starts a writer that stops within its line before the write of part `nPart`.
    ChildProcess StoppedWriter(int nPart) const {
        const std::wstring ready = UniqueName(L"ready");
        const std::wstring stopped = UniqueName(L"stopped");
        const SharedSignal signal(stopped);
        ChildProcess writer(kWriter,
                            {m_path, L"0", ready, stopped, L"1", L"1", std::to_wstring(nPart)});
        EXPECT_TRUE(signal.Wait());
        return writer;
    }
};

class KilledWriterAtPart : public KilledWriter, public testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(EveryPart, KilledWriterAtPart, testing::Values(1, 2, 3, 4));

TEST_P(KilledWriterAtPart, CostsItsOwnLineAndOneOfThoseWhoWait) {
    CFileOutput first;
    first.Write(1, 0, "before");
    const ChildProcess killed = StoppedWriter(GetParam());
    {
        // Two waits for the file begin before the kill, and do not time out on a busy machine.
        std::atomic<std::size_t> nWaiting{0};
        const SharedSignal allWait(UniqueName(L"waiting"));
        const CallSpy<&WindowsCalls::waitForSingleObject> wait([&](HANDLE hObject, DWORD dwWait) {
            thread_local std::size_t nWaits = 0;
            if (++nWaits == kFileWait && ++nWaiting == kWaiting) {
                allWait.Set();
            }
            return wait.Real(hObject, nWaits == kFileWait ? INFINITE : dwWait);
        });
        std::array<CFileOutput, kWaiting> outputs;
        std::vector<std::thread> threads;
        for (CFileOutput& output : outputs) {
            threads.emplace_back([&] {
                output.Write(1, 0, "waiting");
                output.Write(1, 0, "next");
            });
        }
        EXPECT_TRUE(allWait.Wait());
        killed.Kill();
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    first.Write(1, 0, "after");

    EXPECT_EQ(m_trace.CountContaining(L"Failed to wait mutex for file[" + m_path + L"]\r\n"), 1u);
    // What the killed process had written of its line stands before the first line after it.
    Lines lines = MessagesOf(m_path);
    const std::size_t nLines = lines.size();
    ASSERT_EQ(nLines, 1 + (kWaiting - 1) + kWaiting + 1);
    EXPECT_EQ(lines.at(1).find(L'[', 1) != std::wstring::npos, GetParam() > 1);
    EXPECT_EQ(lines.at(1).find(L"<0:0:0>") != std::wstring::npos, GetParam() > 2);
    for (const std::wstring& line : lines) {
        EXPECT_EQ(line.rfind(UnversionedTag()), line.size() - UnversionedTag().size());
    }
    EXPECT_EQ(CountContaining(lines, L"] waiting   {"), kWaiting - 1);
    EXPECT_EQ(CountContaining(lines, L"] next   {"), kWaiting);
    EXPECT_NE(lines.back().find(L"] after   {"), std::wstring::npos);
}

TEST_P(KilledWriterAtPart, CostsAProcessThatComesLaterNothing) {
    StoppedWriter(GetParam()).Kill();
    CFileOutput().Write(1, 0, "after");
    EXPECT_EQ(m_trace.Texts(), Lines());
    const std::wstring text = TextOfUtf16(BytesOf(m_path));
    EXPECT_NE(text.find(L"] after   {"), std::wstring::npos);
}

}  // namespace
}  // namespace Mirqos::Test
