#include "tools/mirqos/SteadyFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Folder.h"

namespace Mirqos::Tool {
namespace {

namespace fs = std::filesystem;

class ToolSteadyFile : public ::testing::Test {
protected:
    ToolSteadyFile() { Write(std::string(100, 'x')); }
    ~ToolSteadyFile() override {
        std::error_code ignored;
        fs::remove(m_path, ignored);
    }

    void Write(const std::string& text) const {
        std::ofstream(m_path, std::ios::binary) << text;
        SetAge(std::chrono::hours(1));
    }
    void SetAge(std::chrono::seconds age) const {
        fs::last_write_time(m_path, fs::file_time_type::clock::now() - age);
    }
    std::string Name() const { return m_path.u8string(); }
    static void Read(SteadyFile& file, std::size_t size) {
        std::vector<unsigned char> to(size);
        file.Read(to.data(), size);
    }

    const fs::path m_path =
        fs::temp_directory_path() / ("mirqos-steady-" + std::to_string(std::random_device()()));
};

TEST_F(ToolSteadyFile, TellsSizeTimeAndDigestOfWhatWasRead) {
    SteadyFile file(Name());
    ASSERT_EQ(file.Size(), 100U);
    Read(file, 60);
    Read(file, 40);
    const FileRecord record = file.Finish();
    EXPECT_EQ(record.state, LocalFile::OpenForReading(Name()).State());
    EXPECT_EQ(record.sha256, Sha256Of(std::string(100, 'x')));
    EXPECT_FALSE(record.recent);
    EXPECT_FALSE(record.deleted);
}

TEST_F(ToolSteadyFile, AFileThatWasJustChangedIsRecent) {
    SetAge(std::chrono::seconds(0));
    EXPECT_TRUE(DigestFile(Name(), [](std::size_t) {}).recent);
}

TEST_F(ToolSteadyFile, AFileThatShrinksIsNoticed) {
    SteadyFile file(Name());
    Write("short");
    EXPECT_THROW(Read(file, 100), Failure);
}

TEST_F(ToolSteadyFile, AFileThatGrowsIsNoticed) {
    SteadyFile file(Name());
    Read(file, 100);
    std::ofstream(m_path, std::ios::binary | std::ios::app) << "more";
    EXPECT_THROW(file.Finish(), Failure);
}

TEST_F(ToolSteadyFile, AnotherTimeIsAnotherFile) {
    SteadyFile file(Name());
    Read(file, 100);
    SetAge(std::chrono::hours(2));
    EXPECT_THROW(file.Finish(), Failure);
}

TEST_F(ToolSteadyFile, AFileThatWasNotReadToItsEndIsNoRecord) {
    SteadyFile file(Name());
    Read(file, 99);
    EXPECT_THROW(file.Finish(), Failure);
}

TEST_F(ToolSteadyFile, DigestsOfManyPiecesAndOfNoneAreRight) {
    const std::string text(3'000'001, 'y');
    Write(text);
    std::size_t read = 0;
    EXPECT_EQ(DigestFile(Name(), [&](std::size_t size) { read += size; }).sha256, Sha256Of(text));
    EXPECT_EQ(read, text.size());
    Write("");
    EXPECT_EQ(DigestFile(Name(), [](std::size_t) {}).sha256,
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

}  // namespace
}  // namespace Mirqos::Tool
