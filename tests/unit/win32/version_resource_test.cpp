#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "log/dbg/win32/ModuleFiles.h"
#include "platform/undo_windows_macros.h"

namespace {

struct ExpectedVersion {
    std::uint32_t most = 0;
    std::uint32_t least = 0;
};

ExpectedVersion ProjectVersion() {
    std::istringstream text(MIRQOS_VERSION);
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t build = 0;
    char dot = 0;
    text >> major >> dot >> minor >> dot >> build;
    return {major << 16 | minor, build << 16};
}

std::vector<char> VersionResourceOf(const char* file) {
    std::vector<char> resource(GetFileVersionInfoSizeA(file, nullptr));
    if (!resource.empty() &&
        GetFileVersionInfoA(file, 0, static_cast<DWORD>(resource.size()), resource.data()) == 0) {
        resource.clear();
    }
    return resource;
}

std::string TextOf(const std::vector<char>& resource, const std::string& name) {
    void* value = nullptr;
    UINT length = 0;
    const std::string block = "\\StringFileInfo\\040904B0\\" + name;
    if (VerQueryValueA(resource.data(), block.c_str(), &value, &length) == 0) {
        return "(missing)";
    }
    return static_cast<const char*>(value);
}

class VersionResource : public testing::TestWithParam<const char*> {};

TEST_P(VersionResource, CarriesTheVersionOfTheProject) {
    const std::vector<char> resource = VersionResourceOf(GetParam());
    ASSERT_FALSE(resource.empty()) << GetLastError();
    void* fixed = nullptr;
    UINT length = 0;
    ASSERT_NE(VerQueryValueA(resource.data(), "\\", &fixed, &length), 0);
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(fixed);
    const ExpectedVersion expected = ProjectVersion();
    EXPECT_EQ(info.dwSignature, 0xFEEF04BDu);
    EXPECT_EQ(info.dwFileVersionMS, expected.most);
    EXPECT_EQ(info.dwFileVersionLS, expected.least);
    EXPECT_EQ(TextOf(resource, "FileVersion"), MIRQOS_VERSION);
    EXPECT_EQ(TextOf(resource, "ProductName"), "MIRQOS");
}

std::vector<const char*> Files() {
    return {MIRQOS_FILES};
}

INSTANTIATE_TEST_SUITE_P(Files, VersionResource, testing::ValuesIn(Files()));

TEST(VersionResourceTest, ShowsALogLineABuildThatIsNotZero) {
    EXPECT_NE(ProjectVersion().least, 0u);
}

TEST(VersionResourceTest, IsFoundInALibraryThatIsLoadedByTheNameOfItsFile) {
    ASSERT_NE(LoadLibraryA(MIRQOS_LIBRARY), nullptr) << GetLastError();
    const auto version = LOGUTILS::VersionOfModule(L"MIRQOS.dll");
    ASSERT_TRUE(version.has_value());
    const ExpectedVersion expected = ProjectVersion();
    EXPECT_EQ(version->m_dwMost, expected.most);
    EXPECT_EQ(version->m_dwLeast, expected.least);
}

TEST(VersionResourceTest, IsMissingWhereAModuleHasNoneOrIsNotLoaded) {
    EXPECT_FALSE(LOGUTILS::VersionOfModule(nullptr).has_value());  // this program has none
    EXPECT_FALSE(LOGUTILS::VersionOfModule(L"not-loaded.dll").has_value());
}

}  // namespace
