// A process that writes log lines, for tests of several such processes.
//
//     log_writer PATH NAME READY GO THREADS LINES [STOP_AT]
//
// points its output to PATH, sets the signal READY, waits for the signal GO, and lets each of
// THREADS threads write LINES lines "<NAME:thread:line>". With STOP_AT a single line is written,
// and the thread stops for ever, the file's mutex held, before the STOP_AT-th of the line's writes
// (1 to 4); it then sets the signal GO itself. Ends with 0, or with 1 when GO was not set in time.

#include <windows.h>

#include <shellapi.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "log/dbg/win32/CFileOutput.h"
#include "log/dbg/win32/CLogConfig.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "tests/process/ChildProcess.h"
#include "tests/support/Watchdog.h"
#include "tests/support/win32/CallSpy.h"

namespace {

using LOGUTILS::WindowsCalls;
using Mirqos::Test::CallSpy;
using Mirqos::Test::SharedSignal;
using NSDBG::CFileOutput;

struct Order {
    std::string name;
    int nThreads;
    int nLines;
};

std::string Text(const Order& order, int nThread, int nLine) {
    return "<" + order.name + ":" + std::to_string(nThread) + ":" + std::to_string(nLine) + ">";
}

void WriteLines(CFileOutput& output, const Order& order) {
    std::vector<std::thread> threads;
    for (int nThread = 0; nThread < order.nThreads; ++nThread) {
        threads.emplace_back([&, nThread] {
            for (int nLine = 0; nLine < order.nLines; ++nLine) {
                const std::string text = Text(order, nThread, nLine);
                if (nLine % 2 == 0) {
                    output.Write(1, 0, text.c_str());
                } else {
                    output.Write(1, 0, std::wstring(text.begin(), text.end()).c_str());
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

[[noreturn]] void StopWithin(CFileOutput& output, const Order& order, int nPart,
                             const SharedSignal& stopped) {
    const CallSpy<&WindowsCalls::writeFile> write([&](HANDLE hFile, const void* pBytes,
                                                      DWORD dwSize, DWORD* pdwWritten,
                                                      OVERLAPPED* pOverlapped) {
        if (write.Calls() == nPart) {
            stopped.Set();
            Sleep(INFINITE);
        }
        return write.Real(hFile, pBytes, dwSize, pdwWritten, pOverlapped);
    });
    output.Write(1, 0, Text(order, 0, 0).c_str());
    std::abort();  // the line went through
}

std::string Narrow(const wchar_t* pszText) {
    const std::wstring text = pszText;
    return {text.begin(), text.end()};
}

}  // namespace

// The runtime of Windows hands a program's arguments out as wide text only on request.
int main() {
    const Mirqos::Test::Watchdog watchdog(std::chrono::seconds(200), {});
    int nArguments = 0;
    wchar_t** const ppszArguments = CommandLineToArgvW(GetCommandLineW(), &nArguments);
    if (nArguments < 7) {
        return 2;
    }
    const std::wstring path = ppszArguments[1];
    const Order order = {Narrow(ppszArguments[2]), std::stoi(ppszArguments[5]),
                         std::stoi(ppszArguments[6])};
    const SharedSignal ready(ppszArguments[3]);
    const SharedSignal go(ppszArguments[4]);
    CFileOutput output;
    NSDBG::CLogConfig::Instance().SetLogPath(LOGUTILS::LibraryName(), path);
    ready.Set();
    if (nArguments > 7) {
        StopWithin(output, order, std::stoi(ppszArguments[7]), go);
    }
    if (!go.Wait()) {
        return 1;
    }
    WriteLines(output, order);
    return 0;
}
