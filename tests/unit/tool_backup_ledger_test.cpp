#include "tools/mirqos/BackupLedger.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {
namespace {

FileRecord RecordOf(std::uint64_t size) {
    FileRecord record;
    record.state.size = size;
    return record;
}

/// What a service holds of a manifest, while a run does its tasks.
class ToolBackupLedger : public ::testing::Test {
protected:
    void Stored(const std::string& path) { m_plan.manifest.files[path] = RecordOf(5); }
    BackupPlan::Task& ToDo(const std::string& path, bool likely = true) {
        BackupPlan::Task task;
        task.path = path;
        task.likely = likely;
        m_plan.tasks.push_back(task);
        return m_plan.tasks.back();
    }
    void Begin() {
        m_ledger.emplace(
            [this](const Manifest& manifest) {
                if (m_refusing) {
                    throw Failure(ExitCode::OperationFailed, "refused");
                }
                m_saves.push_back(manifest);
            },
            m_plan, true);
    }
    const BackupPlan::Task& Task(std::size_t index) const { return m_plan.tasks[index]; }
    void Send(std::size_t index) {
        m_ledger->Replace(Task(index));
        m_ledger->Record(Task(index), RecordOf(6));
    }
    bool SavedUnsure(const std::string& path) const { return m_saves.back().files.at(path).unsure; }

    BackupPlan m_plan;
    std::vector<Manifest> m_saves;
    bool m_refusing = false;
    std::optional<BackupLedger> m_ledger;
};

TEST_F(ToolBackupLedger, OneSaveBeforeTheFirstReplacementDoubtsAllThatWillBe) {
    for (const char* path : {"a", "b", "same"}) {
        Stored(path);
    }
    ToDo("a");
    ToDo("b");
    Begin();
    m_ledger->Replace(Task(0));
    ASSERT_EQ(m_saves.size(), 1U);
    EXPECT_FALSE(m_saves.back().runEnded);
    EXPECT_TRUE(SavedUnsure("a"));
    EXPECT_TRUE(SavedUnsure("b"));
    EXPECT_FALSE(SavedUnsure("same"));
    m_ledger->Record(Task(0), RecordOf(6));
    Send(1);
    EXPECT_EQ(m_saves.size(), 1U);
    m_ledger->SaveEnded();
    ASSERT_EQ(m_saves.size(), 2U);
    EXPECT_TRUE(m_saves.back().runEnded);
    EXPECT_EQ(m_saves.back().files.at("a"), RecordOf(6));
    EXPECT_FALSE(SavedUnsure("b"));
}

TEST_F(ToolBackupLedger, WhatTurnsOutToDifferIsDoubtedByItself) {
    Stored("a");
    Stored("b");
    ToDo("a", false);
    ToDo("b", false);
    Begin();
    m_ledger->Replace(Task(0));
    EXPECT_TRUE(SavedUnsure("a"));
    EXPECT_FALSE(SavedUnsure("b"));
    m_ledger->Replace(Task(1));
    EXPECT_EQ(m_saves.size(), 2U);
    EXPECT_TRUE(SavedUnsure("b"));
}

TEST_F(ToolBackupLedger, NewFilesAndThoseThatAreAsStoredAreNoReasonToSave) {
    Stored("touched");
    ToDo("new");
    ToDo("touched");
    Begin();
    Send(0);
    m_ledger->Record(Task(1), RecordOf(5));
    EXPECT_TRUE(m_saves.empty());
}

TEST_F(ToolBackupLedger, AFailedRunDoubtsOnlyWhatItMayHaveReplaced) {
    for (const char* path : {"failed", "not begun", "sent"}) {
        Stored(path);
    }
    ToDo("failed");
    ToDo("not begun");
    ToDo("sent");
    Begin();
    Send(2);
    m_ledger->Replace(Task(0));
    m_ledger->SaveUnfinished();
    EXPECT_FALSE(m_saves.back().runEnded);
    EXPECT_TRUE(SavedUnsure("failed"));
    EXPECT_FALSE(SavedUnsure("not begun"));
    EXPECT_FALSE(SavedUnsure("sent"));
}

TEST_F(ToolBackupLedger, AnEndedRunStillDoubtsWhatFailedOrWasUnsureBefore) {
    for (const char* path : {"failed", "unread", "unsure"}) {
        Stored(path);
        ToDo(path);
    }
    m_plan.manifest.files["unsure"].unsure = true;
    Begin();
    m_ledger->Replace(Task(0));
    m_ledger->SaveEnded();
    EXPECT_TRUE(SavedUnsure("failed"));
    EXPECT_FALSE(SavedUnsure("unread"));
    EXPECT_TRUE(SavedUnsure("unsure"));
}

TEST_F(ToolBackupLedger, NothingIsReplacedBeforeTheDoubtIsStored) {
    Stored("a");
    Stored("b");
    ToDo("a");
    ToDo("b");
    Begin();
    m_refusing = true;
    EXPECT_THROW(m_ledger->Replace(Task(0)), Failure);
    EXPECT_THROW(m_ledger->Replace(Task(1)), Failure);
    m_refusing = false;
    m_ledger->Replace(Task(1));
    EXPECT_TRUE(SavedUnsure("b"));
}

TEST_F(ToolBackupLedger, AGoneFileWhoseObjectIsReplacedIsDoubtedThenForgotten) {
    Stored("a@b");
    m_plan.manifest.files["a@b"].deleted = true;
    ToDo("a+b", false).displaced = "a@b";
    Begin();
    m_ledger->Replace(Task(0));
    EXPECT_TRUE(SavedUnsure("a@b"));
    m_ledger->Record(Task(0), RecordOf(6));
    EXPECT_EQ(m_ledger->DoomDeleted(), std::vector<std::string>{});
    m_ledger->SaveEnded();
    EXPECT_EQ(m_saves.back().files.count("a@b"), 0U);
    EXPECT_EQ(m_saves.back().files.at("a+b"), RecordOf(6));
}

TEST_F(ToolBackupLedger, DeletedFilesStandInItUntilTheyAreRemoved) {
    Stored("a");
    Stored("gone");
    m_plan.manifest.files["gone"].deleted = true;
    Begin();
    EXPECT_EQ(m_ledger->DoomDeleted(), std::vector<std::string>{"gone"});
    m_ledger->SaveEnded();
    EXPECT_TRUE(SavedUnsure("gone"));
    EXPECT_FALSE(SavedUnsure("a"));
    m_ledger->ForgetDeleted();
    m_ledger->SaveEnded();
    EXPECT_EQ(m_saves.back().files.count("gone"), 0U);
    EXPECT_EQ(m_saves.size(), 2U);
}

}  // namespace
}  // namespace Mirqos::Tool
