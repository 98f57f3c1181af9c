#include "log/dbg/LogConfigBlock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/LogBlockBytes.h"

namespace {

using namespace LOGUTILS;
using Mirqos::Test::LogBlockBytes;

constexpr std::size_t kModules = LogBlockBytes::kModules;

std::u16string Units(WideView text) {
    return {text.begin(), text.end()};
}

WideString Letters(std::size_t count, char letter = 'a') {
    return WideString(count, static_cast<WideChar>(letter));
}

/// A fresh block, which the tests see through the library's struct and, as tools do, as bytes.
class LogConfigBlockTest : public testing::Test {
protected:
    LogConfigBlockTest() { ClearBlock(Block()); }

    LogConfigBlock& Block() { return *m_block; }
    const LogConfigBlock& Constant() { return *m_block; }
    LogBlockBytes Bytes() { return LogBlockBytes(reinterpret_cast<unsigned char*>(m_block.get())); }

    std::vector<unsigned char> Copy() {
        const auto* first = reinterpret_cast<const unsigned char*>(m_block.get());
        return {first, first + sizeof(LogConfigBlock)};
    }

    /// Takes entries until all are taken, as "module0" and so on.
    void TakeAll() {
        for (std::size_t module = 0; module < kModules; ++module) {
            FindOrTakeModule(Block(), Name(module));
        }
    }
    static WideString Name(std::size_t module) {
        return "module"_w + Decimal(static_cast<long long>(module));
    }

private:
    std::unique_ptr<LogConfigBlock> m_block = std::make_unique<LogConfigBlock>();
};

// --- The layout

TEST_F(LogConfigBlockTest, HasTheDocumentedSize) {
    EXPECT_EQ(sizeof(LogConfigBlock), LogBlockBytes::kSize);
    EXPECT_EQ(sizeof(LogConfigBlock), 0x12240Cu);
    EXPECT_EQ(LOGUTILS::kBlockModules, LogBlockBytes::kModules);
    EXPECT_EQ(LOGUTILS::kBlockMagic, 0xE6E6u);
}

TEST_F(LogConfigBlockTest, AFreshBlockIsZeroButForMagicsLevelAndFlags) {
    std::vector<unsigned char> expected(LogBlockBytes::kSize, 0);
    LogBlockBytes bytes(expected.data());
    bytes.SetNumber(0, 59110);
    bytes.SetNumber(1028, 0xFFFFFFFF);
    for (std::size_t module = 0; module < 1024; ++module) {
        bytes.SetNumber(1032 + module * 1160 + 1156, 1);
    }
    bytes.SetNumber(1188872, 59110);
    EXPECT_TRUE(Copy() == expected);
}

TEST_F(LogConfigBlockTest, ClearingLeavesNothingOfWhatStoodThere) {
    const std::vector<unsigned char> fresh = Copy();
    std::fill_n(reinterpret_cast<unsigned char*>(&Block()), sizeof(LogConfigBlock),
                static_cast<unsigned char>(0xA5));
    ClearBlock(Block());
    EXPECT_TRUE(Copy() == fresh);
}

TEST_F(LogConfigBlockTest, EveryFieldLiesAtItsDocumentedPlace) {
    SetPath(Block(), ""_w, "C:\\all.log"_w);
    Block().m_nGlobalLevel = 0x04030201;
    EXPECT_EQ(Bytes().Text(4, 512), u"C:\\all.log");
    EXPECT_EQ(Bytes().Number(1028), 0x04030201u);

    for (const std::size_t module : {std::size_t{0}, std::size_t{1}, std::size_t{1023}}) {
        LogModuleEntry& entry = Block().m_modules[module];
        PutText(entry.m_szName, Name(module));
        PutText(entry.m_szPath, "C:\\own.log"_w);
        entry.m_nLevel = 0x14131211;
        entry.m_dwFlags = 0x24232221;
        const std::size_t at = 1032 + module * 1160;
        EXPECT_EQ(Bytes().Text(at, 64), Units(Name(module)));
        EXPECT_EQ(Bytes().Text(at + 128, 512), u"C:\\own.log");
        EXPECT_EQ(Bytes().Number(at + 1152), 0x14131211u);
        EXPECT_EQ(Bytes().Number(at + 1156), 0x24232221u);
    }
    EXPECT_EQ(Bytes().Number(1188872), 59110u);
}

TEST_F(LogConfigBlockTest, WhatAToolWritesByteByByteIsRead) {
    Bytes().SetText(LogBlockBytes::NameAt(0), 64, u"other.dll");
    Bytes().SetText(LogBlockBytes::NameAt(1), 64, u"mirqos.dll");
    Bytes().SetText(LogBlockBytes::PathAt(1), 512, u"D:\\\u20AC.log");
    Bytes().SetNumber(LogBlockBytes::LevelAt(1), 4);
    Bytes().SetNumber(LogBlockBytes::FlagsAt(1), 0);
    EXPECT_EQ(PathOf(Block(), "mirqos.dll"_w, false), "D:\\"_w + WideChar{0x20AC} + ".log"_w);
    EXPECT_EQ(LevelOf(Block(), "mirqos.dll"_w), 4);

    Bytes().SetText(LogBlockBytes::kGlobalPathAt, 512, u"E:\\all.log");
    Bytes().SetNumber(LogBlockBytes::kGlobalLevelAt, 3);
    EXPECT_EQ(PathOf(Block(), "other.dll"_w, false), "E:\\all.log"_w);
    EXPECT_EQ(LevelOf(Block(), "nobody.dll"_w), 3);
}

// --- Magics

TEST_F(LogConfigBlockTest, IsIntactWhileBothMagicsStand) {
    EXPECT_TRUE(IsIntact(Block()));
    for (const std::size_t offset : {LogBlockBytes::kMagicAt, LogBlockBytes::kEndMagicAt}) {
        for (const std::uint32_t value : {0u, 59109u, 59111u, 0xE6E60000u, 0xFFFFE6E6u}) {
            Bytes().SetNumber(offset, value);
            EXPECT_FALSE(IsIntact(Block())) << offset << ": " << value;
        }
        Bytes().SetNumber(offset, 59110);
        EXPECT_TRUE(IsIntact(Block()));
    }
}

// --- Finding and taking entries

TEST_F(LogConfigBlockTest, NoModuleIsFoundInAFreshBlock) {
    EXPECT_EQ(FindModule(Block(), "a.dll"_w), nullptr);
    EXPECT_EQ(FindModule(Constant(), "a.dll"_w), nullptr);
    EXPECT_EQ(FindModule(Block(), ""_w), nullptr);
}

TEST_F(LogConfigBlockTest, AModuleTakesTheFirstFreeEntryWithoutLevelAndFollowingBoth) {
    std::vector<unsigned char> expected = Copy();
    LogBlockBytes bytes(expected.data());
    bytes.SetText(1032, 64, u"a.dll");
    bytes.SetNumber(1032 + 1152, 0xFFFFFFFF);
    bytes.SetNumber(1032 + 1156, 0xFFFF);
    EXPECT_EQ(FindOrTakeModule(Block(), "a.dll"_w), &Block().m_modules[0]);
    EXPECT_TRUE(Copy() == expected);
    EXPECT_EQ(FindOrTakeModule(Block(), "b.dll"_w), &Block().m_modules[1]);
}

TEST_F(LogConfigBlockTest, TheSameNameInAnotherLetterCaseIsTheSameEntry) {
    LogModuleEntry* taken = FindOrTakeModule(Block(), "Mirqos.dll"_w);
    taken->m_nLevel = 2;
    taken->m_dwFlags = 0;
    const std::vector<unsigned char> before = Copy();
    EXPECT_EQ(FindOrTakeModule(Block(), "MIRQOS.DLL"_w), taken);
    EXPECT_EQ(FindModule(Block(), "mirqos.dll"_w), taken);
    EXPECT_EQ(FindModule(Constant(), "mIRQOS.Dll"_w), taken);
    EXPECT_TRUE(Copy() == before) << "an entry that was found stays as it is";
}

TEST_F(LogConfigBlockTest, AnEmptyNameTakesNothing) {
    const std::vector<unsigned char> before = Copy();
    EXPECT_EQ(FindOrTakeModule(Block(), ""_w), nullptr);
    EXPECT_TRUE(Copy() == before);
}

TEST_F(LogConfigBlockTest, TheSearchStopsAtTheFirstFreeEntry) {
    PutText(Block().m_modules[0].m_szName, "a.dll"_w);
    PutText(Block().m_modules[2].m_szName, "behind.dll"_w);
    EXPECT_EQ(FindModule(Block(), "behind.dll"_w), nullptr);
    EXPECT_EQ(FindOrTakeModule(Block(), "behind.dll"_w), &Block().m_modules[1]);
    EXPECT_EQ(FindModule(Block(), "behind.dll"_w), &Block().m_modules[1]);
}

TEST_F(LogConfigBlockTest, AFullBlockHasRoomForNoOtherName) {
    TakeAll();
    const std::vector<unsigned char> before = Copy();
    EXPECT_EQ(Bytes().Name(1023), u"module1023");
    EXPECT_EQ(FindOrTakeModule(Block(), "one more"_w), nullptr);
    EXPECT_EQ(FindModule(Block(), "one more"_w), nullptr);
    SetPath(Block(), "one more"_w, "C:\\x.log"_w);
    EXPECT_TRUE(Copy() == before);
    EXPECT_EQ(FindOrTakeModule(Block(), "MODULE1023"_w), &Block().m_modules[1023]);
    EXPECT_EQ(FindModule(Block(), "module0"_w), &Block().m_modules[0]);
    EXPECT_EQ(FindModule(Block(), ""_w), nullptr);
}

TEST_F(LogConfigBlockTest, ANameIsStoredWithUpTo63CharactersAndFoundByItsWhole) {
    for (const std::size_t length : {62u, 63u, 64u, 65u, 200u}) {
        ClearBlock(Block());
        const WideString name = Letters(length);
        LogModuleEntry* taken = FindOrTakeModule(Block(), name);
        ASSERT_NE(taken, nullptr);
        EXPECT_EQ(Bytes().Name(0).size(), std::min<std::size_t>(length, 63));
        EXPECT_EQ(Bytes().Path(0), u"") << length;
        EXPECT_EQ(FindModule(Block(), name), taken) << length;
        EXPECT_EQ(FindOrTakeModule(Block(), name), taken) << length;
        EXPECT_EQ(Bytes().Name(1), u"") << "nothing is taken twice";
    }
}

TEST_F(LogConfigBlockTest, NamesThatDifferOnlyBehindTheirRoomAreOne) {
    LogModuleEntry* taken = FindOrTakeModule(Block(), Letters(63) + "x"_w);
    EXPECT_EQ(FindModule(Block(), Letters(63) + "y"_w), taken);
    EXPECT_EQ(FindModule(Block(), Letters(62)), nullptr);
}

TEST_F(LogConfigBlockTest, ANameWithoutNulEndsWithItsRoom) {
    std::fill_n(Block().m_modules[0].m_szName, 64, WideChar{'a'});
    PutText(Block().m_modules[0].m_szPath, "aaa"_w);
    EXPECT_EQ(FindModule(Block(), Letters(63)), nullptr);
    EXPECT_EQ(FindModule(Block(), Letters(64)), nullptr) << "it counts as cut to 63";
    EXPECT_EQ(FindModule(Block(), Letters(67)), nullptr);
    EXPECT_EQ(FindOrTakeModule(Block(), Letters(64)), &Block().m_modules[1]);
}

// --- Paths

struct PathCase {
    std::uint32_t flags;
    bool hasGlobal;
    bool ignoreGlobal;
    const char* expected;
};

std::ostream& operator<<(std::ostream& out, const PathCase& test) {
    return out << "flags " << test.flags << (test.hasGlobal ? ", global path" : "")
               << (test.ignoreGlobal ? ", ignored" : "");
}

TEST_F(LogConfigBlockTest, AModuleFollowsTheGlobalPathUnlessToldOtherwise) {
    constexpr PathCase cases[] = {{0xFFFF, true, false, "global"}, {0xFFFF, true, true, "own"},
                                  {0xFFFF, false, false, "own"},   {0xFFFF, false, true, "own"},
                                  {0, true, false, "own"},         {0, true, true, "own"},
                                  {0, false, false, "own"},        {0, false, true, "own"},
                                  {1, true, false, "global"},      {1, true, true, "own"},
                                  {1, false, false, "own"},        {1, false, true, "own"},
                                  {2, true, false, "own"},         {2, true, true, "own"},
                                  {2, false, false, "own"},        {2, false, true, "own"},
                                  {0xFFFFFFFE, true, false, "own"}};
    for (const PathCase& test : cases) {
        ClearBlock(Block());
        LogModuleEntry* entry = FindOrTakeModule(Block(), "a.dll"_w);
        PutText(entry->m_szPath, "own"_w);
        entry->m_dwFlags = test.flags;
        PutText(Block().m_szGlobalPath, test.hasGlobal ? "global"_w : ""_w);
        EXPECT_EQ(PathOf(Block(), "A.DLL"_w, test.ignoreGlobal), WidenAscii(test.expected)) << test;
    }
}

TEST_F(LogConfigBlockTest, ModulesWithoutEntryFollowTheGlobalPathOrHaveNone) {
    EXPECT_EQ(PathOf(Block(), "a.dll"_w, false), std::nullopt);
    EXPECT_EQ(PathOf(Block(), "a.dll"_w, true), std::nullopt);
    PutText(Block().m_szGlobalPath, "global"_w);
    EXPECT_EQ(PathOf(Block(), "a.dll"_w, false), "global"_w);
    EXPECT_EQ(PathOf(Block(), "a.dll"_w, true), std::nullopt);
}

TEST_F(LogConfigBlockTest, AnEmptyNameAsksForTheGlobalPathAlsoWhereItIsIgnored) {
    EXPECT_EQ(PathOf(Block(), ""_w, false), ""_w);
    PutText(Block().m_szGlobalPath, "global"_w);
    EXPECT_EQ(PathOf(Block(), ""_w, false), "global"_w);
    EXPECT_EQ(PathOf(Block(), ""_w, true), "global"_w);
}

TEST_F(LogConfigBlockTest, AnEntryWithoutPathAnswersWithAnEmptyOne) {
    FindOrTakeModule(Block(), "a.dll"_w);
    EXPECT_EQ(PathOf(Block(), "a.dll"_w, false), ""_w);
}

TEST_F(LogConfigBlockTest, APathIsSetForTheModuleWhileThereIsNoGlobalOne) {
    SetPath(Block(), "a.dll"_w, "C:\\a.log"_w);
    SetPath(Block(), "b.dll"_w, "C:\\b.log"_w);
    SetPath(Block(), "A.dll"_w, "C:\\a2.log"_w);
    EXPECT_EQ(Bytes().GlobalPath(), u"");
    EXPECT_EQ(Bytes().Path(0), u"C:\\a2.log");
    EXPECT_EQ(Bytes().Path(1), u"C:\\b.log");
    EXPECT_EQ(Bytes().Flags(0), 0xFFFFu);
    EXPECT_EQ(Bytes().Level(0), -1);
    EXPECT_EQ(Bytes().Name(2), u"");
}

TEST_F(LogConfigBlockTest, APathWithoutNameBecomesTheGlobalOne) {
    SetPath(Block(), ""_w, "C:\\all.log"_w);
    EXPECT_EQ(Bytes().GlobalPath(), u"C:\\all.log");
    EXPECT_EQ(Bytes().Name(0), u"");
}

TEST_F(LogConfigBlockTest, WhereThereIsAGlobalPathEveryNewPathReplacesIt) {
    LogModuleEntry* apart = FindOrTakeModule(Block(), "apart.dll"_w);
    apart->m_dwFlags = 0;
    PutText(apart->m_szPath, "C:\\apart.log"_w);
    PutText(Block().m_szGlobalPath, "C:\\all.log"_w);

    SetPath(Block(), "a.dll"_w, "C:\\all.00000001.log"_w);
    EXPECT_EQ(Bytes().GlobalPath(), u"C:\\all.00000001.log");
    EXPECT_EQ(Bytes().Name(1), u"") << "no entry is taken";
    SetPath(Block(), "apart.dll"_w, "C:\\all.00000002.log"_w);
    EXPECT_EQ(Bytes().GlobalPath(), u"C:\\all.00000002.log");
    EXPECT_EQ(Bytes().Path(0), u"C:\\apart.log") << "also for a module that does not follow it";
}

TEST_F(LogConfigBlockTest, AnEmptyPathClearsTheGlobalOneAndEachGoesItsWayAgain) {
    SetPath(Block(), "a.dll"_w, "C:\\a.log"_w);
    SetPath(Block(), ""_w, "C:\\all.log"_w);
    SetPath(Block(), ""_w, ""_w);
    EXPECT_EQ(PathOf(Block(), "a.dll"_w, false), "C:\\a.log"_w);
}

TEST_F(LogConfigBlockTest, APathIsStoredWithUpTo511CharactersAndNothingBehindIt) {
    for (const std::size_t length : {510u, 511u, 512u, 513u, 2000u}) {
        const std::size_t kept = std::min<std::size_t>(length, 511);
        ClearBlock(Block());
        Block().m_nGlobalLevel = 7;
        SetPath(Block(), ""_w, Letters(length));
        EXPECT_EQ(Bytes().GlobalPath(), std::u16string(kept, u'a')) << length;
        EXPECT_EQ(Bytes().GlobalLevel(), 7) << length;

        ClearBlock(Block());
        SetPath(Block(), "a.dll"_w, Letters(length));
        EXPECT_EQ(Bytes().Path(0), std::u16string(kept, u'a')) << length;
        EXPECT_EQ(Bytes().Level(0), -1) << length;
        EXPECT_EQ(PathOf(Block(), "a.dll"_w, false), Letters(kept)) << length;
    }
}

TEST_F(LogConfigBlockTest, AShorterPathLeavesNothingOfTheLongerOne) {
    SetPath(Block(), ""_w, Letters(511));
    SetPath(Block(), ""_w, "ab"_w);
    std::vector<unsigned char> room(1024, 0);
    room[0] = 'a';
    room[2] = 'b';
    const std::vector<unsigned char> all = Copy();
    EXPECT_TRUE(std::equal(room.begin(), room.end(), all.begin() + 4));
}

TEST_F(LogConfigBlockTest, PathsWithoutNulEndWithTheirRoom) {
    LogModuleEntry* entry = FindOrTakeModule(Block(), "a.dll"_w);
    entry->m_nLevel = 0x610061;  // reads "aa"
    std::fill_n(entry->m_szPath, 512, WideChar{'p'});
    EXPECT_EQ(PathOf(Block(), "a.dll"_w, true), Letters(512, 'p'));
    std::fill_n(Block().m_szGlobalPath, 512, WideChar{'g'});
    Block().m_nGlobalLevel = 0x610061;
    EXPECT_EQ(PathOf(Block(), "a.dll"_w, false), Letters(512, 'g'));
}

// --- Levels

struct LevelCase {
    std::uint32_t flags;
    std::int32_t global;
    std::int32_t own;
    std::int32_t expected;
};

std::ostream& operator<<(std::ostream& out, const LevelCase& test) {
    return out << "flags " << test.flags << ", global " << test.global << ", own " << test.own;
}

TEST_F(LogConfigBlockTest, AModuleFollowsTheGlobalLevelUnlessToldOtherwise) {
    constexpr LevelCase cases[] = {{0xFFFF, 5, 1, 5},    {0xFFFF, 5, -1, 5},    {0xFFFF, -1, 1, 1},
                                   {0xFFFF, -1, -1, -1}, {0, 5, 1, 1},          {0, 5, -1, -1},
                                   {0, -1, 1, 1},        {0, -1, -1, -1},       {1, 5, 1, 1},
                                   {1, -1, 1, 1},        {2, 5, 1, 5},          {2, 5, -1, 5},
                                   {2, -1, 1, 1},        {0xFFFFFFFD, 5, 1, 1}, {0xFFFF, 0, 1, 0},
                                   {0xFFFF, -2, 1, -2},  {0, 5, 0, 0}};
    for (const LevelCase& test : cases) {
        ClearBlock(Block());
        LogModuleEntry* entry = FindOrTakeModule(Block(), "a.dll"_w);
        entry->m_dwFlags = test.flags;
        entry->m_nLevel = test.own;
        Block().m_nGlobalLevel = test.global;
        EXPECT_EQ(LevelOf(Block(), "A.dll"_w), test.expected) << test;
    }
}

TEST_F(LogConfigBlockTest, WithoutAnEntryTheGlobalLevelHoldsOrNone) {
    EXPECT_EQ(LevelOf(Block(), "a.dll"_w), -1);
    EXPECT_EQ(LevelOf(Block(), ""_w), -1);
    Block().m_nGlobalLevel = 5;
    EXPECT_EQ(LevelOf(Block(), "a.dll"_w), 5);
    EXPECT_EQ(LevelOf(Block(), ""_w), 5);
}

TEST_F(LogConfigBlockTest, AskingChangesNothing) {
    FindOrTakeModule(Block(), "a.dll"_w);
    const std::vector<unsigned char> before = Copy();
    PathOf(Block(), "b.dll"_w, false);
    LevelOf(Block(), "b.dll"_w);
    FindModule(Block(), "b.dll"_w);
    EXPECT_TRUE(Copy() == before);
}

// --- Names of the shared objects

TEST_F(LogConfigBlockTest, TheNamesThatToolsOpenStayAsTheyAre) {
    EXPECT_STREQ(LOGUTILS::kBlockMutexName,
                 "Global\\LOGCFG_MUTEX_NAME_C8AAE32A-9619-4685-B766-F003823BEEE3_");
    EXPECT_STREQ(LOGUTILS::kBlockName, "LOGCFG_SM_NAME_C8AAE32A-9619-4685-B766-F003823BEEE3_");
}

}  // namespace
