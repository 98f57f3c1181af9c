#include "log/dbg/win32/ProductInstall.h"

#include <gtest/gtest.h>

#include <process.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "log/dbg/LogConfigBlock.h"
#include "log/dbg/LogFilePath.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "tests/support/win32/CallSpy.h"
#include "tests/support/win32/LogFolder.h"
#include "tests/support/win32/PrivateRegistry.h"

namespace {

using namespace LOGUTILS;
using Mirqos::Test::CallSpy;
using Mirqos::Test::LogFolder;
using Mirqos::Test::PrivateRegistry;

const std::wstring kProduct = L"SOFTWARE\\Quorvane\\Halvestor";
const std::wstring kEngineKey = kProduct + L"\\Engine";
const std::wstring kManagementKey = kProduct + L"\\Management";
constexpr unsigned kEngineInstalled = kEngine | kUpdateManager;
constexpr unsigned kManagementInstalled = kManagement | kUpdateManager;

std::wstring OwnFolder() {
    const std::wstring path = LibraryPath();
    return std::wstring(FolderOf(path));
}

class ProductInstall : public testing::Test {
protected:
    void RunInWindowsPe() {
        m_registry.SetText(L"SYSTEM\\Setup", L"CmdLine", L"X:\\Windows\\winpeshl.exe -x");
    }
    void SetLevels(const std::wstring& name, std::uint32_t engine, std::uint32_t management,
                   std::uint32_t product) {
        m_registry.SetNumber(kEngineKey + L"\\Debug", name, engine);
        m_registry.SetNumber(kManagementKey + L"\\Debug", name, management);
        m_registry.SetNumber(kProduct + L"\\Debug", name, product);
    }
    // As a new process would read it.
    static std::int32_t Level(const std::wstring& name, unsigned kinds) {
        return RegistryLevels().LevelOf(name, kinds);
    }

    PrivateRegistry m_registry;
};

using InstallKinds = ProductInstall;

TEST_F(InstallKinds, AreNoneOnAMachineWithoutTheProduct) {
    EXPECT_EQ(ReadInstallKinds(), 0u);
    m_registry.AddKey(kProduct);
    EXPECT_EQ(ReadInstallKinds(), 0u);
}

TEST_F(InstallKinds, FollowFromTheComponentsKeys) {
    m_registry.AddKey(kEngineKey);
    EXPECT_EQ(ReadInstallKinds(), 1u | 4u);
    m_registry.AddKey(kManagementKey);
    EXPECT_EQ(ReadInstallKinds(), 1u | 2u | 4u);
    m_registry.Remove(kEngineKey);
    EXPECT_EQ(ReadInstallKinds(), 2u | 4u);
}

TEST_F(InstallKinds, StandAloneInWindowsPeWhereNoKeyOfTheProductIsLookedAt) {
    m_registry.AddKey(kEngineKey);
    RunInWindowsPe();
    std::vector<std::wstring> opened;
    const CallSpy<&WindowsCalls::regOpenKey> spy(
        [&](HKEY root, LPCWSTR key, DWORD options, REGSAM access, PHKEY result) {
            opened.emplace_back(key);
            return RegOpenKeyExW(root, key, options, access, result);
        });
    EXPECT_EQ(ReadInstallKinds(), 8u);
    EXPECT_EQ(ReadComponentKind(8), 8u);
    EXPECT_EQ(Level(L"a.dll", 8), -1);
    EXPECT_EQ(ReadProductVersion(8), std::nullopt);
    EXPECT_FALSE(DisableGlobalOption(8).Lists(L"a.exe"));
    EXPECT_EQ(opened, std::vector<std::wstring>{L"SYSTEM\\Setup"});
}

TEST_F(InstallKinds, TakeTheNameOfTheShellOfWindowsPeToTheLetter) {
    m_registry.AddKey(kEngineKey);
    m_registry.SetText(L"SYSTEM\\Setup", L"CmdLine", L"WinPeShl.exe");
    EXPECT_EQ(ReadInstallKinds(), 5u);
    m_registry.SetText(L"SYSTEM\\Setup", L"CmdLine", L"");
    EXPECT_EQ(ReadInstallKinds(), 5u);
    m_registry.SetNumber(L"SYSTEM\\Setup", L"CmdLine", 1);
    EXPECT_EQ(ReadInstallKinds(), 5u);
    m_registry.SetText(L"SYSTEM\\Setup", L"CmdLine", L"winpeshl.exe");
    EXPECT_EQ(ReadInstallKinds(), 8u);
}

using InstalledPaths = ProductInstall;

TEST_F(InstalledPaths, StandInTheKeysOfTheComponents) {
    m_registry.SetText(kEngineKey + L"\\InstallPath", L"Path", L"C:\\Engine");
    m_registry.SetText(kManagementKey, L"Path", L"C:\\Console\\");
    m_registry.SetText(kProduct, L"RootPath", L"C:\\Root");
    const InstallPaths paths = ReadInstallPaths();
    EXPECT_EQ(paths.m_engine, L"C:\\Engine");
    EXPECT_EQ(paths.m_management, L"C:\\Console\\");
    EXPECT_EQ(paths.m_updateManager, L"C:\\Root\\Update Manager");
    m_registry.SetText(kProduct, L"RootPath", L"C:\\Root\\");
    EXPECT_EQ(ReadInstallPaths().m_updateManager, L"C:\\Root\\Update Manager");
}

TEST_F(InstalledPaths, AreEmptyWhereTheyAreMissingOrOfAnotherType) {
    m_registry.SetNumber(kEngineKey + L"\\InstallPath", L"Path", 1);
    m_registry.SetText(kManagementKey + L"\\InstallPath", L"Path", L"not read");
    const InstallPaths paths = ReadInstallPaths();
    EXPECT_EQ(paths.m_engine, L"");
    EXPECT_EQ(paths.m_management, L"");
    EXPECT_EQ(paths.m_updateManager, L"");
}

using ComponentKind = ProductInstall;

TEST_F(ComponentKind, IsThatOfTheFirstInstallPathThatTheLibraryLiesUnder) {
    const std::wstring own = OwnFolder();
    m_registry.SetText(kManagementKey, L"Path", UpperCase(own));
    EXPECT_EQ(ReadComponentKind(kManagementInstalled), 2u);
    m_registry.SetText(kEngineKey + L"\\InstallPath", L"Path", own);
    EXPECT_EQ(ReadComponentKind(kEngineInstalled | kManagementInstalled), 1u);
}

TEST_F(ComponentKind, IsPromotedForTheUpdateManagerAndForLibrariesOfNoComponent) {
    EXPECT_EQ(ReadComponentKind(kEngineInstalled | kManagementInstalled), 1u);
    EXPECT_EQ(ReadComponentKind(kEngineInstalled), 1u);
    EXPECT_EQ(ReadComponentKind(kManagementInstalled), 2u);
    EXPECT_EQ(ReadComponentKind(kNoComponent), 0u);
}

using LevelOfAName = ProductInstall;

TEST_F(LevelOfAName, IsReadFromTheKeyOfTheLibrarysComponent) {
    SetLevels(L"a.dll", 11, 12, 13);
    m_registry.SetText(kManagementKey, L"Path", OwnFolder());
    EXPECT_EQ(Level(L"a.dll", kEngineInstalled | kManagementInstalled), 12);
    m_registry.SetText(kEngineKey + L"\\InstallPath", L"Path", OwnFolder());
    EXPECT_EQ(Level(L"a.dll", kEngineInstalled | kManagementInstalled), 11);
}

TEST_F(LevelOfAName, IsThatOfTheEngineOrElseTheConsoleForALibraryOfNoComponent) {
    SetLevels(L"a.dll", 11, 12, 13);
    EXPECT_EQ(Level(L"a.dll", kEngineInstalled | kManagementInstalled), 11);
    EXPECT_EQ(Level(L"a.dll", kManagementInstalled), 12);
}

// The process has to lie in such a folder, so a copy of this program does the asking.
TEST_F(LevelOfAName, IsReadFromTheProductsKeyForAnUpdateManagerThatStandsAlone) {
    const std::wstring own = OwnFolder();
    if (FileNameOf(own) == L"Update Manager") {
        SetLevels(L"a.dll", 11, 12, 13);
        m_registry.SetText(kProduct, L"RootPath", std::wstring(FolderOf(own)));
        EXPECT_EQ(ReadComponentKind(kNoComponent), 4u);
        EXPECT_EQ(Level(L"a.dll", kNoComponent), 13);
        EXPECT_EQ(Level(L"a.dll", kEngineInstalled), 11);
        EXPECT_EQ(Level(L"a.dll", kManagementInstalled), 12);
        return;
    }
    const LogFolder root;
    const std::wstring folder = root.PathOf(L"Update Manager");
    const std::wstring copy = folder + L"\\copy.exe";
    ASSERT_NE(CreateDirectoryW(folder.c_str(), nullptr), 0);
    ASSERT_NE(CopyFileW(LibraryPath().c_str(), copy.c_str(), TRUE), 0);
    EXPECT_EQ(_wspawnl(_P_WAIT, copy.c_str(), L"copy.exe",
                       L"--gtest_filter=*AnUpdateManagerThatStandsAlone", nullptr),
              0);
    DeleteFileW(copy.c_str());
    RemoveDirectoryW(folder.c_str());
}

TEST_F(LevelOfAName, IsNotReadWhereNothingIsInstalled) {
    SetLevels(L"a.dll", 11, 12, 13);
    EXPECT_EQ(Level(L"a.dll", kNoComponent), -1);
    EXPECT_EQ(Level(L"a.dll", kWindowsPe), -1);
}

TEST_F(LevelOfAName, IsMinusOneWhereTheValueIsMissingOrOfAnotherType) {
    m_registry.SetText(kEngineKey + L"\\Debug", L"text.dll", L"3");
    EXPECT_EQ(Level(L"text.dll", kEngineInstalled), -1);
    EXPECT_EQ(Level(L"missing.dll", kEngineInstalled), -1);
    EXPECT_EQ(Level(L"", kEngineInstalled), -1);
}

TEST_F(LevelOfAName, IsTheNumberAsItStandsThere) {
    m_registry.SetNumber(kEngineKey + L"\\Debug", L"none.dll", 0xFFFFFFFFu);
    m_registry.SetNumber(kEngineKey + L"\\Debug", L"zero.dll", 0);
    EXPECT_EQ(Level(L"none.dll", kEngineInstalled), -1);
    EXPECT_EQ(Level(L"zero.dll", kEngineInstalled), 0);
}

TEST_F(LevelOfAName, StaysWhatItWasWhenItWasReadFirst) {
    RegistryLevels levels;
    m_registry.SetNumber(kEngineKey + L"\\Debug", L"a.dll", 3);
    EXPECT_EQ(levels.LevelOf(L"a.dll", kEngineInstalled), 3);
    EXPECT_EQ(levels.LevelOf(L"later.dll", kEngineInstalled), -1);
    m_registry.SetNumber(kEngineKey + L"\\Debug", L"a.dll", 5);
    m_registry.SetNumber(kEngineKey + L"\\Debug", L"later.dll", 5);
    const CallSpy<&WindowsCalls::regOpenKey> spy;
    EXPECT_EQ(levels.LevelOf(L"a.dll", kEngineInstalled), 3);
    EXPECT_EQ(levels.LevelOf(L"later.dll", kEngineInstalled), -1);
    EXPECT_EQ(spy.Calls(), 0);
}

TEST_F(LevelOfAName, IsReadOnceHoweverManyThreadsAsk) {
    m_registry.SetNumber(kEngineKey + L"\\Debug", L"a.dll", 3);
    RegistryLevels levels;
    std::atomic<int> reads{0};
    const CallSpy<&WindowsCalls::regOpenKey> spy(
        [&](HKEY root, LPCWSTR key, DWORD options, REGSAM access, PHKEY result) {
            reads += key == kEngineKey + L"\\Debug" ? 1 : 0;
            return RegOpenKeyExW(root, key, options, access, result);
        });
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back(
            [&] { wrong += levels.LevelOf(L"a.dll", kEngineInstalled) == 3 ? 0 : 1; });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(reads, 1);
}

TEST_F(LevelOfAName, IsKeptForTheWholeProcess) {
    m_registry.SetNumber(kEngineKey + L"\\Debug", L"process.dll", 3);
    EXPECT_EQ(RegistryLevel(L"process.dll", kEngineInstalled), 3);
    m_registry.SetNumber(kEngineKey + L"\\Debug", L"process.dll", 5);
    EXPECT_EQ(RegistryLevel(L"process.dll", kEngineInstalled), 3);
}

using ExecutablesThatIgnoreTheGlobalPath = ProductInstall;

TEST_F(ExecutablesThatIgnoreTheGlobalPath, StandBetweenBlanksInAnyLetterCase) {
    m_registry.SetText(kEngineKey + L"\\Debug", L"DisableGlobalOption", L"a.exe  B.EXE ");
    const DisableGlobalOption option(kEngineInstalled);
    EXPECT_TRUE(option.Lists(L"a.exe"));
    EXPECT_TRUE(option.Lists(L"A.Exe"));
    EXPECT_TRUE(option.Lists(L"b.exe"));
    EXPECT_FALSE(option.Lists(L"a"));
    EXPECT_FALSE(option.Lists(L"a.exe  B.EXE"));
    EXPECT_FALSE(option.Lists(L""));
}

TEST_F(ExecutablesThatIgnoreTheGlobalPath, AreListedForTheEngineWhateverIsInstalled) {
    m_registry.SetText(kEngineKey + L"\\Debug", L"DisableGlobalOption", L"a.exe");
    EXPECT_TRUE(DisableGlobalOption(kNoComponent).Lists(L"a.exe"));
    EXPECT_TRUE(DisableGlobalOption(kManagementInstalled).Lists(L"a.exe"));
}

TEST_F(ExecutablesThatIgnoreTheGlobalPath, AreNoneWhereTheOptionIsMissingOrOfAnotherType) {
    EXPECT_FALSE(DisableGlobalOption(kEngineInstalled).Lists(L"a.exe"));
    m_registry.SetNumber(kEngineKey + L"\\Debug", L"DisableGlobalOption", 1);
    EXPECT_FALSE(DisableGlobalOption(kEngineInstalled).Lists(L"a.exe"));
}

TEST_F(ExecutablesThatIgnoreTheGlobalPath, AreReadOnceInAProcess) {
    // perhaps for the first time: the module log may have asked before
    const bool first = IsGlobalPathDisabled(L"a.exe", kEngineInstalled);
    m_registry.SetText(kEngineKey + L"\\Debug", L"DisableGlobalOption", L"a.exe");
    const CallSpy<&WindowsCalls::regOpenKey> spy;
    EXPECT_EQ(IsGlobalPathDisabled(L"a.exe", kEngineInstalled), first);
    EXPECT_EQ(spy.Calls(), 0);
}

using VersionRecord = ProductInstall;

struct Triple {
    std::uint32_t major;
    std::uint32_t minor;
    std::uint32_t update;
};

void ExpectVersion(unsigned kind, const Triple& expected) {
    const auto version = ReadProductVersion(kind);
    ASSERT_TRUE(version.has_value());
    EXPECT_EQ(version->m_dwMajor, expected.major);
    EXPECT_EQ(version->m_dwMinor, expected.minor);
    EXPECT_EQ(version->m_dwUpdate, expected.update);
}

TEST_F(VersionRecord, OfTheEngineIsThreeNumbers) {
    const std::wstring key = kEngineKey + L"\\Version";
    m_registry.SetNumber(key, L"Major", 12);
    EXPECT_EQ(ReadProductVersion(1), std::nullopt);
    m_registry.SetNumber(key, L"Minor", 5);
    ExpectVersion(1, {12, 5, 0});
    m_registry.SetNumber(key, L"UpdateVersionNumber", 3);
    ExpectVersion(1, {12, 5, 3});
    EXPECT_EQ(ReadProductVersion(2), std::nullopt);
}

TEST_F(VersionRecord, OfTheConsoleIsATextWithADotOrANumberOfTwoHalves) {
    const std::wstring key = kManagementKey + L"\\Console";
    m_registry.SetNumber(key, L"UpdateVersionNumber", 4);
    EXPECT_EQ(ReadProductVersion(2), std::nullopt);
    m_registry.SetText(key, L"Version", L"12.5");
    ExpectVersion(2, {12, 5, 4});
    m_registry.SetText(key, L"Version", L"new");
    EXPECT_EQ(ReadProductVersion(2), std::nullopt);
    m_registry.SetNumber(key, L"Version", 0x000D0002);
    ExpectVersion(2, {13, 2, 4});
}

TEST_F(VersionRecord, OfTheUpdateManagerIsTheEnginesOrElseTheConsoles) {
    EXPECT_EQ(ReadProductVersion(4), std::nullopt);
    m_registry.SetText(kManagementKey + L"\\Console", L"Version", L"9.1");
    ExpectVersion(4, {9, 1, 0});
    m_registry.SetNumber(kEngineKey + L"\\Version", L"Major", 12);
    ExpectVersion(4, {9, 1, 0});
    m_registry.SetNumber(kEngineKey + L"\\Version", L"Minor", 0);
    ExpectVersion(4, {12, 0, 0});
}

TEST_F(VersionRecord, IsMissingForEveryOtherKind) {
    m_registry.SetNumber(kEngineKey + L"\\Version", L"Major", 12);
    m_registry.SetNumber(kEngineKey + L"\\Version", L"Minor", 5);
    EXPECT_EQ(ReadProductVersion(0), std::nullopt);
    EXPECT_EQ(ReadProductVersion(8), std::nullopt);
    EXPECT_EQ(ReadProductVersion(5), std::nullopt);
}

}  // namespace
