#include <gtest/gtest.h>

#include <string>

#include "log/dbg/LogFilePath.h"
#include "log/dbg/win32/CLogConfig.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/LogConfigTestAccess.h"
#include "tests/support/win32/PrivateRegistry.h"
#include "tests/support/win32/RawBlock.h"

namespace {

using LOGUTILS::WindowsCalls;
using Mirqos::Test::CallSpy;
using Mirqos::Test::PrivateRegistry;
using Mirqos::Test::RawBlock;
using NSDBG::CLogConfig;
using NSDBG::LogConfigTestAccess;

// What is computed when the singleton is created.

TEST(LogConfigFactsTest, AreTheInstallKindsAndTheLogRootOfTheMachineAsItWas) {
    PrivateRegistry registry;
    const auto without = LogConfigTestAccess::New();
    EXPECT_EQ(without->InstallKinds(), 0u);
    const std::wstring folder(LOGUTILS::FolderOf(LOGUTILS::ExecutablePath()));
    EXPECT_EQ(without->LogRoot(), folder + L"\\Logs\\");

    registry.SetText(L"SOFTWARE\\Quorvane\\Halvestor\\Engine\\InstallPath", L"Path",
                     folder.substr(0, 3));
    const auto with = LogConfigTestAccess::New();
    EXPECT_EQ(with->InstallKinds(), 5u);
    EXPECT_EQ(with->LogRoot(), folder.substr(0, 3) + L"Logs\\");
    EXPECT_EQ(without->InstallKinds(), 0u);
    EXPECT_EQ(without->LogRoot(), folder + L"\\Logs\\");
}

TEST(LogConfigFactsTest, ComeFromNoKeyOfTheProductInWindowsPe) {
    PrivateRegistry registry;
    registry.SetText(L"SYSTEM\\Setup", L"CmdLine", L"winpeshl.exe");
    registry.SetText(L"SOFTWARE\\Quorvane\\Halvestor\\Engine\\InstallPath", L"Path", L"C:\\");
    const CallSpy<&WindowsCalls::regOpenKey> spy;
    const auto config = LogConfigTestAccess::New();
    EXPECT_EQ(spy.Calls(), 1);
    EXPECT_EQ(config->InstallKinds(), 8u);
    const std::wstring folder(LOGUTILS::FolderOf(LOGUTILS::ExecutablePath()));
    EXPECT_EQ(config->LogRoot(), folder + L"\\Log\\");
}

TEST(LogConfigInstanceTest, IsOneForTheProcessAndNamedAfterIt) {
    CLogConfig& instance = CLogConfig::Instance();
    EXPECT_EQ(&instance, &CLogConfig::Instance());
    instance.RegisterModule(L"instance.dll");
    const RawBlock block(L"Global\\LOGCFG_SM_NAME_C8AAE32A-9619-4685-B766-F003823BEEE3_" +
                         std::to_wstring(GetCurrentProcessId()));
    ASSERT_TRUE(block);
    EXPECT_EQ(block.Fields().Number(0), 59110u);
}

}  // namespace
