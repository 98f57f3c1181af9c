#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tools/mirqos-logctl/Edit.h"
#include "tools/mirqos-logctl/Failure.h"

namespace {

using namespace Mirqos::LogControl;
using LOGUTILS::LogConfigBlock;
using LOGUTILS::LogModuleEntry;

class LogControlEdit : public testing::Test {
protected:
    LogControlEdit() {
        LOGUTILS::ClearBlock(*m_block);
        for (const wchar_t* const name : {L"a.dll", L"b.dll", L"c.dll"}) {
            LOGUTILS::PutText(FindOrTakeModule(*m_block, name)->m_szPath,
                              std::wstring(L"C:\\") + name);
        }
    }

    void Do(const std::string& verb, const std::string& target, const std::string& operand = "",
            bool ignoresGlobalPath = false) {
        std::vector<std::string> line = {verb, "12", target};
        if (!operand.empty()) {
            line.push_back(operand);
        }
        Edit(*m_block, ReadCommand(line), ignoresGlobalPath);
    }
    LogModuleEntry& Module(const wchar_t* name) { return *FindModule(*m_block, name); }
    std::wstring FileOf(const wchar_t* name) {
        return LOGUTILS::PathOf(*m_block, name, false).value_or(L"(nothing)");
    }
    std::int32_t LevelOf(const wchar_t* name) { return LOGUTILS::LevelOf(*m_block, name); }
    std::wstring GlobalPath() { return std::wstring(LOGUTILS::TextIn(m_block->m_szGlobalPath)); }
    // A module stores a path that it finds changed.
    void LogALineOf(const wchar_t* name) { LOGUTILS::SetPath(*m_block, name, FileOf(name)); }

    std::unique_ptr<LogConfigBlock> m_block = std::make_unique<LogConfigBlock>();
};

TEST_F(LogControlEdit, GivesOneModuleALevelWhateverAllHave) {
    Do("set-level", "--all", "5");
    Do("set-level", "A.DLL", "1");
    EXPECT_EQ(LevelOf(L"a.dll"), 1);
    EXPECT_EQ(LevelOf(L"b.dll"), 5);
    EXPECT_EQ(Module(L"a.dll").m_dwFlags, 0xFFFDu);
    EXPECT_EQ(m_block->m_nGlobalLevel, 5);
}

TEST_F(LogControlEdit, GivesAllModulesALevelWhateverOneHad) {
    Do("set-level", "a.dll", "1");
    Do("set-level", "--all", "5");
    EXPECT_EQ(LevelOf(L"a.dll"), 5);
    EXPECT_EQ(LevelOf(L"b.dll"), 5);
    EXPECT_EQ(LevelOf(L"unknown.dll"), 5);
}

TEST_F(LogControlEdit, TakesALevelBack) {
    Do("set-level", "--all", "5");
    Do("set-level", "a.dll", "1");
    Do("clear-level", "a.dll");
    EXPECT_EQ(LevelOf(L"a.dll"), 5);
    Do("clear-level", "--all");
    EXPECT_EQ(LevelOf(L"a.dll"), -1);
    EXPECT_EQ(LevelOf(L"b.dll"), -1);
}

TEST_F(LogControlEdit, GivesOneModuleAPathThatARegistrationLeavesAlone) {
    Do("set-path", "a.dll", "C:\\own.Log");
    EXPECT_EQ(FileOf(L"a.dll"), L"C:\\own.Log");
    EXPECT_EQ(Module(L"a.dll").m_dwFlags, 0xFFFEu);
    EXPECT_EQ(FileOf(L"b.dll"), L"C:\\b.dll");
}

TEST_F(LogControlEdit, GivesAllModulesAPathWhateverOneHad) {
    Do("set-path", "a.dll", "C:\\own.Log");
    Do("set-path", "--all", "C:\\all.Log");
    for (const wchar_t* const name : {L"a.dll", L"b.dll", L"unknown.dll"}) {
        EXPECT_EQ(FileOf(name), L"C:\\all.Log");
    }
    Do("clear-path", "--all");
    EXPECT_EQ(FileOf(L"a.dll"), L"C:\\own.Log");
    EXPECT_EQ(FileOf(L"b.dll"), L"C:\\b.dll");
}

TEST_F(LogControlEdit, LeavesTheOtherModulesWhereTheyAreWhenOneLeavesThePathOfAll) {
    Do("set-path", "--all", "C:\\all.Log");
    Do("set-path", "a.dll", "C:\\own.Log");
    LogALineOf(L"a.dll");
    LogALineOf(L"b.dll");
    EXPECT_EQ(FileOf(L"a.dll"), L"C:\\own.Log");
    EXPECT_EQ(FileOf(L"b.dll"), L"C:\\all.Log");
    EXPECT_EQ(FileOf(L"c.dll"), L"C:\\all.Log");
    EXPECT_EQ(GlobalPath(), L"");
    EXPECT_EQ(Module(L"b.dll").m_dwFlags, 0xFFFEu);
}

TEST_F(LogControlEdit, GivesAModuleThatStopsFollowingItsOwnPathBack) {
    Do("set-path", "--all", "C:\\all.Log");
    Do("unfollow", "a.dll", "path");
    LogALineOf(L"a.dll");
    EXPECT_EQ(FileOf(L"a.dll"), L"C:\\a.dll");
    EXPECT_EQ(FileOf(L"b.dll"), L"C:\\all.Log");
    EXPECT_EQ(GlobalPath(), L"");
}

TEST_F(LogControlEdit, GivesAllModulesTheirOwnPathsBackWhenNoneFollows) {
    Do("set-path", "--all", "C:\\all.Log");
    Do("unfollow", "--all", "path");
    EXPECT_EQ(FileOf(L"a.dll"), L"C:\\a.dll");
    EXPECT_EQ(FileOf(L"c.dll"), L"C:\\c.dll");
    EXPECT_EQ(GlobalPath(), L"");
    EXPECT_EQ(Module(L"c.dll").m_dwFlags, 0xFFFEu);
    Do("follow", "--all", "path");
    EXPECT_EQ(Module(L"c.dll").m_dwFlags, 0xFFFFu);
}

TEST_F(LogControlEdit, ChangesOneFlagAndNoOther) {
    Do("unfollow", "b.dll", "level");
    EXPECT_EQ(Module(L"b.dll").m_dwFlags, 0xFFFDu);
    EXPECT_EQ(Module(L"a.dll").m_dwFlags, 0xFFFFu);
    Do("follow", "b.dll", "level");
    EXPECT_EQ(Module(L"b.dll").m_dwFlags, 0xFFFFu);
    Do("unfollow", "b.dll", "path");
    Do("clear-path", "b.dll");
    EXPECT_EQ(Module(L"b.dll").m_dwFlags, 0xFFFFu);
}

TEST_F(LogControlEdit, TouchesNoFreeEntry) {
    Do("set-level", "--all", "5");
    Do("set-path", "--all", "C:\\all.Log");
    Do("unfollow", "--all", "level");
    const auto fresh = std::make_unique<LogConfigBlock>();
    LOGUTILS::ClearBlock(*fresh);
    EXPECT_EQ(std::memcmp(&m_block->m_modules[3], &fresh->m_modules[3],
                          sizeof(LogModuleEntry) * (LOGUTILS::kBlockModules - 3)),
              0);
}

TEST_F(LogControlEdit, KnowsThatAProcessIgnoresThePathOfAll) {
    const auto before = std::make_unique<LogConfigBlock>(*m_block);
    try {
        Do("set-path", "--all", "C:\\all.Log", true);
        ADD_FAILURE();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::NotFollowed);
    }
    EXPECT_EQ(std::memcmp(before.get(), m_block.get(), sizeof(LogConfigBlock)), 0);
    // each module writes to its own file there, and goes on doing so
    LOGUTILS::PutText(m_block->m_szGlobalPath, L"C:\\all.Log");
    Do("set-path", "a.dll", "C:\\own.Log", true);
    EXPECT_EQ(Module(L"b.dll").m_dwFlags, 0xFFFFu);
    Do("clear-path", "--all", "", true);
    EXPECT_EQ(FileOf(L"a.dll"), L"C:\\own.Log");
    EXPECT_EQ(FileOf(L"b.dll"), L"C:\\b.dll");
}

TEST_F(LogControlEdit, RefusesAModuleThatHasNotRegisteredAndChangesNothing) {
    const auto before = std::make_unique<LogConfigBlock>(*m_block);
    for (const char* const verb : {"clear-level", "clear-path"}) {
        for (const char* const name : {"d.dll", "a", "\xC3\xA9\x07"}) {
            try {
                Do(verb, name);
                ADD_FAILURE();
            } catch (const Failure& failure) {
                EXPECT_EQ(failure.Code(), ExitCode::NoModule);
                EXPECT_EQ(std::string(failure.what()).find('\x07'), std::string::npos);
            }
        }
    }
    EXPECT_EQ(std::memcmp(before.get(), m_block.get(), sizeof(LogConfigBlock)), 0);
}

TEST_F(LogControlEdit, OutlivesAnyContentOfTheBlock) {
    std::mt19937_64 random(7);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same each time
    auto* const bytes = reinterpret_cast<unsigned char*>(m_block.get());
    for (int round = 0; round < 20; ++round) {
        for (std::size_t i = 0; i < sizeof(LogConfigBlock); ++i) {
            bytes[i] = static_cast<unsigned char>(random() >> 24);
        }
        Do("set-path", "--all", "C:\\all.Log");
        Do("unfollow", "--all", "path");
        Do("set-level", "--all", "5");
        EXPECT_THROW(Do("set-level", "a.dll", "5"), Failure);
    }
}

}  // namespace
