#include "log/dbg/win32/MachineFacts.h"

#include <gtest/gtest.h>

#include <string>

#include "log/dbg/InstallKinds.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "tests/support/win32/FileOutputTest.h"
#include "tests/support/win32/PrivateRegistry.h"

namespace Mirqos::Test {
namespace {

using namespace LOGUTILS;

const std::wstring kProduct = L"SOFTWARE\\Quorvane\\Halvestor";

std::string Text(const ProductVersion& version) {
    return std::to_string(version.m_dwMajor) + "." + std::to_string(version.m_dwMinor) + " " +
           std::to_string(version.m_dwUpdate);
}

/// Which version the header of a log file tells. This program's own is 7.3.21.1282, in its
/// resource: 1282 holds the update number 5 in its high byte.
class VersionInHeader : public testing::Test {
protected:
    static constexpr char kOwnVersion[] = "7.3 5";

    static std::string Version(unsigned nInstallKinds) {
        return Text(ReadSummaryFacts(nInstallKinds).m_version);
    }
    void RecordEngine() {
        m_registry.SetNumber(kProduct + L"\\Engine\\Version", L"Major", 12);
        m_registry.SetNumber(kProduct + L"\\Engine\\Version", L"Minor", 5);
        m_registry.SetNumber(kProduct + L"\\Engine\\Version", L"UpdateVersionNumber", 3);
    }
    void RecordManagement() {
        m_registry.SetText(kProduct + L"\\Management\\Console", L"Version", L"13.1");
        m_registry.SetNumber(kProduct + L"\\Management\\Console", L"UpdateVersionNumber", 2);
    }

    PrivateRegistry m_registry;
};

TEST_F(VersionInHeader, IsTheExecutablesWhereNothingIsInstalled) {
    EXPECT_EQ(Version(kNoComponent), kOwnVersion);
}

TEST_F(VersionInHeader, IsTheExecutablesInWindowsPe) {
    RecordEngine();
    EXPECT_EQ(Version(kWindowsPe), kOwnVersion);
}

TEST_F(VersionInHeader, IsTheEnginesWhereItIsInstalled) {
    RecordEngine();
    RecordManagement();
    EXPECT_EQ(Version(kEngine | kUpdateManager), "12.5 3");
    EXPECT_EQ(Version(kEngine | kManagement | kUpdateManager), "12.5 3");
}

TEST_F(VersionInHeader, IsTheManagementConsolesWhereThatIsInstalledAlone) {
    RecordManagement();
    EXPECT_EQ(Version(kManagement | kUpdateManager), "13.1 2");
}

TEST_F(VersionInHeader, IsZeroWhereTheRecordOfTheInstalledComponentIsMissing) {
    EXPECT_EQ(Version(kEngine | kUpdateManager), "0.0 0");
    EXPECT_EQ(Version(kManagement | kUpdateManager), "0.0 0");
}

TEST_F(VersionInHeader, IsThatOfTheComponentTheLibraryLiesIn) {
    RecordEngine();
    RecordManagement();
    const std::wstring folder(FolderOf(LibraryPath()));
    m_registry.SetText(kProduct + L"\\Management", L"Path", folder);
    EXPECT_EQ(Version(kEngine | kManagement | kUpdateManager), "13.1 2");
}

class VersionInLines : public FileOutputTest {};

TEST_F(VersionInLines, TheHeaderHasTheUpdateAndTheTagTheBuildAndTheRevision) {
    const PrivateRegistry registry;
    NSDBG::CFileOutput output;
    EXPECT_EQ(NSDBG::FileOutputTestAccess::ModuleVersion(output), 0u);
    output.Write(1, 0, "message");
    EXPECT_EQ(NSDBG::FileOutputTestAccess::ModuleVersion(output), 21u << 16 | 1282u);
    const std::vector<std::wstring> lines = LinesOf(m_path);
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(WithoutTime(lines[2]),
              PrefixWithoutTime(2) +
                  L"Product Info: [Quorvane (USA) LLC] [quorvane Halvestor] Ver[r7.3 (Update 5)]");
    EXPECT_EQ(WithoutTime(lines[7]), PrefixWithoutTime(1) + L"message   {" + ExecutableName() +
                                         L"::" + LibraryName() + L"(21.1282)}");
}

TEST_F(VersionInLines, TheVersionIsReadOnlyWhileItIsZero) {
    NSDBG::CFileOutput output;
    NSDBG::FileOutputTestAccess::PutModuleVersion(output, 1);
    output.Write(1, 0, "known");
    NSDBG::FileOutputTestAccess::PutModuleVersion(output, 0);
    output.Write(1, 0, "read");
    const std::vector<std::wstring> lines = MessagesOf(m_path);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_NE(lines[0].find(L"known   {" + ExecutableName() + L"::" + LibraryName() + L"(0.1)}"),
              std::wstring::npos);
    EXPECT_NE(lines[1].find(L"read   {" + ExecutableName() + L"::" + LibraryName() + L"(21.1282)}"),
              std::wstring::npos);
}

}  // namespace
}  // namespace Mirqos::Test
