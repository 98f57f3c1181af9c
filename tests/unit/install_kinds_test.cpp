#include "log/dbg/InstallKinds.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace LOGUTILS;

constexpr unsigned kNone = 0;
constexpr unsigned kEngine = 1;
constexpr unsigned kManagement = 2;
constexpr unsigned kUpdateManager = 4;
constexpr unsigned kWindowsPe = 8;

// what a machine can have installed, as the registry tells it
constexpr unsigned kEngineInstalled = 1 | 4;
constexpr unsigned kManagementInstalled = 2 | 4;
constexpr unsigned kBothInstalled = 1 | 2 | 4;

InstallPaths Paths() {
    return {"C:\\Halvestor\\Engine"_w, "C:\\Halvestor\\Management"_w,
            "C:\\Halvestor\\Update Manager"_w};
}

unsigned KindOf(const char* library, unsigned kinds, const InstallPaths& paths = Paths()) {
    return ComponentKindOf(WidenAscii(library), kinds, paths);
}

WideString RootOf(const char* library, unsigned kinds, const InstallPaths& paths = Paths()) {
    return LogRootOf(WidenAscii(library), "D:\\App"_w, kinds, paths);
}

TEST(InstallKinds, TheBitsAreThoseThatAreStored) {
    EXPECT_EQ(LOGUTILS::kNoComponent, kNone);
    EXPECT_EQ(LOGUTILS::kEngine, kEngine);
    EXPECT_EQ(LOGUTILS::kManagement, kManagement);
    EXPECT_EQ(LOGUTILS::kUpdateManager, kUpdateManager);
    EXPECT_EQ(LOGUTILS::kWindowsPe, kWindowsPe);
}

// --- The component of a library

TEST(ComponentKind, IsThatOfTheInstallPathUnderWhichTheLibraryLies) {
    for (const unsigned kinds : {kEngineInstalled, kManagementInstalled, kBothInstalled}) {
        EXPECT_EQ(KindOf("C:\\Halvestor\\Engine\\bin\\x.dll", kinds), kEngine) << kinds;
        EXPECT_EQ(KindOf("C:\\Halvestor\\Management\\x.dll", kinds), kManagement) << kinds;
        EXPECT_EQ(KindOf("C:\\Halvestor\\Update Manager\\x.dll", kinds), kUpdateManager) << kinds;
        EXPECT_EQ(KindOf("C:\\Halvestor\\x.dll", kinds), kNone) << kinds;
        EXPECT_EQ(KindOf("D:\\Other\\x.dll", kinds), kNone) << kinds;
        EXPECT_EQ(KindOf("", kinds), kNone) << kinds;
    }
}

TEST(ComponentKind, LetterCaseDoesNotMatter) {
    EXPECT_EQ(KindOf("c:\\HALVESTOR\\engine\\X.DLL", kEngineInstalled), kEngine);
}

TEST(ComponentKind, AnEmptyInstallPathMatchesNothing) {
    InstallPaths paths = Paths();
    paths.m_engine.clear();
    EXPECT_EQ(KindOf("C:\\Halvestor\\Management\\x.dll", kBothInstalled, paths), kManagement);
    EXPECT_EQ(KindOf("C:\\Halvestor\\Engine\\x.dll", kBothInstalled, paths), kNone);
    EXPECT_EQ(KindOf("C:\\Halvestor\\Engine\\x.dll", kBothInstalled, InstallPaths()), kNone);
}

TEST(ComponentKind, EngineComesBeforeManagementAndThatBeforeTheUpdateManager) {
    const InstallPaths same = {"C:\\All"_w, "C:\\All"_w, "C:\\All"_w};
    EXPECT_EQ(KindOf("C:\\All\\x.dll", kBothInstalled, same), kEngine);
    const InstallPaths noEngine = {""_w, "C:\\All"_w, "C:\\All"_w};
    EXPECT_EQ(KindOf("C:\\All\\x.dll", kBothInstalled, noEngine), kManagement);
}

TEST(ComponentKind, ThePathIsComparedAsTextAndNotFolderByFolder) {
    EXPECT_EQ(KindOf("C:\\Halvestor\\Engine2\\x.dll", kEngineInstalled), kEngine);
}

TEST(ComponentKind, InWindowsPeThereIsNoOther) {
    EXPECT_EQ(KindOf("C:\\Halvestor\\Engine\\x.dll", kWindowsPe), kWindowsPe);
    EXPECT_EQ(KindOf("D:\\Other\\x.dll", kWindowsPe), kWindowsPe);
}

TEST(ComponentKind, TheUpdateManagerAndNoComponentGoWithEngineOrManagement) {
    struct {
        unsigned kind;
        unsigned installed;
        unsigned promoted;
    } const table[] = {
        {kNone, kNone, kNone},
        {kNone, kEngineInstalled, kEngine},
        {kNone, kManagementInstalled, kManagement},
        {kNone, kBothInstalled, kEngine},
        {kNone, kWindowsPe, kNone},
        {kEngine, kNone, kEngine},
        {kEngine, kEngineInstalled, kEngine},
        {kEngine, kManagementInstalled, kEngine},
        {kEngine, kBothInstalled, kEngine},
        {kManagement, kNone, kManagement},
        {kManagement, kEngineInstalled, kManagement},
        {kManagement, kManagementInstalled, kManagement},
        {kManagement, kBothInstalled, kManagement},
        {kUpdateManager, kNone, kUpdateManager},
        {kUpdateManager, kEngineInstalled, kEngine},
        {kUpdateManager, kManagementInstalled, kManagement},
        {kUpdateManager, kBothInstalled, kEngine},
        {kWindowsPe, kWindowsPe, kWindowsPe},
        {kWindowsPe, kBothInstalled, kWindowsPe},
    };
    for (const auto& row : table) {
        EXPECT_EQ(PromotedKind(row.kind, row.installed), row.promoted)
            << row.kind << " with " << row.installed;
    }
}

// --- The log root

TEST(LogRoot, IsALogFolderBesideTheExecutableInWindowsPe) {
    EXPECT_EQ(RootOf("C:\\Halvestor\\Engine\\x.dll", kWindowsPe), "D:\\App\\Log\\"_w);
}

TEST(LogRoot, IsBesideTheExecutableWhereNothingIsInstalled) {
    EXPECT_EQ(RootOf("C:\\Halvestor\\Engine\\x.dll", kNone), "D:\\App\\Logs\\"_w);
}

TEST(LogRoot, IsInTheInstallPathUnderWhichTheLibraryLies) {
    for (const unsigned kinds : {kEngineInstalled, kManagementInstalled, kBothInstalled}) {
        EXPECT_EQ(RootOf("C:\\Halvestor\\Engine\\x.dll", kinds), "C:\\Halvestor\\Engine\\Logs\\"_w)
            << kinds;
        EXPECT_EQ(RootOf("C:\\Halvestor\\Management\\x.dll", kinds),
                  "C:\\Halvestor\\Management\\Logs\\"_w)
            << kinds;
        EXPECT_EQ(RootOf("C:\\Halvestor\\Update Manager\\x.dll", kinds),
                  "C:\\Halvestor\\Update Manager\\Logs\\"_w)
            << kinds;
        EXPECT_EQ(RootOf("D:\\App\\x.dll", kinds), "D:\\App\\Logs\\"_w) << kinds;
    }
}

TEST(LogRoot, TheFirstInstallPathThatMatchesWins) {
    const InstallPaths nested = {"C:\\H\\Engine"_w, "C:\\H"_w, "C:\\H\\Engine"_w};
    EXPECT_EQ(RootOf("C:\\H\\Engine\\x.dll", kBothInstalled, nested), "C:\\H\\Engine\\Logs\\"_w);
    EXPECT_EQ(RootOf("C:\\H\\x.dll", kBothInstalled, nested), "C:\\H\\Logs\\"_w);
}

TEST(LogRoot, ABackslashAtTheEndOfAnInstallPathIsNotDoubled) {
    const InstallPaths paths = {"C:\\E\\"_w, "C:\\M\\"_w, "C:\\U\\"_w};
    EXPECT_EQ(RootOf("C:\\E\\x.dll", kBothInstalled, paths), "C:\\E\\Logs\\"_w);
    EXPECT_EQ(RootOf("C:\\M\\x.dll", kBothInstalled, paths), "C:\\M\\Logs\\"_w);
    EXPECT_EQ(RootOf("C:\\U\\x.dll", kBothInstalled, paths), "C:\\U\\Logs\\"_w);
}

TEST(LogRoot, KeepsTheLettersOfTheInstallPathAndNotOfTheLibrarys) {
    EXPECT_EQ(RootOf("c:\\halvestor\\ENGINE\\x.dll", kEngineInstalled),
              "C:\\Halvestor\\Engine\\Logs\\"_w);
}

TEST(LogRoot, EmptyInstallPathsLeaveItBesideTheExecutable) {
    EXPECT_EQ(RootOf("C:\\Halvestor\\Engine\\x.dll", kBothInstalled, InstallPaths()),
              "D:\\App\\Logs\\"_w);
    InstallPaths paths = Paths();
    paths.m_engine.clear();
    EXPECT_EQ(RootOf("C:\\Halvestor\\Management\\x.dll", kBothInstalled, paths),
              "C:\\Halvestor\\Management\\Logs\\"_w);
}

TEST(LogRoot, AnExecutableWithoutFolderGivesTheRootOfTheDrive) {
    EXPECT_EQ(LogRootOf("x.dll"_w, ""_w, kNone, InstallPaths()), "\\Logs\\"_w);
    EXPECT_EQ(LogRootOf("C:\\x.dll"_w, "C:"_w, kNone, InstallPaths()), "C:\\Logs\\"_w);
}

TEST(UpdateManagerPath, LiesUnderTheRootWithOneBackslashBetween) {
    EXPECT_EQ(UpdateManagerPath("C:\\Halvestor"_w), "C:\\Halvestor\\Update Manager"_w);
    EXPECT_EQ(UpdateManagerPath("C:\\Halvestor\\"_w), "C:\\Halvestor\\Update Manager"_w);
}

TEST(UpdateManagerPath, IsNoneWithoutARoot) {
    EXPECT_EQ(UpdateManagerPath(""_w), ""_w);
}

// --- The list of executables

std::vector<WideString> Names(const char* value) {
    return SplitAtBlanks(WidenAscii(value));
}

TEST(ExecutableList, IsSplitAtSingleBlanks) {
    EXPECT_EQ(Names("a.exe"), std::vector<WideString>{"a.exe"_w});
    EXPECT_EQ(Names("a.exe B.exe c"), (std::vector<WideString>{"a.exe"_w, "B.exe"_w, "c"_w}));
}

TEST(ExecutableList, SeveralBlanksHoldNoName) {
    const std::vector<WideString> both = {"a.exe"_w, "b.exe"_w};
    EXPECT_EQ(Names("a.exe  b.exe"), both);
    EXPECT_EQ(Names("   a.exe    b.exe "), both);
    EXPECT_TRUE(Names("").empty());
    EXPECT_TRUE(Names(" ").empty());
    EXPECT_TRUE(Names("   ").empty());
}

TEST(ExecutableList, OtherWhiteSpaceBelongsToTheName) {
    EXPECT_EQ(Names("a.exe\tb.exe;c.exe"), std::vector<WideString>{"a.exe\tb.exe;c.exe"_w});
}

}  // namespace
