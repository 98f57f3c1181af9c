#include "log/posix/TextFileOutput.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "log/CMIRQOSLog.h"
#include "log/ModuleLog.h"
#include "log/dbg/LinePrefix.h"
#include "tests/support/RecordingOutput.h"

namespace {

namespace fs = std::filesystem;
using Aws::Utils::Logging::LogLevel;
using Mirqos::TextFileOutput;

class TextFileOutputTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "mirqos-log-XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        m_folder = name;
    }
    void TearDown() override { fs::remove_all(m_folder); }

    fs::path File() const { return m_folder / "module.log"; }

    std::string Content() const {
        std::ifstream stream(File(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    // The file's lines without their ends; every line has to have one.
    std::vector<std::string> Lines() const {
        std::vector<std::string> lines;
        const std::string content = Content();
        std::size_t begin = 0;
        for (std::size_t end; (end = content.find("\r\n", begin)) != std::string::npos;
             begin = end + 2) {
            lines.push_back(content.substr(begin, end - begin));
        }
        EXPECT_EQ(begin, content.size()) << "the last line has no end";
        return lines;
    }

    static std::string Message(const std::string& line) {
        const std::size_t end = line.find("] ");
        return end == std::string::npos ? std::string() : line.substr(end + 2);
    }

    fs::path m_folder;
};

TEST_F(TextFileOutputTest, ALineHasTheProductsLayoutWithTimeProcessAndThread) {
    constexpr std::size_t kTimeLength = 23;  // "2024/03/09 07:05:01:042"
    char before[256];
    char after[256];
    FormatLinePrefix(before, sizeof(before), Mirqos::CurrentLinePrefix(1, 0));
    TextFileOutput(File()).Write(1, 0, "the message");
    FormatLinePrefix(after, sizeof(after), Mirqos::CurrentLinePrefix(1, 0));
    const std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    const std::string time = lines[0].substr(1, kTimeLength);
    EXPECT_LE(std::string(before + 1, kTimeLength), time);
    EXPECT_LE(time, std::string(after + 1, kTimeLength));
    EXPECT_EQ(lines[0], "[" + time + std::string(before).substr(1 + kTimeLength) + "the message");
}

TEST_F(TextFileOutputTest, AnErrorCodeIsPartOfTheLayout) {
    TextFileOutput(File()).Write(2, 5, L"the message");
    const std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("   02   "), std::string::npos);
    EXPECT_NE(lines[0].find("   0X00000005] the message"), std::string::npos) << lines[0];
}

TEST_F(TextFileOutputTest, TheFileIsCreatedByTheFirstLine) {
    TextFileOutput output(File());
    EXPECT_FALSE(fs::exists(File()));
    output.Write(3, 0, "dropped");
    EXPECT_FALSE(fs::exists(File()));
    output.Write(1, 0, "kept");
    EXPECT_TRUE(fs::exists(File()));
}

TEST_F(TextFileOutputTest, LinesAboveLevel2AreDropped) {
    TextFileOutput output(File());
    EXPECT_EQ(output.GetLevel(), 2);
    output.Write(3, 0, "three");
    output.Write(3, 0, L"three");
    output.Write(2, 0, "two");
    const std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(Message(lines[0]), "two");
}

TEST_F(TextFileOutputTest, AnExistingFileIsAppendedTo) {
    std::ofstream(File(), std::ios::binary) << "before\r\n";
    TextFileOutput(File()).Write(1, 0, "after");
    const std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "before");
    EXPECT_EQ(Message(lines[1]), "after");
}

TEST_F(TextFileOutputTest, AFileThatCannotBeOpenedLosesTheLineAndIsTriedAgain) {
    m_folder /= "later";
    TextFileOutput output(File());
    output.Write(1, 0, "lost");
    fs::create_directory(m_folder);
    output.Write(1, 0, "kept");
    const std::vector<std::string> lines = Lines();
    m_folder = m_folder.parent_path();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(Message(lines[0]), "kept");
}

TEST_F(TextFileOutputTest, WideTextIsWrittenAsUtf8) {
    TextFileOutput(File()).Write(1, 0, L"\x20ac \x00e9 \U0001f4be");
    const std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(Message(lines[0]), "\xe2\x82\xac \xc3\xa9 \xf0\x9f\x92\xbe");
}

void WriteMany(const fs::path& file, char writer, int count) {
    TextFileOutput output(file);
    const std::string text(500, writer);
    for (int i = 0; i < count; ++i) {
        output.Write(1, 0, (text + std::to_string(i)).c_str());
    }
}

TEST_F(TextFileOutputTest, SeveralProcessesAppendWholeLines) {
    constexpr int kLines = 200;
    std::vector<pid_t> children;
    for (const char writer : {'a', 'b', 'c'}) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            WriteMany(File(), writer, kLines);
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    std::set<std::string> messages;
    for (const std::string& line : Lines()) {
        messages.insert(Message(line));
    }
    EXPECT_EQ(messages.size(), 3u * kLines);
    for (const char writer : {'a', 'b', 'c'}) {
        for (int i = 0; i < kLines; ++i) {
            EXPECT_EQ(messages.count(std::string(500, writer) + std::to_string(i)), 1u);
        }
    }
}

TEST_F(TextFileOutputTest, SeveralThreadsOfOneOutputAppendWholeLines) {
    TextFileOutput output(File());
    constexpr int kLines = 200;
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (const char writer : {'a', 'b', 'c'}) {
        threads.emplace_back([&output, writer] {
            const std::string text(500, writer);
            for (int i = 0; i < kLines; ++i) {
                output.Write(1, 0, text.c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::multiset<std::string> messages;
    for (const std::string& line : Lines()) {
        messages.insert(Message(line));
    }
    for (const char writer : {'a', 'b', 'c'}) {
        EXPECT_EQ(messages.count(std::string(500, writer)), static_cast<std::size_t>(kLines));
    }
    EXPECT_EQ(messages.size(), 3u * kLines);
}

// --- The environment variable

class LogFileVariableTest : public TextFileOutputTest {
protected:
    static constexpr const char* kName = "MIRQOS_LOG_FILE";

    // One thread alone reads and writes the environment here.
    // NOLINTBEGIN(concurrency-mt-unsafe)
    static std::optional<std::string> Variable() {
        const char* value = std::getenv(kName);
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    }
    static void SetVariable(const std::optional<std::string>& value) {
        if (value) {
            setenv(kName, value->c_str(), 1);
        } else {
            unsetenv(kName);
        }
    }
    // NOLINTEND(concurrency-mt-unsafe)

    void TearDown() override {
        SetVariable(m_former);
        TextFileOutputTest::TearDown();
    }

    const std::optional<std::string> m_former = Variable();
};

TEST_F(LogFileVariableTest, ALoggerWritesToTheFileItNames) {
    SetVariable(File().string());
    CMIRQOSLog log(LogLevel::Warn);
    EXPECT_EQ(log.m_pSMOutput, nullptr);
    ModuleLog(&log, 1, "narrow");
    ModuleLogW(&log, 2, L"wide");
    ModuleLog(&log, 3, "trace");
    const std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(Message(lines[0]), "narrow");
    EXPECT_EQ(Message(lines[1]), "wide");
}

TEST_F(LogFileVariableTest, WithoutItALoggerHasNoFile) {
    SetVariable({});
    EXPECT_EQ(CMIRQOSLog(LogLevel::Warn).m_pFileOutput, nullptr);
    SetVariable("");
    EXPECT_EQ(CMIRQOSLog(LogLevel::Warn).m_pFileOutput, nullptr);
}

TEST_F(LogFileVariableTest, EachLoggerReadsItAnew) {
    SetVariable((m_folder / "other.log").string());
    CMIRQOSLog first(LogLevel::Warn);
    SetVariable(File().string());
    CMIRQOSLog second(LogLevel::Warn);
    ModuleLog(&first, 1, "first");
    ModuleLog(&second, 1, "second");
    ASSERT_EQ(Lines().size(), 1u);
    EXPECT_EQ(Message(Lines()[0]), "second");
    EXPECT_TRUE(fs::exists(m_folder / "other.log"));
}

TEST_F(LogFileVariableTest, AnSdkWarningArrivesAsALineOfTheModuleLog) {
    Mirqos::Test::LogRecording restoresTheOutputs;
    g_ModuleLog.m_pFileOutput = std::make_unique<TextFileOutput>(File());
    CMIRQOSLog sdkLog(LogLevel::Warn);
    sdkLog.Log(LogLevel::Warn, "Tag", "slow %s", "answer");
    const std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(Message(lines[0]).rfind("[AWS_SDK] ", 0), 0u) << lines[0];
    EXPECT_NE(lines[0].find("slow answer"), std::string::npos) << lines[0];
}

}  // namespace
