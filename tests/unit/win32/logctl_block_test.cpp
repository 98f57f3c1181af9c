#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/InventedProcess.h"
#include "tests/support/win32/LogConfigTestAccess.h"
#include "tests/support/win32/RawBlock.h"
#include "tools/mirqos-logctl/Command.h"
#include "tools/mirqos-logctl/Edit.h"
#include "tools/mirqos-logctl/Failure.h"
#include "tools/mirqos-logctl/ProcessBlock.h"
#include "tools/mirqos-logctl/Processes.h"

namespace {

using namespace Mirqos::LogControl;
using LOGUTILS::LogConfigBlock;
using LOGUTILS::WindowsCalls;
using Mirqos::Test::CallSpy;
using Mirqos::Test::InventedProcess;
using Mirqos::Test::LogBlockBytes;
using Mirqos::Test::RawBlock;

class LogControlBlock : public testing::Test {
protected:
    LogControlBlock() { m_config->RegisterModule(L"a.dll"); }

    // How an edit of the process's block ends.
    ExitCode Edit() const {
        try {
            ProcessBlock(m_process.Id()).Hold([](LogConfigBlock& block) {
                block.m_nGlobalLevel = 5;
            });
            return ExitCode::Success;
        } catch (const Failure& failure) {
            EXPECT_NE(std::string(failure.what()).find(std::to_string(m_process.Id())),
                      std::string::npos);
            EXPECT_EQ(std::string(failure.what()).find('\n'), std::string::npos);
            return failure.Code();
        }
    }

    InventedProcess m_process;
    NSDBG::LogConfigTestAccess::Instance m_config = NSDBG::LogConfigTestAccess::New();
};

TEST_F(LogControlBlock, IsFoundUnderTheGlobalName) {
    EXPECT_TRUE(HasBlock(m_process.Id()));
    EXPECT_EQ(Edit(), ExitCode::Success);
    EXPECT_EQ(m_config->GetLevel(L"a.dll"), 5);
}

TEST_F(LogControlBlock, IsFoundUnderTheLocalNameWhereTheGlobalOneWasRefused) {
    const InventedProcess* const process = &m_process;
    const auto config = NSDBG::LogConfigTestAccess::New();
    m_config.reset();
    const CallSpy<&WindowsCalls::createFileMapping> refused(
        [=](HANDLE file, LPSECURITY_ATTRIBUTES attributes, DWORD protection, DWORD high, DWORD low,
            LPCWSTR name) -> HANDLE {
            if (name == process->BlockName()) {
                SetLastError(ERROR_ACCESS_DENIED);
                return nullptr;
            }
            return CreateFileMappingW(file, attributes, protection, high, low, name);
        });
    config->RegisterModule(L"a.dll");
    EXPECT_TRUE(HasBlock(m_process.Id()));
    EXPECT_EQ(Edit(), ExitCode::Success);
    EXPECT_EQ(config->GetLevel(L"a.dll"), 5);
}

TEST_F(LogControlBlock, IsMissedWhereAProcessHasNone) {
    m_config.reset();
    EXPECT_FALSE(HasBlock(m_process.Id()));
    EXPECT_EQ(Edit(), ExitCode::NoBlock);
}

TEST_F(LogControlBlock, IsRefusedWhereWindowsRefusesIt) {
    {
        const CallSpy<&WindowsCalls::openFileMapping> refused([](auto&&...) {
            SetLastError(ERROR_ACCESS_DENIED);
            return HANDLE{};
        });
        EXPECT_EQ(Edit(), ExitCode::SystemRefused);
        EXPECT_FALSE(HasBlock(m_process.Id()));
    }
    {
        const CallSpy<&WindowsCalls::mapViewOfFile> refused(
            [](auto&&...) -> LPVOID { return nullptr; });
        EXPECT_EQ(Edit(), ExitCode::SystemRefused);
    }
    {
        const CallSpy<&WindowsCalls::openMutex> refused([](auto&&...) { return HANDLE{}; });
        EXPECT_EQ(Edit(), ExitCode::SystemRefused);
    }
    {
        const CallSpy<&WindowsCalls::waitForSingleObject> failing(
            [](auto&&...) { return WAIT_FAILED; });
        EXPECT_EQ(Edit(), ExitCode::SystemRefused);
    }
    EXPECT_EQ(m_config->GetLevel(L"a.dll"), -1);
}

TEST_F(LogControlBlock, IsLeftAloneWhenItIsInUseForFiveSeconds) {
    const CallSpy<&WindowsCalls::waitForSingleObject> waits([](HANDLE, DWORD limit) {
        EXPECT_EQ(limit, 5000u);
        return static_cast<DWORD>(WAIT_TIMEOUT);
    });
    const CallSpy<&WindowsCalls::releaseMutex> releases;
    EXPECT_EQ(Edit(), ExitCode::Busy);
    EXPECT_EQ(releases.Calls(), 0);
}

TEST_F(LogControlBlock, IsUsedAfterAnOwnerThatEndedAndGivenBack) {
    const LOGUTILS::KernelObject mutex(
        OpenMutexW(MUTEX_ALL_ACCESS, FALSE, m_process.MutexName().c_str()));
    std::thread([&] { WaitForSingleObject(mutex.Get(), INFINITE); }).join();
    EXPECT_EQ(Edit(), ExitCode::Success);
    std::thread([&] { EXPECT_EQ(m_config->GetLevel(L"a.dll"), 5); }).join();
}

TEST_F(LogControlBlock, IsLeftAloneWhenItIsDamagedAndTheMutexGivenBack) {
    const RawBlock block(m_process.BlockName());
    for (const std::size_t magic : {LogBlockBytes::kMagicAt, LogBlockBytes::kEndMagicAt}) {
        block.Fields().SetNumber(magic, 1);
        const std::string before = block.Copy();
        const CallSpy<&WindowsCalls::releaseMutex> releases;
        EXPECT_EQ(Edit(), ExitCode::Damaged);
        EXPECT_EQ(releases.Calls(), 1);
        EXPECT_TRUE(block.Copy() == before);
        block.Fields().SetNumber(magic, 59110);
    }
}

TEST_F(LogControlBlock, IsRefusedWhereItIsTooSmall) {
    m_config.reset();
    const RawBlock block(m_process.BlockName(), 4096);
    EXPECT_EQ(Edit(), ExitCode::SystemRefused);
}

// A module's library registers it again with each output that it makes.
TEST_F(LogControlBlock, LeavesModulesWhereTheyAreWhenTheyRegisterAfterOneLeftThePathOfAll) {
    const auto registerAll = [&] {
        for (const wchar_t* const name : {L"a.dll", L"b.dll", L"c.dll"}) {
            m_config->RegisterModule(name);
        }
    };
    const auto edit = [&](const std::vector<std::string>& line) {
        ProcessBlock(m_process.Id()).Hold([&](LogConfigBlock& block) {
            Mirqos::LogControl::Edit(block, ReadCommand(line), false);
        });
    };
    const auto pathOf = [&](const wchar_t* name) {
        wchar_t path[LOGUTILS::kPathRoom] = {};
        m_config->GetLogPath(name, path, false);
        return std::wstring(path);
    };
    registerAll();
    const std::wstring ownOfC = pathOf(L"c.dll");
    edit({"set-path", "1", "--all", "C:\\all.Log"});
    edit({"set-path", "1", "a.dll", "C:\\own.Log"});
    registerAll();
    EXPECT_EQ(pathOf(L"a.dll"), L"C:\\own.Log");
    EXPECT_EQ(pathOf(L"b.dll"), L"C:\\all.Log");
    EXPECT_EQ(pathOf(L"c.dll"), L"C:\\all.Log");
    edit({"set-path", "1", "--all", "C:\\new.Log"});
    edit({"unfollow", "1", "a.dll", "path"});
    registerAll();
    EXPECT_EQ(pathOf(L"a.dll"), L"C:\\own.Log");
    EXPECT_EQ(pathOf(L"b.dll"), L"C:\\new.Log");
    edit({"clear-path", "1", "c.dll"});
    registerAll();
    EXPECT_EQ(pathOf(L"b.dll"), L"C:\\new.Log");
    EXPECT_EQ(pathOf(L"c.dll"), ownOfC);
}

TEST(LogControlProcessesTest, HoldThisOneAndOnlyThoseThatRun) {
    const Process own = FindProcess(GetCurrentProcessId());
    EXPECT_EQ(own.executable, L"unit.logctl_block.exe");
    EXPECT_THROW(FindProcess(0xFFFFFFFFu), Failure);
}

TEST(LogControlProcessesTest, MayHaveNoBlock) {
    const auto processes = RunningProcesses();
    const auto services =
        std::find_if(processes.begin(), processes.end(),
                     [](const Process& process) { return process.executable == L"services.exe"; });
    ASSERT_NE(services, processes.end());
    EXPECT_FALSE(HasBlock(services->id));
    try {
        ProcessBlock block(services->id);
        ADD_FAILURE();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::NoBlock);
        EXPECT_EQ(failure.what(),
                  "process " + std::to_string(services->id) + " has no log configuration block");
    }
}

}  // namespace
