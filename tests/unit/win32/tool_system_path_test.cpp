#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

#include "tools/mirqos/LocalFile.h"
#include "tools/mirqos/win32/FileStatus.h"

namespace Mirqos::Tool {
namespace {

namespace fs = std::filesystem;

TEST(ToolSystemPath, ARelativeNameCountsWithTheFolderThatItIsRelativeTo) {
    const fs::path before = fs::current_path();
    const fs::path top = fs::temp_directory_path() / std::to_string(std::random_device()());
    const std::wstring part(150, L'd');
    fs::create_directories(top / part);
    fs::current_path(top / part);
    const std::string name(99, 'f');
    EXPECT_EQ(SystemPath("f"), L"f");
    EXPECT_EQ(SystemPath(name), L"\\\\?\\" + (fs::current_path() / name).wstring());
    LocalFile::CreateNew(name).Close();
    EXPECT_TRUE(FileExists(name));
    EXPECT_TRUE(RemoveFile(name));
    fs::current_path(before);
    fs::remove_all(top);
}

TEST(ToolSystemPath, APathThatIsShortStaysAsItIsAndALongOneIsWhole) {
    const std::string name(250, 'f');
    EXPECT_EQ(SystemPath("a/b"), L"a/b");
    EXPECT_EQ(SystemPath(""), L"");
    EXPECT_EQ(SystemPath("C:/a/../" + name), L"\\\\?\\C:\\" + std::wstring(250, L'f'));
    EXPECT_EQ(SystemPath("//host/share/" + name),
              L"\\\\?\\UNC\\host\\share\\" + std::wstring(250, L'f'));
    EXPECT_EQ(SystemPath("\\\\?\\C:\\" + name), L"\\\\?\\C:\\" + std::wstring(250, L'f'));
}

}  // namespace
}  // namespace Mirqos::Tool
