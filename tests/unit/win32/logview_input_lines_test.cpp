#include "tools/mirqos-logview/InputLines.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/win32/Pipe.h"
#include "tests/support/win32/StandardHandle.h"

namespace Mirqos::LogView {
namespace {

using Test::Pipe;
using Test::StandardHandle;

constexpr DWORD kLimit = 30000;  // ms

std::string TakeNext(const InputLines& input) {
    EXPECT_EQ(WaitForSingleObject(input.Event(), kLimit), DWORD{WAIT_OBJECT_0});
    return input.Next().value_or("no line");
}

TEST(LogViewInputLines, ItsEventStandsWhileThereAreLines) {
    Pipe pipe;
    const StandardHandle stream(STD_INPUT_HANDLE, pipe.Reader());
    const InputLines input;
    EXPECT_EQ(WaitForSingleObject(input.Event(), 0), DWORD{WAIT_TIMEOUT});
    EXPECT_FALSE(input.Next());
    pipe.Write("one\ntwo\nthree");
    EXPECT_EQ(TakeNext(input), "one");
    EXPECT_EQ(TakeNext(input), "two");
    EXPECT_EQ(WaitForSingleObject(input.Event(), 0), DWORD{WAIT_TIMEOUT});
    pipe.CloseWriter();
    EXPECT_EQ(TakeNext(input), "three");
}

TEST(LogViewInputLines, MoreLinesStayInTheStreamUntilSomeAreTaken) {
    constexpr int kLines = 700;  // fit into a pipe
    std::string lines;
    for (int n = 0; n < kLines; ++n) {
        lines += std::to_string(n) + "\n";
    }
    Pipe pipe;
    lines.pop_back();  // the last one then comes with the end, after which nobody reads on
    pipe.Write(lines);
    pipe.CloseWriter();
    const StandardHandle stream(STD_INPUT_HANDLE, pipe.Reader());
    const InputLines input;
    EXPECT_EQ(WaitForSingleObject(input.Event(), kLimit), DWORD{WAIT_OBJECT_0});
    DWORD before = 0;
    DWORD left = static_cast<DWORD>(lines.size());
    do {
        before = left;
        Sleep(100);
        left = pipe.Unread();
    } while (left != before);
    EXPECT_GT(left, 0u);
    for (int n = 0; n < kLines; ++n) {
        EXPECT_EQ(TakeNext(input), std::to_string(n));
    }
}

}  // namespace
}  // namespace Mirqos::LogView
