// What a line in the live channel costs, beside the floor: the calls to Windows that no
// implementation can do without (LogChannelFloor). Without a viewer, and with one that takes every
// line and has breakpoints ready, none of them set. The viewer is a process of its own that reads
// as fast as it can; how far it fell behind is told, because who writes to a ring does not wait.
//
// Expected: a ratio of 1.2 or below in every row.

#include <windows.h>

#include <shellapi.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "bench/Comparison.h"
#include "bench/LogChannelFloor.h"
#include "log/dbg/LogRing.h"
#include "log/dbg/win32/CLogShareMemory.h"
#include "log/dbg/win32/CSMOutput.h"
#include "platform/undo_windows_macros.h"
#include "tests/process/ChildProcess.h"
#include "tests/support/win32/ViewerSide.h"

namespace {

using Mirqos::Bench::LogChannelFloor;
using Mirqos::Bench::Now;
using Mirqos::Test::SharedSignal;
using Mirqos::Test::UniqueName;
using NSDBG::CSMOutput;

constexpr int kLines = 2000;  // more than the ring holds
constexpr int kLevel = 1;
constexpr wchar_t kChannel[] = L"bench.exe";
constexpr wchar_t kSource[] = L"MIRQOS.dll";
constexpr char kMessage[] = "AwsS3Store::WriteObject bucket [backups] key [2024/report]";

/// In microseconds for each of `kLines`.
template <typename WriteLine>
double CostOf(WriteLine writeLine) {
    writeLine();  // opens what stays open
    const double begin = Now();
    for (int n = 0; n < kLines; ++n) {
        writeLine();
    }
    return (Now() - begin) / kLines;
}

double CostInLog() {
    CSMOutput output(kChannel, kSource);
    return CostOf([&output] { output.Write(kLevel, 0, kMessage); });
}

double MeasureWithoutViewer(bool bFloor) {
    return bFloor ? CostOf(&LogChannelFloor::LookForViewer) : CostInLog();
}

/// Reads all the lines of one run. Returns the most that it found new at one time, which is how far
/// it was behind; 0 when lines did not come.
std::size_t View(const SharedSignal& ready) {
    const Mirqos::Test::AnnouncedViewer viewer;
    const Mirqos::Test::ListenedChannel listened(kChannel);
    const Mirqos::Test::BreakpointBoard board;
    ready.Set();
    NSDBG::CLogShareMemory reader(kChannel);
    NSDBG::LogMessages messages;
    std::size_t nMost = 0;
    for (std::size_t nSeen = 0; nSeen < kLines + 1; nSeen += messages.size()) {
        if (!listened.WaitForRecord()) {
            return 0;
        }
        if (!reader.IsOpen()) {
            reader.Open();  // the first line made the ring
        }
        if (reader.Read(messages) == 0) {
            return 0;
        }
        nMost = std::max(nMost, messages.size());
    }
    return nMost;
}

/// `nBehind` grows to the most lines that the viewer was behind.
double MeasureWithViewer(bool bFloor, std::size_t& nBehind) {
    const SharedSignal ready(UniqueName(L"ready"));
    const Mirqos::Test::ChildProcess viewer(L"bench.log_channel", {ready.Name()});
    if (!ready.Wait()) {
        throw std::runtime_error("the viewer did not start");
    }
    double cost = 0;
    if (bFloor) {
        const LogChannelFloor floor(kChannel);
        cost = CostOf([&floor] { floor.WriteLine(); });
    } else {
        cost = CostInLog();
    }
    const std::size_t nBehindNow = viewer.ExitCode();
    if (nBehindNow == 0 || nBehindNow > kLines + 1) {
        throw std::runtime_error("the viewer did not get every line");
    }
    nBehind = std::max(nBehind, nBehindNow);
    return cost;
}

}  // namespace

int main() try {
    int nArguments = 0;
    wchar_t** const ppszArguments = CommandLineToArgvW(GetCommandLineW(), &nArguments);
    if (nArguments == 2) {
        return static_cast<int>(View(SharedSignal(ppszArguments[1])));
    }
    Mirqos::Bench::PrintHeading("cost of a line in the live channel", "log");
    Mirqos::Bench::PrintRow("no viewer", &MeasureWithoutViewer);
    std::size_t nBehind = 0;
    Mirqos::Bench::PrintRow("a viewer that keeps up",
                            [&nBehind](bool bFloor) { return MeasureWithViewer(bFloor, nBehind); });
    std::printf("the viewer was at most %d lines behind: %s\n", static_cast<int>(nBehind),
                nBehind <= LOGUTILS::kRingRecords ? "it lost none" : "it was LAPPED and lost some");
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return -1;  // not a number of lines
}
