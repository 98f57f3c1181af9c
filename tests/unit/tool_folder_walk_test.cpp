#include "tools/mirqos/FolderWalk.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "tools/mirqos/BackupPath.h"
#include "tools/mirqos/Folder.h"
#include "tools/mirqos/PartFile.h"

namespace Mirqos::Tool {
namespace {

namespace fs = std::filesystem;

class ToolFolderWalk : public ::testing::Test {
protected:
    ToolFolderWalk() { fs::create_directories(m_folder); }
    ~ToolFolderWalk() override {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }

    void Write(const std::string& path, const std::string& text) const {
        const fs::path file = m_folder / fs::u8path(path);
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }
    std::string Name() const { return m_folder.u8string(); }
    FolderContents Walk() const {
        return WalkFolder(Name(), [] {});
    }

    /// The folder under a name below which the system takes every name as it is.
    fs::path Literal() const {
        fs::path folder = m_folder;
        return OwnNameRules() == NameRules::Windows
                   ? fs::u8path("\\\\?\\" + folder.make_preferred().u8string())
                   : folder;
    }

    const fs::path m_folder =
        fs::temp_directory_path() / ("mirqos-walk-" + std::to_string(std::random_device()()));
};

TEST_F(ToolFolderWalk, FindsEveryFileAndEmptyFolder) {
    Write("top", "12345");
    Write("a/b/c \u00e4\u20ac.txt", "");
    fs::create_directories(m_folder / "none" / "here");
    const FolderContents contents = Walk();
    ASSERT_EQ(contents.files.size(), 2U);
    EXPECT_EQ(contents.files.at("top").size, 5U);
    EXPECT_EQ(contents.files.at("a/b/c \u00e4\u20ac.txt").size, 0U);
    EXPECT_EQ(contents.files.at("top"), LocalFile::OpenForReading(JoinPath(Name(), "top")).State());
    EXPECT_EQ(contents.emptyFolders, std::set<std::string>{"none/here"});
    EXPECT_TRUE(contents.unread.empty());
    EXPECT_EQ(contents.leftOut, 0U);
}

TEST_F(ToolFolderWalk, AnEmptyFolderHoldsNothingAndAMissingOneIsAFailure) {
    const FolderContents contents = Walk();
    EXPECT_TRUE(contents.files.empty());
    EXPECT_TRUE(contents.emptyFolders.empty());
    EXPECT_THROW(WalkFolder(JoinPath(Name(), "missing"), [] {}), Failure);
}

TEST_F(ToolFolderWalk, PathsLongerThanWindowsTakesAsTheyAreAreFound) {
    std::string path = Name();
    for (int depth = 0; depth < 10; ++depth) {
        path = JoinPath(path, std::string(50, 'd'));
    }
    MakeFolders(path);
    const std::string name = JoinPath(path, "file");
    {
        PartFile file(name);
        file.SetModified(12'345'678'901'234'567);
        file.Commit();
    }
    const FolderContents contents = Walk();
    ASSERT_EQ(contents.files.size(), 1U);
    EXPECT_EQ(contents.files.begin()->second.modified, 12'345'678'901'234'567);
    EXPECT_EQ(JoinPath(Name(), contents.files.begin()->first), name);
    // the test's own clean-up may not take such paths
    EXPECT_TRUE(RemoveFile(name));
    for (; path.size() > Name().size(); path.resize(path.rfind('/'))) {
        RemoveEmptyFolder(path);
    }
}

TEST_F(ToolFolderWalk, ANameThatTheSystemTakesForAnotherIsNeverReadAsThat) {
    Write("foo", "of foo");
    Write("sub/of sub", "");
    Write("con-x", "");
    const fs::path literal = Literal();
    std::ofstream(literal / "foo.", std::ios::binary) << "its own text";
    std::ofstream(literal / "nul.txt", std::ios::binary) << "text";
    fs::create_directory(literal / "sub ");
    std::ofstream(literal / "sub " / "its own", std::ios::binary) << "";
    const FolderContents contents = Walk();
    std::set<std::string> found;
    for (const auto& [path, state] : contents.files) {
        found.insert(path);
    }
    std::set<std::string> unread;
    for (const Trouble& trouble : contents.unread) {
        unread.insert(trouble.path);
    }
    std::set<std::string> expected = {"con-x", "foo", "sub/of sub"};
    if (OwnNameRules() == NameRules::Windows) {
        EXPECT_EQ(unread, (std::set<std::string>{"foo.", "nul.txt", "sub "}));
    } else {
        expected.insert({"foo.", "nul.txt", "sub /its own"});
        EXPECT_TRUE(unread.empty());
        EXPECT_EQ(contents.files.at("foo.").size, 12U);
    }
    EXPECT_EQ(found, expected);
    // the test's own clean-up may not take such names
    for (const fs::path& file :
         {literal / "foo.", literal / "nul.txt", literal / "sub " / "its own"}) {
        EXPECT_TRUE(RemoveFile(file.u8string())) << file;
    }
    RemoveEmptyFolder((literal / "sub ").u8string());
}

TEST_F(ToolFolderWalk, FoldersAreMadeWithThoseAboveThemAndNotInAFilesPlace) {
    const std::string deep = JoinPath(Name(), "a/b/c");
    MakeFolders(deep);
    MakeFolders(deep);
    EXPECT_TRUE(IsFolder(deep));
    Write("file", "x");
    EXPECT_THROW(MakeFolders(JoinPath(Name(), "file")), Failure);
    EXPECT_THROW(MakeFolders(JoinPath(Name(), "file/below")), Failure);
}

TEST_F(ToolFolderWalk, NamesAreTheSameWhereTheSystemTakesThemForOneFile) {
    const std::vector<std::pair<std::string, std::string>> pairs = {
        {"a/B", "A/b"},       {"\u00c4.txt", "\u00e4.txt"}, {"\u0414", "\u0434"}, {"\u00df", "SS"},
        {"\u0130", "i"},      {"e\u0301", "\u00e9"},        {"\u01c6", "\u01c4"}, {"x", "y"},
        {"\u00ff", "\u0178"}, {"\u03c2", "\u03c3"},
    };
    for (const auto& [first, second] : pairs) {
        Write(first, "1");
        Write(second, "2");
        std::ifstream file(m_folder / fs::u8path(first), std::ios::binary);
        const bool same = file.get() == '2';
        EXPECT_EQ(NameIdentity(first) == NameIdentity(second), same) << first << " " << second;
    }
}

TEST_F(ToolFolderWalk, WhatLiesBelowAnUnreadFolderIsUnknown) {
    FolderContents contents;
    contents.unread = {{"a/b", "cannot be listed"}, {"e", "cannot be examined"}};
    EXPECT_TRUE(contents.IsUnknown("a/b"));
    EXPECT_TRUE(contents.IsUnknown("a/b/c/d"));
    EXPECT_FALSE(contents.IsUnknown("a/bc"));
    EXPECT_FALSE(contents.IsUnknown("a"));
    EXPECT_TRUE(contents.IsUnknown("e/f"));
    EXPECT_FALSE(contents.IsUnknown("/a"));
}

}  // namespace
}  // namespace Mirqos::Tool
