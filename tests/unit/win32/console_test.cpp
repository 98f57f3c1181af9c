#include "tools/mirqos/Console.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/win32/Pipe.h"
#include "tests/support/win32/StandardHandle.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::Tool {
namespace {

using Test::Pipe;
using Test::StandardHandle;

TEST(Console, AnAnswerReachesItsReader) {
    const Pipe pipe;
    const StandardHandle output(STD_OUTPUT_HANDLE, pipe.Writer());
    EXPECT_TRUE(WriteOutput("caf\xC3\xA9\n"));
    std::string text(6, '\0');
    DWORD count = 0;
    EXPECT_NE(::ReadFile(pipe.Reader(), text.data(), 6, &count, nullptr), FALSE);
    EXPECT_EQ(text, "caf\xC3\xA9\n");
}

TEST(Console, AReaderThatHasGoneIsToldAndNoFailure) {
    Pipe pipe;
    const StandardHandle output(STD_OUTPUT_HANDLE, pipe.Writer());
    pipe.CloseReader();
    EXPECT_FALSE(WriteOutput("text"));
}

TEST(Console, AProgramMayHaveNoOutput) {
    Pipe closed;
    const HANDLE stale = closed.Writer();
    closed.CloseWriter();
    for (const HANDLE none : {HANDLE{nullptr}, INVALID_HANDLE_VALUE, stale}) {
        const StandardHandle output(STD_OUTPUT_HANDLE, none);
        EXPECT_FALSE(WriteOutput("text"));
    }
}

TEST(Console, AnAnswerThatCannotBeWrittenIsAFailure) {
    const Pipe pipe;
    const StandardHandle output(STD_OUTPUT_HANDLE, pipe.Reader());
    EXPECT_THROW(WriteOutput("text"), Failure);
}

TEST(Console, PipedInputComesAsItIs) {
    Pipe pipe;
    const StandardHandle input(STD_INPUT_HANDLE, pipe.Reader());
    pipe.Write("a\x1A\xFF\n");
    pipe.CloseWriter();
    std::string text(8, '\0');
    const std::size_t count = ReadInput(text.data(), text.size()).value_or(0);
    EXPECT_EQ(text.substr(0, count), "a\x1A\xFF\n");
    EXPECT_EQ(ReadInput(text.data(), text.size()), 0u);
}

TEST(Console, TextIsTakenApartBetweenCharacters) {
    const std::wstring text =
        L"ab\xD83D\xDE00"
        L"c";
    EXPECT_EQ(UnitsOfWholeCharacters(text, 2), 2u);
    EXPECT_EQ(UnitsOfWholeCharacters(text, 3), 2u);
    EXPECT_EQ(UnitsOfWholeCharacters(text, 4), 4u);
    EXPECT_EQ(UnitsOfWholeCharacters(text, 5), 5u);
    EXPECT_EQ(UnitsOfWholeCharacters(text, 9), 5u);
    EXPECT_EQ(UnitsOfWholeCharacters(L"", 2), 0u);
}

}  // namespace
}  // namespace Mirqos::Tool
