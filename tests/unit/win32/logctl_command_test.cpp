#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/mirqos-logctl/Command.h"
#include "tools/mirqos-logctl/Failure.h"

namespace {

using namespace Mirqos::LogControl;

TEST(LogControlCommandTest, TakesOptionsAnywhere) {
    for (const auto& line :
         std::vector<std::vector<std::string>>{{"--json", "set-level", "12", "--all", "3"},
                                               {"set-level", "12", "3", "--all", "--json"}}) {
        const Command command = ReadCommand(line);
        EXPECT_EQ(command.action, Action::SetLevel);
        EXPECT_TRUE(command.json);
        EXPECT_EQ(command.processId, 12u);
        EXPECT_FALSE(command.module.has_value());
        EXPECT_EQ(command.level, 3);
    }
}

TEST(LogControlCommandTest, KnowsEveryCommand) {
    EXPECT_EQ(ReadCommand({"list"}).action, Action::List);
    EXPECT_EQ(ReadCommand({"show", "4294967295"}).processId, 4294967295u);
    EXPECT_EQ(ReadCommand({"clear-level", "1", "a.dll"}).action, Action::ClearLevel);
    EXPECT_EQ(ReadCommand({"clear-path", "1", "--all"}).action, Action::ClearPath);
    const Command follow = ReadCommand({"follow", "1", "a.dll", "path"});
    EXPECT_EQ(follow.action, Action::Follow);
    EXPECT_EQ(follow.module, L"a.dll");
    EXPECT_EQ(follow.flag, 1u);
    EXPECT_EQ(ReadCommand({"unfollow", "1", "--all", "level"}).flag, 2u);
    EXPECT_EQ(ReadCommand({"unfollow", "1", "--all", "level"}).action, Action::Unfollow);
    EXPECT_EQ(ReadCommand({"--help"}).action, Action::Help);
    EXPECT_EQ(ReadCommand({"set-level", "-h"}).action, Action::Help);
    EXPECT_EQ(ReadCommand({"--version"}).action, Action::Version);
}

TEST(LogControlCommandTest, TakesLevelsOfTwoDigits) {
    EXPECT_EQ(ReadCommand({"set-level", "1", "a.dll", "0"}).level, 0);
    EXPECT_EQ(ReadCommand({"set-level", "1", "a.dll", "99"}).level, 99);
}

TEST(LogControlCommandTest, TakesFullPathsThatCanBeOpened) {
    const auto path = [](const std::string& text) {
        return ReadCommand({"set-path", "1", "a.dll", text}).path;
    };
    EXPECT_EQ(path("C:\\logs\\a.Log"), L"C:\\logs\\a.Log");
    EXPECT_EQ(path("c:/logs/a b.txt"), L"c:\\logs\\a b.txt");
    EXPECT_EQ(path("\\\\server\\share\\a.Log"), L"\\\\server\\share\\a.Log");
    EXPECT_EQ(path("C:\\\xC3\xA9.Log"), L"C:\\\u00E9.Log");
    EXPECT_EQ(path("C:\\" + std::string(243, 'x')).size(), 246u);
}

TEST(LogControlCommandTest, RefusesEverythingElse) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"edit"},
        {"list", "1"},
        {"list", "--all"},
        {"show"},
        {"show", "1", "2"},
        {"show", "--all", "1"},
        {"show", "0"},
        {"show", "-1"},
        {"show", "1x"},
        {"show", "4294967296"},
        {"show", "1", "--unknown"},
        {"set-level", "1", "a.dll"},
        {"set-level", "1", "a.dll", "--all", "3"},
        {"set-level", "1", "a.dll", "100"},
        {"set-level", "1", "a.dll", ""},
        {"set-level", "1", "a.dll", "two"},
        {"set-path", "1", "a.dll", ""},
        {"set-path", "1", "a.dll", "a.Log"},
        {"set-path", "1", "a.dll", "C:a.Log"},
        {"set-path", "1", "a.dll", "\\a.Log"},
        {"set-path", "1", "a.dll", "C:\\logs\\"},
        {"set-path", "1", "a.dll", "C:\\logs/"},
        {"set-path", "1", "a.dll", "C:\\a*.Log"},
        {"set-path", "1", "a.dll", "C:\\a\n.Log"},
        {"set-path", "1", "a.dll", "C:\\" + std::string(244, 'x')},
        {"follow", "1", "a.dll", "both"},
        {"follow", "1", "--all"},
    };
    for (const auto& line : wrong) {
        try {
            ReadCommand(line);
            ADD_FAILURE() << testing::PrintToString(line);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Code(), ExitCode::Usage);
            EXPECT_EQ(std::string(failure.what()).find('\n'), std::string::npos);
        }
    }
}

}  // namespace
