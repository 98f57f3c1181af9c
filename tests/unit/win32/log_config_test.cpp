#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "log/dbg/LogFilePath.h"
#include "log/dbg/win32/CLogConfig.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/InventedProcess.h"
#include "tests/support/win32/IsOpenToEveryone.h"
#include "tests/support/win32/LogConfigTestAccess.h"
#include "tests/support/win32/RawBlock.h"
#include "tests/support/win32/TraceRecording.h"

namespace {

using LOGUTILS::WindowsCalls;
using Mirqos::Test::CallSpy;
using Mirqos::Test::InventedProcess;
using Mirqos::Test::IsOpenToEveryone;
using Mirqos::Test::LogBlockBytes;
using Mirqos::Test::RawBlock;
using Mirqos::Test::TraceRecording;
using NSDBG::CLogConfig;
using NSDBG::LogConfigTestAccess;

std::u16string Utf16(const std::wstring& text) {
    return {text.begin(), text.end()};
}

class LogConfig : public testing::Test {
protected:
    CLogConfig& Config() { return *m_config; }
    RawBlock Block() const { return RawBlock(m_process.BlockName()); }

    std::wstring PathOf(const std::wstring& name, bool ignoreGlobal = false) {
        wchar_t path[LOGUTILS::kPathRoom] = L"(as it was)";
        Config().GetLogPath(name, path, ignoreGlobal);
        return path;
    }
    std::wstring DefaultPathOf(const std::wstring& name) {
        return std::wstring(Config().LogRoot()) + name + L".Log";
    }
    void ExpectNoConfiguration() {
        EXPECT_EQ(Config().GetLevel(L"a.dll"), -1);
        EXPECT_EQ(PathOf(L"a.dll"), L"(as it was)");
        EXPECT_EQ(PathOf(L""), L"(as it was)");
    }
    // Every operation once; none may change what it cannot have.
    void UseEverything() {
        Config().RegisterModule(L"a.dll");
        Config().SetLogPath(L"a.dll", L"C:\\x.Log");
        Config().SetLogPath(L"", L"C:\\x.Log");
        ExpectNoConfiguration();
    }

    InventedProcess m_process;
    LogConfigTestAccess::Instance m_config = LogConfigTestAccess::New();
};

// What a fresh block is, and how it is made.

TEST_F(LogConfig, MakesABlockOfZeroButForMagicsLevelAndFlags) {
    EXPECT_EQ(Config().GetLevel(L"a.dll"), -1);
    std::string expected(1188876, '\0');
    LogBlockBytes fields(reinterpret_cast<unsigned char*>(expected.data()));
    fields.SetNumber(0, 0xE6E6);
    fields.SetNumber(1028, 0xFFFFFFFFu);
    for (std::size_t i = 0; i < 1024; ++i) {
        fields.SetNumber(1032 + i * 1160 + 1156, 1);
    }
    fields.SetNumber(1188872, 0xE6E6);
    const RawBlock block = Block();
    ASSERT_TRUE(block);
    EXPECT_TRUE(block.Copy() == expected);
}

TEST_F(LogConfig, MakesTheMutexUnownedAndOpenToEveryone) {
    const CallSpy<&WindowsCalls::createMutex> spy(
        [&](LPSECURITY_ATTRIBUTES attributes, BOOL owned, LPCWSTR name) {
            EXPECT_TRUE(IsOpenToEveryone(attributes));
            EXPECT_EQ(owned, FALSE);
            EXPECT_EQ(name, m_process.MutexName());
            return CreateMutexW(attributes, owned, name);
        });
    Config().RegisterModule(L"a.dll");
    EXPECT_EQ(spy.Calls(), 1);
}

TEST_F(LogConfig, MakesTheMappingInThePagingFileAndOpenToEveryone) {
    const CallSpy<&WindowsCalls::createFileMapping> spy(
        [&](HANDLE file, LPSECURITY_ATTRIBUTES attributes, DWORD protection, DWORD high, DWORD low,
            LPCWSTR name) {
            EXPECT_EQ(file, INVALID_HANDLE_VALUE);
            EXPECT_TRUE(IsOpenToEveryone(attributes));
            EXPECT_EQ(protection, static_cast<DWORD>(PAGE_READWRITE));
            EXPECT_EQ(high, 0u);
            EXPECT_EQ(low, 0x12240Cu);
            EXPECT_EQ(name, m_process.BlockName());
            return CreateFileMappingW(file, attributes, protection, high, low, name);
        });
    Config().RegisterModule(L"a.dll");
    EXPECT_EQ(spy.Calls(), 1);
}

TEST_F(LogConfig, OpensTheBlockOnceAndKeepsItMapped) {
    const CallSpy<&WindowsCalls::createMutex> mutexes;
    const CallSpy<&WindowsCalls::createFileMapping> mappings;
    const CallSpy<&WindowsCalls::mapViewOfFile> views;
    for (int i = 0; i < 3; ++i) {
        Config().RegisterModule(L"a.dll");
        Config().SetLogPath(L"a.dll", L"C:\\x.Log");
        Config().GetLevel(L"a.dll");
        PathOf(L"a.dll");
    }
    EXPECT_EQ(mutexes.Calls(), 1);
    EXPECT_EQ(mappings.Calls(), 1);
    EXPECT_EQ(views.Calls(), 1);
}

TEST_F(LogConfig, WaitsFiveSecondsAtMostAndReleasesWhatItOwned) {
    const CallSpy<&WindowsCalls::waitForSingleObject> waits([](HANDLE mutex, DWORD limit) {
        EXPECT_EQ(limit, 5000u);
        return WaitForSingleObject(mutex, limit);
    });
    const CallSpy<&WindowsCalls::releaseMutex> releases;
    Config().RegisterModule(L"a.dll");  // opens first
    EXPECT_EQ(waits.Calls(), 2);
    Config().SetLogPath(L"a.dll", L"C:\\x.Log");
    Config().GetLevel(L"a.dll");
    PathOf(L"a.dll");
    EXPECT_EQ(waits.Calls(), 5);
    EXPECT_EQ(releases.Calls(), 5);
}

TEST_F(LogConfig, TakesAnExistingBlockAsItIs) {
    const RawBlock block(m_process.BlockName(), 1188876);
    LogBlockBytes fields = block.Fields();
    fields.SetNumber(0, 59110);
    fields.SetNumber(1188872, 59110);
    fields.SetNumber(1028, 7);
    fields.SetText(4, 512, u"C:\\all.Log");
    fields.SetText(1032, 64, u"a.dll");
    fields.SetText(1032 + 128, 512, u"C:\\own.Log");
    fields.SetNumber(1032 + 1152, 3);
    fields.SetNumber(1032 + 1156, 0);
    const std::string before = block.Copy();
    EXPECT_EQ(Config().GetLevel(L"A.DLL"), 3);
    EXPECT_EQ(Config().GetLevel(L"b.dll"), 7);
    EXPECT_EQ(PathOf(L"a.dll"), L"C:\\own.Log");
    EXPECT_EQ(PathOf(L"b.dll"), L"C:\\all.Log");
    EXPECT_TRUE(block.Copy() == before);
}

TEST_F(LogConfig, SharesTheBlockWithASecondInstance) {
    Config().RegisterModule(L"a.dll");
    Config().SetLogPath(L"a.dll", L"C:\\x.Log");
    const auto second = LogConfigTestAccess::New();
    second->RegisterModule(L"b.dll");
    wchar_t path[LOGUTILS::kPathRoom] = {};
    second->GetLogPath(L"a.dll", path, false);
    EXPECT_STREQ(path, L"C:\\x.Log");
    EXPECT_EQ(PathOf(L"b.dll"), DefaultPathOf(L"b.dll"));
}

TEST_F(LogConfig, TakesABlockThatWasNeverClearedForADamagedOne) {
    const RawBlock block(m_process.BlockName(), 1188876);
    UseEverything();
    EXPECT_TRUE(block.Copy() == std::string(1188876, '\0'));
}

TEST_F(LogConfig, StaysClosedWhereTheMappingIsTooSmall) {
    const RawBlock block(m_process.BlockName(), 4096);
    UseEverything();
}

// The rules, through the operations.

TEST_F(LogConfig, GivesANewModuleTheFirstFreeEntryAndItsDefaultPath) {
    Config().RegisterModule(L"first.dll");
    Config().RegisterModule(L"Second.exe");
    const RawBlock block = Block();
    const LogBlockBytes fields = block.Fields();
    EXPECT_EQ(fields.Name(0), u"first.dll");
    EXPECT_EQ(fields.Name(1), u"Second.exe");
    EXPECT_EQ(fields.Path(1), Utf16(DefaultPathOf(L"Second.exe")));
    EXPECT_EQ(fields.Level(1), -1);
    EXPECT_EQ(fields.Flags(1), 0xFFFFu);
    EXPECT_EQ(fields.Name(2), u"");
}

TEST_F(LogConfig, FindsARegisteredModuleInAnyLetterCase) {
    Config().RegisterModule(L"Some.dll");
    Config().RegisterModule(L"sOME.DLL");
    const RawBlock block = Block();
    EXPECT_EQ(block.Fields().Name(0), u"Some.dll");
    EXPECT_EQ(block.Fields().Name(1), u"");
}

TEST_F(LogConfig, RegistersNothingUnderAnEmptyName) {
    Config().RegisterModule(L"");
    const RawBlock block = Block();
    ASSERT_TRUE(block);
    EXPECT_EQ(block.Fields().Name(0), u"");
    EXPECT_EQ(block.Fields().Flags(0), 1u);
}

TEST_F(LogConfig, GivesAModuleItsDefaultPathBackOnlyWhileItFollowsTheGlobalPath) {
    Config().RegisterModule(L"a.dll");
    Config().SetLogPath(L"a.dll", L"C:\\own.Log");
    const RawBlock block = Block();
    block.Fields().SetNumber(LogBlockBytes::FlagsAt(0), 2);
    Config().RegisterModule(L"a.dll");
    EXPECT_EQ(block.Fields().Path(0), u"C:\\own.Log");
    EXPECT_EQ(block.Fields().Flags(0), 2u);
    block.Fields().SetNumber(LogBlockBytes::FlagsAt(0), 1);
    Config().RegisterModule(L"a.dll");
    EXPECT_EQ(block.Fields().Path(0), Utf16(DefaultPathOf(L"a.dll")));
    EXPECT_EQ(block.Fields().Flags(0), 1u);
}

TEST_F(LogConfig, RegistersNoModuleBeyondTheLastEntry) {
    for (int i = 0; i < 1024; ++i) {
        Config().RegisterModule(L"m" + std::to_wstring(i));
    }
    const RawBlock block = Block();
    EXPECT_EQ(block.Fields().Name(1023), u"m1023");
    const std::string before = block.Copy();
    Config().RegisterModule(L"one-too-many");
    Config().SetLogPath(L"one-too-many", L"C:\\x.Log");
    EXPECT_TRUE(block.Copy() == before);
    EXPECT_EQ(Config().GetLevel(L"one-too-many"), -1);
    EXPECT_EQ(PathOf(L"one-too-many"), L"(as it was)");
    EXPECT_EQ(PathOf(L"M1023"), DefaultPathOf(L"m1023"));
}

TEST_F(LogConfig, CutsALongNameAndFindsItAgain) {
    const std::wstring name(100, L'n');
    Config().RegisterModule(name);
    Config().RegisterModule(name);
    Config().SetLogPath(name, L"C:\\x.Log");
    const RawBlock block = Block();
    EXPECT_EQ(block.Fields().Name(0), std::u16string(63, u'n'));
    EXPECT_EQ(block.Fields().Name(1), u"");
    EXPECT_EQ(PathOf(name), L"C:\\x.Log");
}

TEST_F(LogConfig, CutsALongPath) {
    Config().RegisterModule(L"a.dll");
    Config().SetLogPath(L"a.dll", L"C:\\" + std::wstring(600, L'p'));
    EXPECT_EQ(PathOf(L"a.dll"), L"C:\\" + std::wstring(508, L'p'));
    Config().SetLogPath(L"", L"C:\\" + std::wstring(600, L'g'));
    const RawBlock block = Block();
    EXPECT_EQ(block.Fields().GlobalPath(), u"C:\\" + std::u16string(508, u'g'));
    EXPECT_EQ(block.Fields().GlobalLevel(), -1);
}

TEST_F(LogConfig, SetsThePathOfAModuleWhileThereIsNoneOfAll) {
    Config().SetLogPath(L"a.dll", L"C:\\own.Log");
    const RawBlock block = Block();
    EXPECT_EQ(block.Fields().GlobalPath(), u"");
    EXPECT_EQ(block.Fields().Name(0), u"a.dll");
    EXPECT_EQ(block.Fields().Flags(0), 0xFFFFu);
    EXPECT_EQ(block.Fields().Path(0), u"C:\\own.Log");
}

TEST_F(LogConfig, ReplacesThePathOfAllWhileThereIsOneSoThatAllModulesMove) {
    Config().SetLogPath(L"a.dll", L"C:\\own.Log");
    Config().SetLogPath(L"", L"C:\\all.Log");
    Config().SetLogPath(L"a.dll", L"C:\\all.00000001.log");
    const RawBlock block = Block();
    EXPECT_EQ(block.Fields().GlobalPath(), u"C:\\all.00000001.log");
    EXPECT_EQ(block.Fields().Path(0), u"C:\\own.Log");
}

TEST_F(LogConfig, PutsAPlainFileNameIntoTheLogRoot) {
    Config().SetLogPath(L"a.dll", L"plain");
    EXPECT_EQ(PathOf(L"a.dll"), DefaultPathOf(L"plain"));
    Config().SetLogPath(L"a.dll", L"plain.LOG");
    EXPECT_EQ(PathOf(L"a.dll"), std::wstring(Config().LogRoot()) + L"plain.LOG");
    Config().SetLogPath(L"a.dll", L"");
    EXPECT_EQ(PathOf(L"a.dll"), DefaultPathOf(LOGUTILS::LibraryName()));
    Config().SetLogPath(L"a.dll", L"sub/x");
    EXPECT_EQ(PathOf(L"a.dll"), L"sub/x");
}

TEST_F(LogConfig, PrefersThePathOfAllForModulesThatFollowItUnlessItIsToBeIgnored) {
    Config().SetLogPath(L"a.dll", L"C:\\own.Log");
    EXPECT_EQ(PathOf(L""), L"");
    EXPECT_EQ(PathOf(L"a.dll"), L"C:\\own.Log");
    Config().SetLogPath(L"", L"C:\\all.Log");
    EXPECT_EQ(PathOf(L""), L"C:\\all.Log");
    EXPECT_EQ(PathOf(L"", true), L"C:\\all.Log");
    EXPECT_EQ(PathOf(L"a.dll"), L"C:\\all.Log");
    EXPECT_EQ(PathOf(L"a.dll", true), L"C:\\own.Log");
    EXPECT_EQ(PathOf(L"unknown.dll"), L"C:\\all.Log");
    EXPECT_EQ(PathOf(L"unknown.dll", true), L"(as it was)");
    const RawBlock block = Block();
    block.Fields().SetNumber(LogBlockBytes::FlagsAt(0), 0xFFFE);
    EXPECT_EQ(PathOf(L"a.dll"), L"C:\\own.Log");
}

TEST_F(LogConfig, PrefersTheLevelOfAllForModulesThatFollowIt) {
    Config().RegisterModule(L"a.dll");
    const RawBlock block = Block();
    LogBlockBytes fields = block.Fields();
    fields.SetNumber(LogBlockBytes::kGlobalLevelAt, 5);
    fields.SetNumber(LogBlockBytes::LevelAt(0), 1);
    EXPECT_EQ(Config().GetLevel(L"A.dll"), 5);
    EXPECT_EQ(Config().GetLevel(L"unknown.dll"), 5);
    EXPECT_EQ(Config().GetLevel(L""), 5);
    fields.SetNumber(LogBlockBytes::FlagsAt(0), 0);
    EXPECT_EQ(Config().GetLevel(L"a.dll"), 1);
    fields.SetNumber(LogBlockBytes::kGlobalLevelAt, 0xFFFFFFFFu);
    EXPECT_EQ(Config().GetLevel(L"a.dll"), 1);
    fields.SetNumber(LogBlockBytes::FlagsAt(0), 0xFFFF);
    EXPECT_EQ(Config().GetLevel(L"a.dll"), 1);
    EXPECT_EQ(Config().GetLevel(L"unknown.dll"), -1);
}

// Failures while the block is being opened. The next operation tries again.

class LogConfigOpening : public LogConfig {
protected:
    void ExpectToOpenNow() {
        Config().RegisterModule(L"a.dll");
        EXPECT_EQ(PathOf(L"a.dll"), DefaultPathOf(L"a.dll"));
    }
};

TEST_F(LogConfigOpening, GivesUpWithoutAMutex) {
    {
        const CallSpy<&WindowsCalls::createMutex> refused([](auto&&...) { return HANDLE{}; });
        const CallSpy<&WindowsCalls::createFileMapping> mappings;
        UseEverything();
        EXPECT_EQ(mappings.Calls(), 0);
    }
    ExpectToOpenNow();
}

TEST_F(LogConfigOpening, GivesUpWithoutMemory) {
    for (const std::size_t name :
         {sizeof(LOGUTILS::kBlockMutexName), sizeof(LOGUTILS::kBlockName)}) {
        const Mirqos::Test::FailingAllocation failing(name * sizeof(wchar_t));
        EXPECT_NO_THROW(EXPECT_EQ(Config().GetLevel(L"a.dll"), -1));
        EXPECT_FALSE(Block());
    }
    ExpectToOpenNow();
}

TEST_F(LogConfigOpening, GivesUpWhenTheMutexIsNotFreeInTime) {
    for (const DWORD result : {static_cast<DWORD>(WAIT_TIMEOUT), WAIT_FAILED}) {
        const CallSpy<&WindowsCalls::waitForSingleObject> waits(
            [&](HANDLE, DWORD) { return result; });
        const CallSpy<&WindowsCalls::releaseMutex> releases;
        const CallSpy<&WindowsCalls::createFileMapping> mappings;
        UseEverything();
        EXPECT_EQ(mappings.Calls(), 0);
        EXPECT_EQ(releases.Calls(), 0);
    }
    ExpectToOpenNow();
}

TEST_F(LogConfigOpening, GoesByTheLocalNameWhenTheGlobalOneIsRefused) {
    const CallSpy<&WindowsCalls::createFileMapping> refused(
        [&](HANDLE file, LPSECURITY_ATTRIBUTES attributes, DWORD protection, DWORD high, DWORD low,
            LPCWSTR name) -> HANDLE {
            if (name == m_process.BlockName()) {
                SetLastError(ERROR_ACCESS_DENIED);
                return nullptr;
            }
            return CreateFileMappingW(file, attributes, protection, high, low, name);
        });
    ExpectToOpenNow();
    EXPECT_EQ(refused.Calls(), 2);
    EXPECT_FALSE(RawBlock(m_process.BlockName(L"Global\\")));
    const RawBlock block(m_process.BlockName(L"Local\\"));
    ASSERT_TRUE(block);
    EXPECT_EQ(block.Fields().Number(0), 59110u);
    EXPECT_EQ(block.Fields().Name(0), u"a.dll");
}

TEST_F(LogConfigOpening, TriesNoOtherNameWhenTheGlobalOneFailsOtherwise) {
    {
        const CallSpy<&WindowsCalls::createFileMapping> failing([](auto&&...) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return HANDLE{};
        });
        Config().RegisterModule(L"a.dll");
        EXPECT_EQ(failing.Calls(), 1);
        UseEverything();
    }
    ExpectToOpenNow();
}

TEST_F(LogConfigOpening, GivesUpWhenBothNamesAreRefused) {
    const CallSpy<&WindowsCalls::releaseMutex> releases;
    {
        const CallSpy<&WindowsCalls::createFileMapping> refused([](auto&&...) {
            SetLastError(ERROR_ACCESS_DENIED);
            return HANDLE{};
        });
        Config().RegisterModule(L"a.dll");
        EXPECT_EQ(refused.Calls(), 2);
        EXPECT_EQ(releases.Calls(), 1);
        UseEverything();
    }
    ExpectToOpenNow();
}

TEST_F(LogConfigOpening, ClearsTheBlockLaterWhenItsFirstViewFailed) {
    {
        const CallSpy<&WindowsCalls::mapViewOfFile> failing(
            [](auto&&...) -> LPVOID { return nullptr; });
        UseEverything();
        EXPECT_GT(failing.Calls(), 0);
    }
    ExpectToOpenNow();
}

TEST_F(LogConfigOpening, GoesOnWithAnAbandonedMutex) {
    const CallSpy<&WindowsCalls::waitForSingleObject> waits([](HANDLE mutex, DWORD limit) {
        EXPECT_EQ(WaitForSingleObject(mutex, limit), WAIT_OBJECT_0);
        return WAIT_ABANDONED;
    });
    const CallSpy<&WindowsCalls::releaseMutex> releases;
    ExpectToOpenNow();
    EXPECT_EQ(waits.Calls(), releases.Calls());
}

// Failures of an operation on the open block.

TEST_F(LogConfig, LeavesTheBlockAloneWhenTheMutexIsNotFreeInTime) {
    Config().RegisterModule(L"b.dll");
    const RawBlock block = Block();
    block.Fields().SetNumber(LogBlockBytes::kGlobalLevelAt, 5);
    const std::string before = block.Copy();
    for (const DWORD result : {static_cast<DWORD>(WAIT_TIMEOUT), WAIT_FAILED}) {
        const CallSpy<&WindowsCalls::waitForSingleObject> waits(
            [&](HANDLE, DWORD) { return result; });
        const CallSpy<&WindowsCalls::releaseMutex> releases;
        const TraceRecording trace;
        UseEverything();
        EXPECT_EQ(releases.Calls(), 0);
        EXPECT_TRUE(trace.Texts().empty());
    }
    EXPECT_TRUE(block.Copy() == before);
}

TEST_F(LogConfig, WorksOnAfterAThreadEndedWhileItHeldTheMutex) {
    Config().RegisterModule(L"a.dll");
    const LOGUTILS::KernelObject mutex(
        OpenMutexW(MUTEX_ALL_ACCESS, FALSE, m_process.MutexName().c_str()));
    ASSERT_TRUE(mutex);
    const auto abandon = [&] {
        std::thread([&] { WaitForSingleObject(mutex.Get(), INFINITE); }).join();
    };
    abandon();
    Config().SetLogPath(L"a.dll", L"C:\\x.Log");
    abandon();
    EXPECT_EQ(PathOf(L"a.dll"), L"C:\\x.Log");
    abandon();
    Config().RegisterModule(L"b.dll");
    abandon();
    EXPECT_EQ(Config().GetLevel(L"b.dll"), -1);
    // released again: another thread gets it
    DWORD result = WAIT_FAILED;
    std::thread([&] {
        result = WaitForSingleObject(mutex.Get(), 0);
        ReleaseMutex(mutex.Get());
    }).join();
    EXPECT_EQ(result, static_cast<DWORD>(WAIT_OBJECT_0));
}

TEST_F(LogConfig, ChecksTheMagicsAlsoAfterTheMutexWasAbandoned) {
    Config().RegisterModule(L"a.dll");
    const RawBlock block = Block();
    block.Fields().SetNumber(LogBlockBytes::kEndMagicAt, 0);
    const LOGUTILS::KernelObject mutex(
        OpenMutexW(MUTEX_ALL_ACCESS, FALSE, m_process.MutexName().c_str()));
    std::thread([&] { WaitForSingleObject(mutex.Get(), INFINITE); }).join();
    const TraceRecording trace;
    EXPECT_EQ(PathOf(L"a.dll"), L"(as it was)");
    EXPECT_EQ(trace.Texts().size(), 1u);
}

class DamagedLogConfig : public LogConfig, public testing::WithParamInterface<std::size_t> {};

TEST_P(DamagedLogConfig, ActsAsIfThereWereNoConfigurationAndSaysSo) {
    Config().RegisterModule(L"a.dll");
    const RawBlock block = Block();
    block.Fields().SetNumber(LogBlockBytes::kGlobalLevelAt, 5);
    block.Fields().SetNumber(GetParam(), 59111);
    const std::string before = block.Copy();
    const std::wstring id = std::to_wstring(m_process.Id());
    const std::wstring text = L"[" + id + L":" + id + L"] Share memory was destroied\r\n";
    const CallSpy<&WindowsCalls::releaseMutex> releases;
    const TraceRecording trace;
    UseEverything();
    EXPECT_EQ(trace.Texts(), std::vector<std::wstring>(6, text));
    EXPECT_EQ(releases.Calls(), 6);
    EXPECT_TRUE(block.Copy() == before);
    block.Fields().SetNumber(GetParam(), 59110);
    EXPECT_EQ(Config().GetLevel(L"a.dll"), 5);
}

INSTANTIATE_TEST_SUITE_P(Magics, DamagedLogConfig,
                         testing::Values(LogBlockBytes::kMagicAt, LogBlockBytes::kEndMagicAt));

TEST_F(LogConfig, SaysNothingOfDamageWhileItHoldsTheMutex) {
    Config().RegisterModule(L"a.dll");
    const RawBlock block = Block();
    block.Fields().SetNumber(LogBlockBytes::kMagicAt, 0);
    static int released;
    released = 0;
    static int releasedBeforeTrace;
    const CallSpy<&WindowsCalls::releaseMutex> releases([](HANDLE mutex) {
        ++released;
        return ReleaseMutex(mutex);
    });
    const auto former =
        LOGUTILS::SetTraceSink([](const wchar_t*) { releasedBeforeTrace = released; });
    Config().GetLevel(L"a.dll");
    LOGUTILS::SetTraceSink(former);
    EXPECT_EQ(releasedBeforeTrace, 1);
}

TEST_F(LogConfig, OutlivesAnyContentOfTheBlock) {
    Config().RegisterModule(L"a.dll");
    const RawBlock block = Block();
    std::mt19937_64 random(20);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same each time
    const std::vector<std::wstring> names = {L"", L"a.dll", std::wstring(200, L'x'), L"\\",
                                             L"\xD800"};
    for (int round = 0; round < 60; ++round) {
        // from a block that is all noise to one in which little is
        const unsigned rarity = 1u << round % 12;
        for (std::size_t i = 0; i < LogBlockBytes::kSize; i += rarity) {
            block.Data()[i] = static_cast<unsigned char>(random() >> 24);
        }
        if (round % 2 == 0) {
            block.Fields().SetNumber(LogBlockBytes::kMagicAt, 59110);
            block.Fields().SetNumber(LogBlockBytes::kEndMagicAt, 59110);
        }
        for (const std::wstring& name : names) {
            EXPECT_LT(PathOf(name).size(), 512u);
            EXPECT_LT(PathOf(name, true).size(), 512u);
            Config().GetLevel(name);
            Config().RegisterModule(name);
            Config().SetLogPath(name, L"C:\\x.Log");
        }
    }
}

TEST_F(LogConfig, ServesManyThreadsFromTheFirstOpeningOn) {
    const CallSpy<&WindowsCalls::createFileMapping> mappings;
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 20; ++i) {
                const std::wstring name = L"m" + std::to_wstring(t) + L"." + std::to_wstring(i);
                const std::wstring path = L"C:\\" + name;
                Config().RegisterModule(name);
                Config().RegisterModule(L"shared.dll");
                Config().SetLogPath(name, path);
                wrong += PathOf(name) == path && Config().GetLevel(name) == -1 ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(mappings.Calls(), 1);
    const RawBlock block = Block();
    EXPECT_NE(block.Fields().Name(160), u"");
    EXPECT_EQ(block.Fields().Name(161), u"");
}

}  // namespace
