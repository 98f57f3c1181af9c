// A process at a live channel, for tests of several such processes.
//
//     channel_writer write CHANNEL READY STOP     writes lines "1", "2", ... until STOP is set
//     channel_writer stop-appending CHANNEL READY holds the channel's mutex, as a writer, for ever
//     channel_writer stop-reading CHANNEL READY   holds it as a reader
//     channel_writer stop-testing CHANNEL READY   holds the breakpoint table's mutex
//     channel_writer view CHANNEL READY HELD      is a viewer with a breakpoint on "hold me"
//
// READY is set once it writes, holds or views; HELD when a thread is held at the breakpoint.

#include <windows.h>

#include <shellapi.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "log/dbg/LogBreakpoints.h"
#include "log/dbg/LogRing.h"
#include "log/dbg/win32/CSMOutput.h"
#include "tests/process/ChildProcess.h"
#include "tests/support/Watchdog.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/ViewerSide.h"

namespace {

using LOGUTILS::WindowsCalls;
using Mirqos::Test::CallSpy;
using Mirqos::Test::SharedSignal;
using NSDBG::CSMOutput;

int WriteUntil(const std::wstring& channel, const SharedSignal& ready, const SharedSignal& stop) {
    CSMOutput output(channel, L"channel_writer");
    for (int nLine = 1; !stop.IsSet(); ++nLine) {
        output.Write(1, 0, std::to_wstring(nLine).c_str());
        ready.Set();
    }
    return 0;
}

/// Stops for ever, with whatever mutex is held, before shared memory of this size is mapped.
class StopAtMapping {
public:
    StopAtMapping(const SharedSignal& stopped, SIZE_T nSize)
        : m_map([this, &stopped, nSize](HANDLE hMapping, DWORD dwAccess, DWORD dwHigh, DWORD dwLow,
                                        SIZE_T nMapped) -> void* {
              if (nMapped == nSize) {
                  stopped.Set();
                  Sleep(INFINITE);
              }
              return m_map.Real(hMapping, dwAccess, dwHigh, dwLow, nMapped);
          }) {}

private:
    CallSpy<&WindowsCalls::mapViewOfFile> m_map;
};

[[noreturn]] void StopWriting(const std::wstring& channel, const SharedSignal& ready,
                              SIZE_T nSize) {
    CSMOutput output(channel, L"channel_writer");
    output.Connect();
    const StopAtMapping stop(ready, nSize);
    output.Write(1, 0, L"not whole");
    std::abort();  // the line went through
}

[[noreturn]] void StopReading(const std::wstring& channel, const SharedSignal& ready) {
    NSDBG::CLogShareMemory reader(channel);
    reader.Open();
    const StopAtMapping stop(ready, sizeof(LOGUTILS::LogRing));
    NSDBG::LogMessages messages;
    reader.Read(messages);
    std::abort();
}

[[noreturn]] void View(const std::wstring& channel, const SharedSignal& ready,
                       const SharedSignal& held) {
    const Mirqos::Test::AnnouncedViewer viewer;
    const Mirqos::Test::ListenedChannel listened(channel);
    Mirqos::Test::BreakpointBoard board;
    board.Table().Set(0, 1, std::u16string(channel.begin(), channel.end()), u"hold me");
    ready.Set();
    if (!board.WaitForHit()) {
        std::abort();
    }
    held.Set();
    for (;;) {
        Sleep(INFINITE);
    }
}

}  // namespace

int main() {
    const Mirqos::Test::Watchdog watchdog(std::chrono::seconds(200), {});
    int nArguments = 0;
    wchar_t** const ppszArguments = CommandLineToArgvW(GetCommandLineW(), &nArguments);
    if (nArguments < 4) {
        return 2;
    }
    const std::wstring mode = ppszArguments[1];
    const std::wstring channel = ppszArguments[2];
    const SharedSignal ready(ppszArguments[3]);
    if (mode == L"stop-appending") {
        StopWriting(channel, ready, sizeof(LOGUTILS::LogRing));
    }
    if (mode == L"stop-testing") {
        StopWriting(channel, ready, sizeof(LOGUTILS::LogBreakpointTable));
    }
    if (mode == L"stop-reading") {
        StopReading(channel, ready);
    }
    if (nArguments < 5) {
        return 2;
    }
    const SharedSignal second(ppszArguments[4]);
    if (mode == L"view") {
        View(channel, ready, second);
    }
    return WriteUntil(channel, ready, second);
}
