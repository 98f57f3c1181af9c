#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "log/dbg/win32/CLogConfig.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "tests/support/win32/FileOutputTest.h"
#include "tests/support/win32/PrivateRegistry.h"

namespace Mirqos::Test {
namespace {

using Access = NSDBG::FileOutputTestAccess;
using NSDBG::CFileOutput;

/// A machine on which the engine of the product is installed in this program's folder. A process
/// reads most of its registry once, so all tests here share one.
class InstalledEngine {
protected:
    InstalledEngine() {
        const std::wstring engine = L"SOFTWARE\\Quorvane\\Halvestor\\Engine";
        m_registry.SetText(engine + L"\\InstallPath", L"Path",
                           std::wstring(LOGUTILS::FolderOf(LOGUTILS::LibraryPath())));
        m_registry.SetNumber(engine + L"\\Version", L"Major", 12);
        m_registry.SetNumber(engine + L"\\Version", L"Minor", 5);
        m_registry.SetNumber(engine + L"\\Debug", LOGUTILS::ExecutableName(), 1);
        m_registry.SetText(engine + L"\\Debug", L"DisableGlobalOption",
                           L"other.exe " + LOGUTILS::UpperCase(LOGUTILS::ExecutableName()));
    }

private:
    PrivateRegistry m_registry;
};

class FileOutputOfTheProduct : public InstalledEngine, public FileOutputTest {};

TEST_F(FileOutputOfTheProduct, BeginsAtTheLevelOfTheRegistry) {
    CFileOutput output;
    EXPECT_EQ(Access::Level(output), 1);
    output.Write(2, 0, "dropped");
    output.Write(1, 0, "written");
    EXPECT_EQ(MessagesOf(m_path).size(), 1u);
}

TEST_F(FileOutputOfTheProduct, TakesALevelOfTheBlockInsteadOfThatOfTheRegistry) {
    SetLevel(3);
    CFileOutput output;
    EXPECT_EQ(output.GetLevel(), 3);
    SetLevel(-1);
    EXPECT_EQ(output.GetLevel(), 3) << "kept";
    EXPECT_EQ(CFileOutput().GetLevel(), 1);
}

TEST_F(FileOutputOfTheProduct, IgnoresTheSharedPathInAListedProcess) {
    EditEntry([](LOGUTILS::LogModuleEntry& entry) { entry.m_dwFlags = 0xFFFF; });
    SetGlobalPath(PathOf(L"all.Log"));
    CFileOutput output;
    EXPECT_TRUE(Access::IgnoresGlobalPath(output));
    EXPECT_EQ(Access::Path(output), ConfiguredPath());
    EXPECT_NE(ConfiguredPath(), PathOf(L"all.Log"));
    SetPath(m_path);
    Access::PutPath(output, m_path);
    output.Write(1, 0, "own");
    EXPECT_EQ(m_folder.Names(), std::vector<std::wstring>{L"a.dll.Log"});
}

TEST_F(FileOutputOfTheProduct, TellsTheVersionOfTheProduct) {
    CFileOutput().Write(1, 0, "message");
    const std::vector<std::wstring> lines = LinesOf(m_path);
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(WithoutTime(lines[2]),
              PrefixWithoutTime(1) +
                  L"Product Info: [Quorvane (USA) LLC] [quorvane Halvestor] Ver[r12.5]");
}

}  // namespace
}  // namespace Mirqos::Test
