#include "tools/mirqos/PartFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {
namespace {

namespace fs = std::filesystem;

class ToolPartFile : public ::testing::Test {
protected:
    ToolPartFile() { fs::create_directories(m_folder); }
    ~ToolPartFile() override {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }

    static std::string Utf8(const fs::path& path) { return path.u8string(); }
    fs::path Path(const std::string& name) const { return m_folder / fs::u8path(name); }
    std::string Name(const std::string& name) const { return Utf8(Path(name)); }

    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(Path(name), std::ios::binary) << text;
    }
    std::string Text(const std::string& name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::ptrdiff_t FileCount() const {
        return std::distance(fs::directory_iterator(m_folder), fs::directory_iterator());
    }
    static void WriteAt(PartFile& file, std::uint64_t offset, const std::string& text) {
        file.WriteAt(offset, reinterpret_cast<const unsigned char*>(text.data()), text.size());
    }
    /// The code of the failure that `action` ends with; Success when it does not fail.
    template <typename Action>
    static ExitCode CodeOf(const Action& action) {
        try {
            action();
        } catch (const Failure& failure) {
            return failure.Code();
        }
        return ExitCode::Success;
    }

    const fs::path m_folder =
        fs::temp_directory_path() / ("mirqos-part-" + std::to_string(std::random_device()()));
};

TEST_F(ToolPartFile, TheNameAppearsOnlyWithTheCommit) {
    PartFile file(Name("new.bin"));
    WriteAt(file, 0, "contents");
    EXPECT_FALSE(fs::exists(Path("new.bin")));
    EXPECT_TRUE(fs::exists(Path("new.bin.part")));
    file.Commit();
    EXPECT_EQ(Text("new.bin"), "contents");
    EXPECT_EQ(FileCount(), 1);
}

TEST_F(ToolPartFile, WithoutACommitNothingIsLeft) {
    {
        PartFile file(Name("new.bin"));
        WriteAt(file, 0, "contents");
    }
    EXPECT_EQ(FileCount(), 0);
}

TEST_F(ToolPartFile, AnExistingFileStaysUntilTheCommitReplacesIt) {
    Write("old.bin", "old");
    {
        PartFile file(Name("old.bin"));
        WriteAt(file, 0, "half");
        EXPECT_EQ(Text("old.bin"), "old");
    }
    EXPECT_EQ(Text("old.bin"), "old");
    PartFile file(Name("old.bin"));
    WriteAt(file, 0, "new");
    file.Commit();
    EXPECT_EQ(Text("old.bin"), "new");
    EXPECT_EQ(FileCount(), 1);
}

TEST_F(ToolPartFile, PlacesMayBeWrittenInAnyOrder) {
    PartFile file(Name("a"));
    WriteAt(file, 5, "world");
    WriteAt(file, 0, "hello");
    file.Commit();
    EXPECT_EQ(Text("a"), "helloworld");
}

TEST_F(ToolPartFile, AnEmptyFileIsAFile) {
    PartFile file(Name("empty"));
    file.Commit();
    EXPECT_TRUE(fs::exists(Path("empty")));
    EXPECT_EQ(fs::file_size(Path("empty")), 0U);
}

TEST_F(ToolPartFile, NamesOtherThanAsciiWork) {
    const std::string name = "\xC3\xA4 \xE2\x82\xAC \xE6\x97\xA5.txt";
    PartFile file(Name(name));
    WriteAt(file, 0, "x");
    file.Commit();
    EXPECT_EQ(Text(name), "x");
}

TEST_F(ToolPartFile, APartOfAnotherRunIsNeitherUsedNorRemoved) {
    Write("a.part", "somebody's");
    EXPECT_EQ(CodeOf([&] { const PartFile file(Name("a")); }), ExitCode::LocalFile);
    EXPECT_EQ(Text("a.part"), "somebody's");
    EXPECT_EQ(FileCount(), 1);
}

TEST_F(ToolPartFile, AFolderIsNotReplaced) {
    fs::create_directory(Path("folder"));
    EXPECT_EQ(CodeOf([&] { const PartFile file(Name("folder")); }), ExitCode::LocalFile);
    EXPECT_EQ(FileCount(), 1);
}

TEST_F(ToolPartFile, AMissingFolderIsALocalFailure) {
    EXPECT_EQ(CodeOf([&] { const PartFile file(Name("missing/a")); }), ExitCode::LocalFile);
}

TEST_F(ToolPartFile, ACommitThatFailsLeavesNothingBehind) {
    {
        PartFile file(Name("a"));
        WriteAt(file, 0, "x");
        fs::create_directory(Path("a"));  // meanwhile, so that the name cannot be given
        EXPECT_EQ(CodeOf([&] { file.Commit(); }), ExitCode::LocalFile);
    }
    EXPECT_FALSE(fs::exists(Path("a.part")));
}

TEST_F(ToolPartFile, AnOpenPartCanBeRemovedByNameForAnAbruptEnd) {
    {
        const PartFile file(Name("a"));
        EXPECT_TRUE(RemoveFile(file.PartName()));
    }
    EXPECT_EQ(FileCount(), 0);
}

TEST_F(ToolPartFile, OnlyOrdinaryFilesAreReadAndReadWhole) {
    Write("in", "0123456789");
    LocalFile file = LocalFile::OpenForReading(Name("in"));
    EXPECT_EQ(file.Size(), 10U);
    unsigned char buffer[16] = {};
    EXPECT_EQ(file.Read(buffer, 4), 4U);
    EXPECT_EQ(file.Read(buffer, 16), 6U);
    EXPECT_EQ(buffer[0], '4');
    EXPECT_EQ(file.Read(buffer, 16), 0U);
    EXPECT_EQ(CodeOf([&] { LocalFile::OpenForReading(Utf8(m_folder)); }), ExitCode::LocalFile);
    EXPECT_EQ(CodeOf([&] { LocalFile::OpenForReading(Name("none")); }), ExitCode::LocalFile);
}

TEST_F(ToolPartFile, AMovedFileClosesWhatItHeld) {
    LocalFile first = LocalFile::CreateNew(Name("one"));
    LocalFile second = LocalFile::CreateNew(Name("two"));
    second = std::move(first);
    second.WriteAt(0, reinterpret_cast<const unsigned char*>("x"), 1);
    second.Close();
    EXPECT_EQ(Text("one"), "x");
    EXPECT_EQ(Text("two"), "");
}

}  // namespace
}  // namespace Mirqos::Tool
