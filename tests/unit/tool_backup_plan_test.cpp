#include "tools/mirqos/BackupPlan.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Mirqos::Tool {
namespace {

constexpr std::int32_t kPlusForAt = 5;

class ToolBackupPlan : public ::testing::Test {
protected:
    void Stored(const std::string& path, std::uint64_t size, FileTime modified) {
        FileRecord record;
        record.state = {size, modified};
        record.sha256 = "of " + path;
        m_before.files[path] = record;
    }
    void There(const std::string& path, std::uint64_t size, FileTime modified) {
        m_contents.files[path] = {size, modified};
    }
    BackupPlan Plan() const { return PlanBackup(m_contents, m_before, m_options); }
    static std::vector<std::string> Paths(const BackupPlan& plan) {
        std::vector<std::string> paths;
        for (const auto& task : plan.tasks) {
            paths.push_back(task.path);
        }
        return paths;
    }
    using Texts = std::vector<std::string>;

    FolderContents m_contents;
    Manifest m_before;
    BackupPlanOptions m_options{"p/", 0, false, false};
};

TEST_F(ToolBackupPlan, OnlyWhatHasAnotherSizeOrTimeIsRead) {
    for (const char* path : {"grown", "same", "touched"}) {
        Stored(path, 5, 100);
    }
    There("grown", 6, 100);
    There("new", 5, 100);
    There("same", 5, 100);
    There("touched", 5, 101);
    const BackupPlan plan = Plan();
    EXPECT_EQ(Paths(plan), (Texts{"grown", "new", "touched"}));
    EXPECT_EQ(plan.unchanged, 1U);
    EXPECT_EQ(plan.unchangedBytes, 5U);
    EXPECT_EQ(plan.tasks[0].stored->sha256, "of grown");
    EXPECT_FALSE(plan.tasks[1].stored);
}

TEST_F(ToolBackupPlan, WhatIsNotSentYetStandsAsItWas) {
    Stored("changed", 5, 100);
    There("changed", 6, 101);
    There("new", 1, 1);
    EXPECT_EQ(Plan().manifest, m_before);
}

TEST_F(ToolBackupPlan, ARecentFileIsReadAgain) {
    Stored("a", 5, 100);
    m_before.files["a"].recent = true;
    There("a", 5, 100);
    EXPECT_EQ(Paths(Plan()), Texts{"a"});
}

TEST_F(ToolBackupPlan, RehashReadsEverything) {
    Stored("a", 5, 100);
    There("a", 5, 100);
    m_options.rehash = true;
    EXPECT_EQ(Paths(Plan()), Texts{"a"});
    EXPECT_EQ(Plan().unchanged, 0U);
}

TEST_F(ToolBackupPlan, AGoneFileIsRememberedAsDeletedAndCountedOnce) {
    Stored("gone", 5, 100);
    Stored("gone before", 5, 100);
    m_before.files["gone before"].deleted = true;
    const BackupPlan plan = Plan();
    EXPECT_EQ(plan.gone, 1U);
    EXPECT_TRUE(plan.manifest.files.at("gone").deleted);
    EXPECT_TRUE(plan.manifest.files.at("gone before").deleted);
}

TEST_F(ToolBackupPlan, AFileThatCameBackIsLiveAgain) {
    Stored("a", 5, 100);
    m_before.files["a"].deleted = true;
    There("a", 5, 100);
    const BackupPlan plan = Plan();
    EXPECT_TRUE(plan.tasks.empty());
    EXPECT_FALSE(plan.manifest.files.at("a").deleted);
}

TEST_F(ToolBackupPlan, AFileThatCameBackChangedIsLiveBeforeItIsSent) {
    Stored("a", 5, 100);
    m_before.files["a"].deleted = true;
    There("a", 6, 101);
    const BackupPlan plan = Plan();
    EXPECT_EQ(Paths(plan), Texts{"a"});
    EXPECT_FALSE(plan.manifest.files.at("a").deleted);
    EXPECT_EQ(plan.tasks[0].stored->sha256, "of a");
}

TEST_F(ToolBackupPlan, WhatNobodyKnowsOfIsSentAndStaysUnsureUntilThen) {
    Stored("a", 5, 100);
    Stored("gone", 5, 100);
    m_before.files["a"].unsure = true;
    m_before.files["gone"].unsure = true;
    There("a", 5, 100);
    const BackupPlan plan = Plan();
    EXPECT_EQ(Paths(plan), Texts{"a"});
    EXPECT_FALSE(plan.tasks[0].stored);
    EXPECT_TRUE(plan.manifest.files.at("a").unsure);
    EXPECT_TRUE(plan.manifest.files.at("gone").unsure);
    EXPECT_TRUE(plan.manifest.files.at("gone").deleted);
}

TEST_F(ToolBackupPlan, AFreshRunSendsEverythingAndKnowsWhatIsStored) {
    Stored("a", 5, 100);
    Stored("gone", 5, 100);
    There("a", 5, 100);
    m_options.fresh = true;
    const BackupPlan plan = Plan();
    EXPECT_EQ(Paths(plan), Texts{"a"});
    EXPECT_FALSE(plan.tasks[0].stored);
    EXPECT_EQ(plan.manifest.files.count("a"), 1U);
    EXPECT_TRUE(plan.manifest.files.at("gone").deleted);
    EXPECT_EQ(plan.gone, 1U);
}

TEST_F(ToolBackupPlan, OnlyWhatDiffersWithoutBeingReadIsLikelyToReplaceSomething) {
    for (const char* path : {"changed", "recent", "same"}) {
        Stored(path, 5, 100);
        There(path, 5, 100);
    }
    There("changed", 6, 100);
    There("new", 5, 100);
    m_before.files["recent"].recent = true;
    m_options.rehash = true;
    std::vector<bool> likely;
    for (const auto& task : Plan().tasks) {
        likely.push_back(task.likely);
    }
    EXPECT_EQ(likely, (std::vector<bool>{true, false, false, false}));
}

TEST_F(ToolBackupPlan, WhatCouldNotBeLookedAtIsNotTakenForDeleted) {
    Stored("shut/a", 5, 100);
    Stored("shut/deep/b", 5, 100);
    Stored("shutter", 5, 100);
    m_before.emptyFolders = {"shut/empty", "empty"};
    m_contents.unread = {{"shut", "cannot be listed"}};
    const BackupPlan plan = Plan();
    EXPECT_FALSE(plan.manifest.files.at("shut/a").deleted);
    EXPECT_FALSE(plan.manifest.files.at("shut/deep/b").deleted);
    EXPECT_TRUE(plan.manifest.files.at("shutter").deleted);
    EXPECT_EQ(plan.manifest.emptyFolders, std::set<std::string>{"shut/empty"});
}

TEST_F(ToolBackupPlan, AnUnfinishedRunDoesNotStayUnfinished) {
    m_before.runEnded = false;
    EXPECT_TRUE(Plan().manifest.runEnded);
}

TEST_F(ToolBackupPlan, PathsThatCannotBeKeysAreRefused) {
    There(".mirqos/manifest", 5, 100);
    There(std::string(1022, 'a'), 5, 100);
    There("good", 5, 100);
    const BackupPlan plan = Plan();
    EXPECT_EQ(Paths(plan), Texts{"good"});
    EXPECT_EQ(plan.refused.size(), 2U);
}

TEST_F(ToolBackupPlan, TwoPathsWithTheSameStoredKeyAreNotBothTaken) {
    There("a+b", 5, 100);
    There("a@b", 5, 100);
    EXPECT_TRUE(Plan().refused.empty());
    m_options.provider = kPlusForAt;
    const BackupPlan plan = Plan();
    EXPECT_EQ(Paths(plan), Texts{"a+b"});
    ASSERT_EQ(plan.refused.size(), 1U);
    EXPECT_EQ(plan.refused[0].path, "a@b");
}

TEST_F(ToolBackupPlan, AStoredFileKeepsItsKey) {
    m_options.provider = kPlusForAt;
    Stored("a@b", 5, 100);
    There("a+b", 6, 200);
    There("a@b", 7, 300);
    const BackupPlan plan = Plan();
    EXPECT_EQ(Paths(plan), Texts{"a@b"});
    ASSERT_EQ(plan.refused.size(), 1U);
    EXPECT_EQ(plan.refused[0].path, "a+b");
    m_contents.files.erase("a@b");
    m_contents.unread = {{"a@b", "cannot be read"}};
    EXPECT_EQ(Paths(Plan()), Texts{});
}

TEST_F(ToolBackupPlan, AGoneFileYieldsItsKey) {
    m_options.provider = kPlusForAt;
    Stored("a@b", 5, 100);
    There("a+b", 5, 100);
    const BackupPlan plan = Plan();
    EXPECT_TRUE(plan.refused.empty());
    ASSERT_EQ(Paths(plan), Texts{"a+b"});
    EXPECT_EQ(plan.tasks[0].displaced, "a@b");
    EXPECT_FALSE(plan.tasks[0].stored);
    EXPECT_TRUE(plan.manifest.files.at("a@b").deleted);
}

TEST_F(ToolBackupPlan, OfTwoStoredUnderOneKeyTheOneThatIsThereStaysUnsure) {
    m_options.provider = kPlusForAt;
    for (const char* there : {"a+b", "a@b"}) {
        m_before.files.clear();
        m_contents.files.clear();
        Stored("a+b", 5, 100);
        Stored("a@b", 5, 100);
        There(there, 5, 100);
        const BackupPlan plan = Plan();
        EXPECT_EQ(Paths(plan), Texts{there});
        ASSERT_EQ(plan.manifest.files.size(), 1U);
        EXPECT_TRUE(plan.manifest.files.at(there).unsure);
    }
}

}  // namespace
}  // namespace Mirqos::Tool
