#include "tools/mirqos/BackupPath.h"

#include <gtest/gtest.h>

#include <string>

namespace Mirqos::Tool {
namespace {

bool Refuses(std::string_view path, NameRules rules) {
    return !FaultOfTarget(path, rules).empty();
}

TEST(ToolBackupPath, APrefixIsAFolderOfKeys) {
    EXPECT_EQ(KeyBase(""), "");
    EXPECT_EQ(KeyBase("docs"), "docs/");
    EXPECT_EQ(KeyBase("docs/"), "docs/");
    EXPECT_EQ(ManifestKey("docs/"), "docs/.mirqos/manifest");
    EXPECT_EQ(ManifestKey(""), ".mirqos/manifest");
}

TEST(ToolBackupPath, OrdinaryPathsAreTakenOnEverySystem) {
    for (const char* path : {"a", "a/b/c.txt", "..a", "a..", "...a/b", "a b/c d", ".hidden",
                             "\u00e4/\u20ac", "nullable", "COM", "COM10", "CONS", "con-x", "lpt"}) {
        EXPECT_EQ(FaultOfTarget(path, NameRules::Posix), "") << path;
        if (std::string_view(path) != "a..") {
            EXPECT_EQ(FaultOfTarget(path, NameRules::Windows), "") << path;
        }
    }
}

TEST(ToolBackupPath, PathsThatLeadOutOfTheFolderAreRefusedOnEverySystem) {
    for (const std::string_view path :
         {std::string_view(""), std::string_view("/"), std::string_view("/a"),
          std::string_view("a/"), std::string_view("a//b"), std::string_view("."),
          std::string_view(".."), std::string_view("../a"), std::string_view("a/.."),
          std::string_view("a/../b"), std::string_view("a/./b"), std::string_view("a\0b", 3)}) {
        EXPECT_TRUE(Refuses(path, NameRules::Posix)) << path;
        EXPECT_TRUE(Refuses(path, NameRules::Windows)) << path;
    }
}

TEST(ToolBackupPath, WhatWindowsTakesForSomethingElseIsRefusedThereOnly) {
    for (const char* path :
         {"C:",      "C:/a",     "c:a",       "a:stream",   "a\\b",     "..\\a", "\\\\host\\share",
          "a?",      "a*",       "a<b",       "a>b",        "a|b",      "a\"b",  "a\tb",
          "a\x1f",   "a.",       "a ",        "a./b",       "a /b",     "CON",   "con",
          "Nul.txt", "a/aux",    "prn.a.b",   "COM1",       "lpt9.log", "com0",  "CONIN$",
          "conout$", "NUL .txt", "COM\u00b9", "lpt\u00b3.x"}) {
        EXPECT_TRUE(Refuses(path, NameRules::Windows)) << path;
        EXPECT_FALSE(Refuses(path, NameRules::Posix)) << path;
    }
}

TEST(ToolBackupPath, TheProgramsOwnFolderIsNobodysPath) {
    for (const char* path : {".mirqos", ".mirqos/manifest", ".MIRQOS/x"}) {
        EXPECT_TRUE(Refuses(path, NameRules::Posix)) << path;
        EXPECT_NE(FaultOfSource("p/", path), "") << path;
    }
    EXPECT_EQ(FaultOfTarget("a/.mirqos/b", NameRules::Windows), "");
    EXPECT_EQ(FaultOfSource("", ".mirqos2"), "");
}

TEST(ToolBackupPath, AKeyHasToFitWhereListingsHoldIt) {
    EXPECT_EQ(FaultOfSource("p/", std::string(1021, 'a')), "");
    EXPECT_NE(FaultOfSource("p/", std::string(1022, 'a')), "");
    EXPECT_NE(FaultOfSource("", "not \xff utf-8"), "");
}

}  // namespace
}  // namespace Mirqos::Tool
