#include <gtest/gtest.h>

#include <string>

#include "tools/mirqos-logview/InputCommand.h"

namespace Mirqos::LogView {
namespace {

using Action = InputCommand::Action;

TEST(LogViewInput, CommandsWithoutOperandsAreRead) {
    EXPECT_EQ(ReadInputCommand("").action, Action::Nothing);
    EXPECT_EQ(ReadInputCommand("  \r").action, Action::Nothing);
    EXPECT_EQ(ReadInputCommand("list\r").action, Action::List);
    EXPECT_EQ(ReadInputCommand(" held ").action, Action::Held);
    EXPECT_EQ(ReadInputCommand("help").action, Action::Help);
    EXPECT_EQ(ReadInputCommand("quit").action, Action::Quit);
    EXPECT_EQ(ReadInputCommand("release all").action, Action::ReleaseAll);
}

TEST(LogViewInput, ABreakpointsTextGoesToTheEndOfTheLine) {
    const InputCommand command = ReadInputCommand("break  it failed  at process=4 \r");
    EXPECT_EQ(command.action, Action::Break);
    EXPECT_EQ(command.text, "it failed  at process=4");
    EXPECT_EQ(command.processId, 0u);
    EXPECT_EQ(command.threadId, 0u);
}

TEST(LogViewInput, ABreakpointIsNarrowedBeforeItsText) {
    const InputCommand command = ReadInputCommand("break process=12 thread=4294967295 text");
    EXPECT_EQ(command.action, Action::Break);
    EXPECT_EQ(command.processId, 12u);
    EXPECT_EQ(command.threadId, 4294967295u);
    EXPECT_EQ(command.text, "text");
    EXPECT_EQ(ReadInputCommand("break thread=5 process=6 t").processId, 6u);
}

TEST(LogViewInput, ABreakpointsTextHasAsManyCharactersAsItsRecord) {
    std::string longest;
    while (longest.size() < 3 * 1023) {
        longest += "\xE6\x97\xA5";  // one character
    }
    const std::string most = "break process=4294967295 thread=4294967295 ";
    EXPECT_EQ(ReadInputCommand(most + longest + '\r').text, longest);
    const InputCommand command = ReadInputCommand("break x" + longest);
    EXPECT_EQ(command.action, Action::Wrong);
    EXPECT_EQ(command.text, "the text of a breakpoint has at most 1023 characters");
}

TEST(LogViewInput, ALineThatIsTooLongIsRefusedWhateverItSays) {
    EXPECT_EQ(ReadInputCommand(std::string(4092, ' ') + "list").action, Action::List);
    const InputCommand command = ReadInputCommand(std::string(4093, ' ') + "list");
    EXPECT_EQ(command.action, Action::Wrong);
    EXPECT_EQ(command.text, "a line has at most 4096 bytes");
}

TEST(LogViewInput, NumbersAreRead) {
    const InputCommand remove = ReadInputCommand("remove 100");
    EXPECT_EQ(remove.action, Action::Remove);
    EXPECT_EQ(remove.number, 100u);
    const InputCommand release = ReadInputCommand("release 3 ");
    EXPECT_EQ(release.action, Action::Release);
    EXPECT_EQ(release.number, 3u);
}

TEST(LogViewInput, WhatCannotBeMeantIsExplained) {
    for (const char* const line :
         {"break", "break process=1", "break process=x text", "break thread=0 text", "remove",
          "remove x", "remove 1 2", "remove 0", "release", "release everything", "list all",
          "held 1", "quit now", "help me", "breaks text", "Quit"}) {
        const InputCommand command = ReadInputCommand(line);
        EXPECT_EQ(command.action, Action::Wrong) << line;
        EXPECT_FALSE(command.text.empty()) << line;
    }
    EXPECT_EQ(ReadInputCommand("\x1b[31m").text.find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace Mirqos::LogView
