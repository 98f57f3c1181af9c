#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/mirqos-logview/Command.h"
#include "tools/mirqos-logview/Failure.h"

namespace Mirqos::LogView {
namespace {

using Words = std::vector<std::string>;

void ExpectRefused(const Words& words, const std::string& part) {
    try {
        ReadCommand(words);
        ADD_FAILURE() << words.back() << " was taken";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::Usage);
        EXPECT_NE(std::string(failure.what()).find(part), std::string::npos) << failure.what();
    }
}

TEST(LogViewCommand, NamesOfExecutablesAreAllThatIsNeeded) {
    const Command command = ReadCommand({"engine.exe", "Other.exe", "ENGINE.EXE"});
    EXPECT_EQ(command.action, Action::Watch);
    EXPECT_EQ(command.executables,
              (std::vector<LOGUTILS::WideString>{L"engine.exe", L"Other.exe"}));
    EXPECT_FALSE(command.filter.level);
    EXPECT_FALSE(command.filter.processId);
    EXPECT_FALSE(command.filter.threadId);
    EXPECT_TRUE(command.filter.text.empty());
    EXPECT_TRUE(command.file.empty());
    EXPECT_TRUE(command.breakText.empty());
    EXPECT_EQ(command.colours, Colours::Auto);
}

TEST(LogViewCommand, EveryOptionIsRead) {
    const Command command =
        ReadCommand({"--level=0", "--process", "4294967295", "--thread", "7", "--text",
                     "caf\xC3\xA9", "-o", "f.txt", "--color", "never", "--break", "stop here",
                     "--break-process", "8", "--break-thread", "9", "engine.exe"});
    EXPECT_EQ(command.filter.level, 0u);
    EXPECT_EQ(command.filter.processId, 4294967295u);
    EXPECT_EQ(command.filter.threadId, 7u);
    EXPECT_EQ(command.filter.text, L"caf\u00E9");
    EXPECT_EQ(command.file, "f.txt");
    EXPECT_EQ(command.colours, Colours::Never);
    EXPECT_EQ(command.breakText, "stop here");
    EXPECT_EQ(command.breakProcessId, 8u);
    EXPECT_EQ(command.breakThreadId, 9u);
    EXPECT_EQ(ReadCommand({"--color=always", "a"}).colours, Colours::Always);
}

TEST(LogViewCommand, HelpAndVersionNeedNothingElse) {
    EXPECT_EQ(ReadCommand({"-h"}).action, Action::Help);
    EXPECT_EQ(ReadCommand({"--version"}).action, Action::Version);
}

TEST(LogViewCommand, WhatCannotBeMeantIsRefused) {
    ExpectRefused({}, "no executable");
    ExpectRefused({""}, "file name");
    ExpectRefused({"C:\\engine.exe"}, "file name");
    ExpectRefused({"bin/engine.exe"}, "file name");
    ExpectRefused({std::string(191, 'e')}, "190");
    EXPECT_EQ(ReadCommand({std::string(190, 'e')}).executables.size(), 1u);
    ExpectRefused({"a", "--level", "-1"}, "--level");
    ExpectRefused({"a", "--level", "4294967296"}, "--level");
    ExpectRefused({"a", "--process", "0"}, "--process");
    ExpectRefused({"a", "--thread", "x"}, "--thread");
    ExpectRefused({"a", "--color", "blue"}, "--color");
    ExpectRefused({"a", "--output="}, "--output");
    ExpectRefused({"a", "--break="}, "--break");
    ExpectRefused({"a", "--break-thread", "4"}, "--break");
    ExpectRefused({"a", "--break", std::string(1024, 'b')}, "1023");
    ExpectRefused({"a", "--unknown"}, "--unknown");
    Words many;
    for (int n = 0; n < 51; ++n) {
        many.push_back(std::to_string(n));
    }
    ExpectRefused(many, "50");
}

}  // namespace
}  // namespace Mirqos::LogView
