#include "log/dbg/LogFilePath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <optional>

namespace {

using namespace LOGUTILS;

WideString Letters(std::size_t count) {
    return WideString(count, WideChar{'a'});
}

TEST(LogFilePath, RoomsAreThoseOfTheSharedFormats) {
    EXPECT_EQ(kPathRoom, 512u);
    EXPECT_EQ(kNameRoom, 64u);
}

// --- The pieces of a path

TEST(LogFilePath, FolderAndFileNameMeetAtTheLastBackslash) {
    EXPECT_EQ(FolderOf("C:\\a\\b\\c.exe"_w), "C:\\a\\b"_w);
    EXPECT_EQ(FileNameOf("C:\\a\\b\\c.exe"_w), "c.exe"_w);
    EXPECT_EQ(FolderOf("C:\\c.exe"_w), "C:"_w);
    EXPECT_EQ(FileNameOf("C:\\a\\"_w), ""_w);
    EXPECT_EQ(FolderOf("C:\\a\\"_w), "C:\\a"_w);
}

TEST(LogFilePath, APathWithoutBackslashHasNeitherFolderNorFileName) {
    for (const char* path : {"", "c.exe", "a/b/c.exe"}) {
        EXPECT_EQ(FolderOf(WidenAscii(path)), ""_w) << path;
        EXPECT_EQ(FileNameOf(WidenAscii(path)), ""_w) << path;
    }
}

// --- The default path of a name

WideString DefaultOf(const char* name) {
    return DefaultLogPath(WidenAscii(name), "x.dll"_w, "C:\\Logs\\"_w);
}

TEST(DefaultLogPath, APlainNameLiesInTheLogRootAndEndsInLog) {
    EXPECT_EQ(DefaultOf("mirqos.dll"), "C:\\Logs\\mirqos.dll.Log"_w);
    EXPECT_EQ(DefaultOf("a.b"), "C:\\Logs\\a.b.Log"_w);
    EXPECT_EQ(DefaultOf("nodot"), "C:\\Logs\\nodot.Log"_w);
    EXPECT_EQ(DefaultOf("dot."), "C:\\Logs\\dot..Log"_w);
    EXPECT_EQ(DefaultOf("log"), "C:\\Logs\\log.Log"_w);
    EXPECT_EQ(DefaultOf("a.log.txt"), "C:\\Logs\\a.log.txt.Log"_w);
    EXPECT_EQ(DefaultOf("a.logs"), "C:\\Logs\\a.logs.Log"_w);
}

TEST(DefaultLogPath, AnEndingThatIsThereIsKeptInItsLetterCase) {
    EXPECT_EQ(DefaultOf("a.Log"), "C:\\Logs\\a.Log"_w);
    EXPECT_EQ(DefaultOf("a.LOG"), "C:\\Logs\\a.LOG"_w);
    EXPECT_EQ(DefaultOf("a.dll.log"), "C:\\Logs\\a.dll.log"_w);
    EXPECT_EQ(DefaultOf(".log"), "C:\\Logs\\.log"_w);
}

TEST(DefaultLogPath, WithoutANameTheLibrarysStandsIn) {
    EXPECT_EQ(DefaultOf(""), "C:\\Logs\\x.dll.Log"_w);
    EXPECT_EQ(DefaultLogPath(""_w, "x.log"_w, "C:\\Logs\\"_w), "C:\\Logs\\x.log"_w);
    EXPECT_EQ(DefaultLogPath(""_w, ""_w, "C:\\Logs\\"_w), "C:\\Logs\\.Log"_w);
}

TEST(DefaultLogPath, ANameWithASlashOfEitherKindIsAFullPathAndStaysAsItIs) {
    for (const char* path : {"D:\\elsewhere\\a.txt", "D:/elsewhere/a.txt", "\\a", "/a", "a\\",
                             "C:\\a.log", "\\\\server\\share\\a.dll.Log"}) {
        EXPECT_EQ(DefaultOf(path), WidenAscii(path));
    }
}

TEST(DefaultLogPath, LettersBeyondAsciiStayAsTheyAre) {
    const WideString name = "caf"_w + WideChar{0xE9} + WideChar{0x20AC} + ".dll"_w;
    EXPECT_EQ(DefaultLogPath(name, "x.dll"_w, "C:\\Logs\\"_w), "C:\\Logs\\"_w + name + ".Log"_w);
}

// --- Series

void ExpectSeries(const char* path, const char* base, int number) {
    const LogSeries series = SplitSeries(WidenAscii(path));
    EXPECT_EQ(series.base, WidenAscii(base)) << path;
    EXPECT_EQ(series.number, number) << path;
}

TEST(LogSeries, BeginsWithTheFileWithoutANumber) {
    ExpectSeries("a.dll.Log", "a.dll", 0);
    ExpectSeries("C:\\Logs\\a.dll.LOG", "C:\\Logs\\a.dll", 0);
    ExpectSeries(".log", "", 0);
}

TEST(LogSeries, EightDigitsBehindADotAreTheNumber) {
    ExpectSeries("a.dll.00000001.log", "a.dll", 1);
    ExpectSeries("a.dll.00000003.Log", "a.dll", 3);
    ExpectSeries("C:\\Logs\\a.dll.99999999.lOG", "C:\\Logs\\a.dll", 99999999);
    ExpectSeries(".00000001.log", "", 1);
    ExpectSeries("a.00000001.00000002.log", "a.00000001", 2);
}

TEST(LogSeries, WhatIsNoNumberAboveZeroBelongsToTheBase) {
    ExpectSeries("a.dll.00000000.log", "a.dll.00000000", 0);
    ExpectSeries("a.dll.0000001.log", "a.dll.0000001", 0);
    ExpectSeries("a.dll.000000001.log", "a.dll.000000001", 0);
    ExpectSeries("a.dll.123456789.log", "a.dll.123456789", 0);
    ExpectSeries("a.dll.0000001x.log", "a.dll.0000001x", 0);
    ExpectSeries("a.dll.x0000001.log", "a.dll.x0000001", 0);
    ExpectSeries("a.dll. 0000001.log", "a.dll. 0000001", 0);
    ExpectSeries("a.dll.+0000001.log", "a.dll.+0000001", 0);
    ExpectSeries("a.dll.-0000001.log", "a.dll.-0000001", 0);
    ExpectSeries("a.dll.letters_.log", "a.dll.letters_", 0);
    ExpectSeries("a.dll_00000001.log", "a.dll_00000001", 0);
    ExpectSeries("00000001.log", "00000001", 0);
    ExpectSeries("C:\\00000001.log", "C:\\00000001", 0);
}

TEST(LogSeries, DigitsOfOtherScriptsAreNoNumber) {
    const WideString base = "a."_w + WideString(7, WideChar{0x0660}) + WideChar{0x0661};
    EXPECT_EQ(SplitSeries(base + ".log"_w).base, base);
    EXPECT_EQ(SplitSeries(base + ".log"_w).number, 0);
}

TEST(LogSeries, APathWithoutTheEndingIsItsOwnBase) {
    ExpectSeries("a.dll", "a.dll", 0);
    ExpectSeries("a.dll.00000001", "a.dll.00000001", 0);
    ExpectSeries("a.dll.00000001.txt", "a.dll.00000001.txt", 0);
    ExpectSeries("log", "log", 0);
    ExpectSeries("", "", 0);
}

TEST(LogSeries, MembersAreNumberedWithEightDigits) {
    EXPECT_EQ(SeriesMember("a.dll"_w, 1), "a.dll.00000001.log"_w);
    EXPECT_EQ(SeriesMember("a.dll"_w, 2), "a.dll.00000002.log"_w);
    EXPECT_EQ(SeriesMember("C:\\Logs\\a.dll"_w, 12345678), "C:\\Logs\\a.dll.12345678.log"_w);
    EXPECT_EQ(SeriesMember("a.dll"_w, 99999999), "a.dll.99999999.log"_w);
    EXPECT_EQ(SeriesMember(""_w, 1), ".00000001.log"_w);
}

TEST(LogSeries, ANumberOfMoreThanEightDigitsKeepsThemAll) {
    EXPECT_EQ(SeriesMember("a.dll"_w, 100000000), "a.dll.100000000.log"_w);
    EXPECT_EQ(SeriesMember("a.dll"_w, 2147483647), "a.dll.2147483647.log"_w);
}

TEST(LogSeries, AMemberThatDoesNotFitAPathIsNone) {
    const std::size_t ending = 13;  // ".00000001.log"
    EXPECT_EQ(SeriesMember(Letters(510 - ending), 1)->size(), 510u);
    EXPECT_EQ(SeriesMember(Letters(511 - ending), 1)->size(), 511u);
    EXPECT_EQ(SeriesMember(Letters(512 - ending), 1), std::nullopt);
    EXPECT_EQ(SeriesMember(Letters(513 - ending), 1), std::nullopt);
    EXPECT_EQ(SeriesMember(Letters(511 - ending), 100000000), std::nullopt);
}

TEST(LogSeries, AMemberTellsItsBaseAndNumber) {
    for (const int number : {1, 2, 9, 10, 12345678, 99999999}) {
        const LogSeries series = SplitSeries(SeriesMember("C:\\Logs\\a.dll"_w, number).value());
        EXPECT_EQ(series.base, "C:\\Logs\\a.dll"_w);
        EXPECT_EQ(series.number, number);
    }
}

bool Same(const char* left, const char* right) {
    const bool same = IsSameLog(WidenAscii(left), WidenAscii(right));
    EXPECT_EQ(IsSameLog(WidenAscii(right), WidenAscii(left)), same) << left << " and " << right;
    return same;
}

TEST(SameLog, EqualPathsInAnyLetterCase) {
    EXPECT_TRUE(Same("C:\\Logs\\a.dll.Log", "c:\\LOGS\\A.DLL.log"));
    EXPECT_TRUE(Same("a.txt", "A.TXT"));
    EXPECT_TRUE(Same("", ""));
}

TEST(SameLog, AllMembersOfASeries) {
    EXPECT_TRUE(Same("C:\\Logs\\a.dll.Log", "C:\\Logs\\A.dll.00000001.log"));
    EXPECT_TRUE(Same("a.dll.00000001.log", "a.dll.00000002.LOG"));
    EXPECT_TRUE(Same("a.dll", "a.dll.00000002.log"));
}

TEST(SameLog, OtherFoldersNamesAndSlashesAreOtherLogs) {
    EXPECT_FALSE(Same("C:\\Logs\\a.dll.Log", "D:\\Logs\\a.dll.Log"));
    EXPECT_FALSE(Same("a.dll.Log", "b.dll.Log"));
    EXPECT_FALSE(Same("a.dll.Log", "a.dll.00000000.Log"));
    EXPECT_FALSE(Same("a.dll.Log", ""));
    EXPECT_FALSE(Same("C:\\a.dll.Log", "C:/a.dll.Log"));
}

// --- The mutex of a file

TEST(FileMutexName, IsThePathWithSlashesInUpperCaseInTheGlobalNamespace) {
    EXPECT_EQ(FileMutexName("C:\\Logs\\a.dll.Log"_w), "Global\\C:/LOGS/A.DLL.LOG"_w);
    EXPECT_EQ(FileMutexName("\\\\server\\share\\a.log"_w), "Global\\//SERVER/SHARE/A.LOG"_w);
}

TEST(FileMutexName, IsTheSameForEveryLetterCaseAndSlashStyle) {
    const WideString name = FileMutexName("C:\\Logs\\a.dll.Log"_w);
    EXPECT_EQ(FileMutexName("c:\\LOGS\\A.DLL.LOG"_w), name);
    EXPECT_EQ(FileMutexName("C:/Logs/a.dll.Log"_w), name);
    EXPECT_EQ(FileMutexName("c:/logs\\a.DLL.log"_w), name);
    EXPECT_NE(FileMutexName("C:\\Logs\\b.dll.Log"_w), name);
}

TEST(FileMutexName, IsCutTo259CharactersThatItsTerminatorFits) {
    const std::size_t prefix = 7;  // "Global\"
    for (const std::size_t length : {258u, 259u, 260u, 261u, 511u}) {
        const WideString name = FileMutexName(Letters(length - prefix));
        EXPECT_EQ(name, "Global\\"_w +
                            WideString(std::min<std::size_t>(length, 259) - prefix, WideChar{'A'}))
            << length;
    }
}

TEST(FileMutexName, LettersBeyondAsciiTakePart) {
    const WideString path = "C:\\"_w + WideChar{0x20AC} + ".log"_w;
    EXPECT_EQ(FileMutexName(path), "Global\\C:/"_w + WideChar{0x20AC} + ".LOG"_w);
}

}  // namespace
