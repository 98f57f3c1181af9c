// What a line in a log file costs, beside the floor: the calls to Windows that no implementation
// can do without (LogLineFloor). One writer; one writer that writes lines above its level; eight
// processes on one file, for which the time until the last has finished counts.
//
// Expected: a ratio of 1.2 or below in every row, and no call at all for a line above the module's
// threshold.

#include <windows.h>

#include <shellapi.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "bench/Comparison.h"
#include "bench/LogLineFloor.h"
#include "log/CMIRQOSLog.h"
#include "log/ModuleLog.h"
#include "log/dbg/win32/CFileOutput.h"
#include "log/dbg/win32/CLogConfig.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "platform/undo_windows_macros.h"
#include "tests/process/ChildProcess.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/LogFolder.h"

namespace {

using LOGUTILS::WindowsCalls;
using Mirqos::Bench::LogLineFloor;
using Mirqos::Bench::Now;
using Mirqos::Bench::PrintRow;
using Mirqos::Test::CallSpy;
using Mirqos::Test::ChildProcess;
using Mirqos::Test::LogFolder;
using Mirqos::Test::SharedSignal;
using Mirqos::Test::UniqueName;
using NSDBG::CFileOutput;

constexpr int kLines = 1000;
constexpr int kProcesses = 8;
constexpr int kLinesOfAProcess = 300;
constexpr int kWrittenLevel = 1;
constexpr int kDroppedLevel = 3;
constexpr wchar_t kProgram[] = L"bench.log_line";
constexpr char kMessage[] = "AwsS3Store::WriteObject bucket [backups] key [2024/report]";

/// One of the two that are compared, ready to write its next line.
class Writer {
public:
    Writer(bool bFloor, const std::wstring& path) {
        if (bFloor) {
            m_pFloor = std::make_unique<LogLineFloor>(path);
            return;
        }
        m_pLog = std::make_unique<CFileOutput>();
        NSDBG::CLogConfig::Instance().SetLogPath(LOGUTILS::LibraryName(), path);
    }

    void WriteLine(int nLevel) const {
        if (m_pLog != nullptr) {
            m_pLog->Write(nLevel, 0, kMessage);
        } else if (nLevel == kWrittenLevel) {
            m_pFloor->WriteLine();
        } else {
            m_pFloor->QueryLevel();
        }
    }

private:
    std::unique_ptr<LogLineFloor> m_pFloor;
    std::unique_ptr<CFileOutput> m_pLog;
};

// The cost of a line in microseconds.
double MeasureOneWriter(bool bFloor, int nLevel) {
    const LogFolder folder;
    const Writer writer(bFloor, folder.PathOf(L"bench.Log"));
    writer.WriteLine(nLevel);  // opens the file
    const double begin = Now();
    for (int n = 0; n < kLines; ++n) {
        writer.WriteLine(nLevel);
    }
    return (Now() - begin) / kLines;
}

double MeasureProcesses(bool bFloor) {
    const LogFolder folder;
    const std::wstring goName = UniqueName(L"go");
    const SharedSignal go(goName);
    std::vector<SharedSignal> ready;
    std::vector<SharedSignal> done;
    std::vector<ChildProcess> writers;
    for (int n = 0; n < kProcesses; ++n) {
        const std::wstring readyName = UniqueName(L"ready");
        const std::wstring doneName = UniqueName(L"done");
        ready.emplace_back(readyName);
        done.emplace_back(doneName);
        writers.emplace_back(kProgram, std::vector<std::wstring>{bFloor ? L"floor" : L"log",
                                                                 folder.PathOf(L"bench.Log"),
                                                                 readyName, goName, doneName});
    }
    const auto await = [](const SharedSignal& signal) { return signal.Wait(); };
    if (!std::all_of(ready.begin(), ready.end(), await)) {
        return 0;
    }
    const double begin = Now();
    go.Set();
    std::all_of(done.begin(), done.end(), await);
    const double end = Now();
    for (const ChildProcess& writer : writers) {
        writer.ExitCode();  // its folder can be removed after that
    }
    return (end - begin) / (kProcesses * kLinesOfAProcess);
}

int RunAsProcess(wchar_t** ppszArguments) {
    const Writer writer(ppszArguments[1] == std::wstring(L"floor"), ppszArguments[2]);
    const SharedSignal go(ppszArguments[4]);
    writer.WriteLine(kWrittenLevel);
    SharedSignal(ppszArguments[3]).Set();
    if (!go.Wait()) {
        return 1;
    }
    for (int n = 0; n < kLinesOfAProcess; ++n) {
        writer.WriteLine(kWrittenLevel);
    }
    SharedSignal(ppszArguments[5]).Set();
    return 0;
}

// A line above the module's threshold needs nothing of Windows: no floor, but a count of the calls
// with which every look at a level or a viewer begins.
void PrintAboveThreshold() {
    constexpr int kCalls = 1000000;
    const CallSpy<&WindowsCalls::waitForSingleObject> waits;
    const CallSpy<&WindowsCalls::openEvent> looks;
    const double begin = Now();
    for (int n = 0; n < kCalls; ++n) {
        ModuleLog(&g_ModuleLog, g_ModuleLog.m_nLevel + 1, "%s", kMessage);
    }
    std::printf("above the module's threshold: %.1f ns, %d calls to Windows\n",
                (Now() - begin) / kCalls * 1000, waits.Calls() + looks.Calls());
}

}  // namespace

int main() {
    int nArguments = 0;
    wchar_t** const ppszArguments = CommandLineToArgvW(GetCommandLineW(), &nArguments);
    if (nArguments == 6) {
        return RunAsProcess(ppszArguments);
    }
    Mirqos::Bench::PrintHeading("cost of a line in a log file", "log");
    PrintRow("one writer", [](bool bFloor) { return MeasureOneWriter(bFloor, kWrittenLevel); });
    PrintRow("one writer, above the level",
             [](bool bFloor) { return MeasureOneWriter(bFloor, kDroppedLevel); });
    PrintRow("eight processes, one file", &MeasureProcesses);
    PrintAboveThreshold();
    return 0;
}
