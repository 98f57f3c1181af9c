#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "log/CMIRQOSLog.h"
#include "log/ModuleLog.h"
#include "platform/text.h"
#include "tests/support/RecordingOutput.h"
#include "tests/support/UsedSdk.h"

namespace {

using Aws::Utils::Logging::LogLevel;
using Mirqos::WidenText;
using Mirqos::Test::LogRecording;
using Mirqos::Test::RecordedLine;

constexpr std::size_t kLongest = 1023;

// A text that ends the test if anybody reads it.
const char* Unreadable() {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): an address that is none is the point
    return reinterpret_cast<const char*>(std::uintptr_t{16});
}

TEST(ModuleLog, LevelThreeIsDroppedWithoutBeingFormatted) {
    LogRecording recording;
    recording.File().SetLevel(5);
    recording.Channel().SetLevel(5);
    EXPECT_EQ(ModuleLog(&g_ModuleLog, 3, "%s", Unreadable()), 0);
    EXPECT_EQ(ModuleLogW(&g_ModuleLog, 3, L"%hs", Unreadable()), 0);
    EXPECT_TRUE(recording.File().Lines().empty());
    EXPECT_TRUE(recording.Channel().Lines().empty());
    EXPECT_EQ(recording.File().LevelQueries(), 0);
}

TEST(ModuleLog, LevelsOneAndTwoReachBothOutputsWithoutAnErrorCode) {
    LogRecording recording;
    EXPECT_EQ(ModuleLog(&g_ModuleLog, 1, "one %d", 11), 6);
    EXPECT_EQ(ModuleLogW(&g_ModuleLog, 2, L"two %d", 222), 7);
    for (auto* output : {&recording.File(), &recording.Channel()}) {
        const std::vector<RecordedLine> lines = output->Lines();
        ASSERT_EQ(lines.size(), 2u);
        EXPECT_EQ(lines[0].text, "one 11");
        EXPECT_EQ(lines[0].level, 1);
        EXPECT_EQ(lines[0].errorCode, 0);
        EXPECT_FALSE(lines[0].wide);
        EXPECT_EQ(lines[1].wideText, L"two 222");
        EXPECT_EQ(lines[1].level, 2);
        EXPECT_EQ(lines[1].errorCode, 0);
        EXPECT_TRUE(lines[1].wide);
    }
}

TEST(ModuleLog, LevelsBelowOneAreWritten) {
    LogRecording recording;
    ModuleLog(&g_ModuleLog, 0, "zero");
    ModuleLog(&g_ModuleLog, -1, "minus");
    EXPECT_EQ(recording.Texts(), (std::vector<std::string>{"zero", "minus"}));
}

TEST(ModuleLog, ThreeThousandCharactersAreCutTo1023) {
    LogRecording recording;
    const std::string text = std::string(3000, 'x');
    EXPECT_EQ(ModuleLog(&g_ModuleLog, 1, "%s", text.c_str()), -1);
    EXPECT_EQ(ModuleLogW(&g_ModuleLog, 1, L"%s", WidenText(text.c_str()).c_str()), -1);
    const std::vector<RecordedLine> lines = recording.File().Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].text, text.substr(0, kLongest));
    EXPECT_EQ(lines[1].wideText, std::wstring(kLongest, L'x'));
}

TEST(ModuleLog, A1023CharacterLineStaysWhole) {
    LogRecording recording;
    const std::string text = std::string(kLongest - 1, 'x') + 'z';
    EXPECT_EQ(ModuleLog(&g_ModuleLog, 1, "%s", text.c_str()), static_cast<int>(kLongest));
    EXPECT_EQ(ModuleLogW(&g_ModuleLog, 1, L"%s", WidenText(text.c_str()).c_str()),
              static_cast<int>(kLongest));
    EXPECT_EQ(recording.Texts(), (std::vector<std::string>{text, text}));
}

TEST(ModuleLog, A1024CharacterLineLosesItsLastCharacter) {
    LogRecording recording;
    const std::string text = std::string(kLongest, 'x') + 'z';
    EXPECT_EQ(ModuleLog(&g_ModuleLog, 1, "%s", text.c_str()), -1);
    EXPECT_EQ(recording.Texts(), (std::vector<std::string>{text.substr(0, kLongest)}));
}

TEST(ModuleLog, LineFeedsAtBothEndsAreRemoved) {
    LogRecording recording;
    EXPECT_EQ(ModuleLog(&g_ModuleLog, 1, "\n\nabc\n"), 6);
    EXPECT_EQ(ModuleLogW(&g_ModuleLog, 1, L"\n\nabc\n"), 6);
    EXPECT_EQ(recording.Texts(), (std::vector<std::string>{"abc", "abc"}));
}

TEST(ModuleLog, OnlyLineFeedsAtTheEndsAreRemoved) {
    LogRecording recording;
    ModuleLog(&g_ModuleLog, 1, "\n a\nb\r\n\n");
    ModuleLog(&g_ModuleLog, 1, "\r\n \n");
    EXPECT_EQ(recording.Texts(), (std::vector<std::string>{" a\nb\r", "\r\n "}));
}

TEST(ModuleLog, ALineOfLineFeedsBecomesAnEmptyLine) {
    LogRecording recording;
    EXPECT_EQ(ModuleLog(&g_ModuleLog, 1, "\n\n\n"), 3);
    EXPECT_EQ(ModuleLogW(&g_ModuleLog, 1, L"%s", L""), 0);
    EXPECT_EQ(recording.Texts(), (std::vector<std::string>{"", ""}));
}

TEST(ModuleLog, LineFeedsAreRemovedAfterTheCut) {
    LogRecording recording;
    const std::string text = std::string(kLongest - 3, 'x');
    EXPECT_EQ(ModuleLog(&g_ModuleLog, 1, "%s\n\n\n\n\nlost", text.c_str()), -1);
    EXPECT_EQ(recording.Texts(), (std::vector<std::string>{text}));
}

TEST(ModuleLog, ANullTextPrintsNull) {
    LogRecording recording;
    const char* volatile narrow = nullptr;
    const wchar_t* wide = nullptr;
    ModuleLog(&g_ModuleLog, 1, "[%s]", static_cast<const char*>(narrow));
    ModuleLogW(&g_ModuleLog, 1, L"[%s]", wide);
    ModuleLogW(&g_ModuleLog, 1, L"[%s]", WidenText(narrow).c_str());
    EXPECT_EQ(recording.Texts(), (std::vector<std::string>{"[(null)]", "[(null)]", "[(null)]"}));
}

TEST(ModuleLog, NarrowTextsEnterAWideLineConverted) {
    LogRecording recording;
    ModuleLogW(&g_ModuleLog, 1, L"[%s] %s is [%llu]", WidenText("Class::Operation").c_str(),
               L"C:\\temp\\\x00e9\x20ac.tmp", 18446744073709551615ull);
    const std::vector<RecordedLine> lines = recording.File().Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].wideText,
              L"[Class::Operation] C:\\temp\\\x00e9\x20ac.tmp is [18446744073709551615]");
}

TEST(ModuleLog, WithoutAFileOutputNothingIsWritten) {
    LogRecording recording;
    const std::unique_ptr<IDBGLogOutput> file = std::move(g_ModuleLog.m_pFileOutput);
    EXPECT_EQ(ModuleLog(&g_ModuleLog, 1, "seven %d", 7), 7);
    EXPECT_EQ(ModuleLogW(&g_ModuleLog, 1, L"seven %d", 7), 7);
    EXPECT_TRUE(recording.Channel().Lines().empty());
    EXPECT_EQ(recording.Channel().LevelQueries(), 0);
}

TEST(ModuleLog, WithoutAChannelOutputTheFileGetsTheLine) {
    LogRecording recording;
    const std::unique_ptr<IDBGLogOutput> channel = std::move(g_ModuleLog.m_pSMOutput);
    ModuleLog(&g_ModuleLog, 1, "one");
    ModuleLogW(&g_ModuleLog, 2, L"two");
    EXPECT_EQ(recording.Texts(), (std::vector<std::string>{"one", "two"}));
    recording.File().SetLevel(1);
    EXPECT_EQ(ModuleLog(&g_ModuleLog, 2, "three"), 5);
    EXPECT_EQ(recording.Texts().size(), 2u);
}

TEST(ModuleLog, ALineAboveBothOutputsIsHandedToNeither) {
    LogRecording recording;
    recording.File().SetLevel(1);
    recording.Channel().SetLevel(0);
    EXPECT_EQ(ModuleLog(&g_ModuleLog, 2, "two"), 3);
    EXPECT_EQ(ModuleLogW(&g_ModuleLog, 2, L"two"), 3);
    EXPECT_TRUE(recording.File().Lines().empty());
    EXPECT_TRUE(recording.Channel().Lines().empty());
}

TEST(ModuleLog, ALineMeantForOneOutputIsHandedToBothWhichFilterThemselves) {
    for (const bool fileWants : {true, false}) {
        LogRecording recording;
        recording.File().SetLevel(fileWants ? 2 : 1);
        recording.Channel().SetLevel(fileWants ? 1 : 2);
        ModuleLog(&g_ModuleLog, 2, "two");
        EXPECT_EQ(recording.File().Lines().size(), 1u);
        EXPECT_EQ(recording.Channel().Lines().size(), 1u);
    }
}

// Notes what happens to it in a list that several outputs share.
class NotingOutput : public IDBGLogOutput {
public:
    NotingOutput(std::string name, std::vector<std::string>& notes)
        : m_name(std::move(name)), m_notes(notes) {}
    ~NotingOutput() override { m_notes.push_back(m_name + " destroyed"); }
    void Write(int, int, const char*) override { m_notes.push_back(m_name + " narrow"); }
    void Write(int, int, const wchar_t*) override { m_notes.push_back(m_name + " wide"); }
    int GetLevel() override { return 2; }

private:
    const std::string m_name;
    std::vector<std::string>& m_notes;
};

TEST(ModuleLog, TheFileComesBeforeTheChannelInWritingAndInDestruction) {
    std::vector<std::string> notes;
    {
        CMIRQOSLog log(LogLevel::Warn);
        log.m_pFileOutput = std::make_unique<NotingOutput>("file", notes);
        log.m_pSMOutput = std::make_unique<NotingOutput>("channel", notes);
        ModuleLog(&log, 1, "x");
        ModuleLogW(&log, 1, L"x");
    }
    EXPECT_EQ(notes,
              (std::vector<std::string>{"file narrow", "channel narrow", "file wide",
                                        "channel wide", "file destroyed", "channel destroyed"}));
}

TEST(ModuleLog, ThreadsMayLogAtOnce) {
    LogRecording recording;
    constexpr int kThreads = 4;
    constexpr int kLines = 500;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([thread] {
            for (int line = 0; line < kLines; ++line) {
                ModuleLog(&g_ModuleLog, 1, "%d:%d", thread, line);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::vector<int> next(kThreads, 0);
    for (const std::string& text : recording.Texts()) {
        const auto thread = static_cast<std::size_t>(text.front() - '0');
        ASSERT_LT(thread, next.size());
        EXPECT_EQ(text, std::to_string(thread) + ':' + std::to_string(next[thread]++));
    }
    EXPECT_EQ(next, std::vector<int>(kThreads, kLines));
}

// --- The SDK's log system

void Say(CMIRQOSLog& log, LogLevel level, const std::string& text) {
    Aws::OStringStream stream;
    stream << text.c_str();
    log.LogStream(level, "Tag", stream);
}

TEST(SdkLogBridge, TheModuleLoggerIsBuiltForWarningsWithThreshold2) {
    EXPECT_EQ(g_ModuleLog.GetLogLevel(), LogLevel::Warn);
    EXPECT_EQ(g_ModuleLog.m_nLevel, 2);
}

TEST(SdkLogBridge, AnInstanceKeepsTheLevelItWasBuiltWith) {
    for (const LogLevel level : {LogLevel::Off, LogLevel::Error, LogLevel::Trace}) {
        const CMIRQOSLog log(level);
        EXPECT_EQ(log.GetLogLevel(), level);
        EXPECT_EQ(log.m_nLevel, 2);
    }
}

TEST(SdkLogBridge, StatementsGoToTheModuleLogAtLevel1AndNeverToTheInstancesOwnOutputs) {
    LogRecording recording;
    CMIRQOSLog sdkLog(LogLevel::Warn);
    {
        LogRecording own(sdkLog);
        Say(sdkLog, LogLevel::Warn, "something odd");
        sdkLog.Log(LogLevel::Error, "Tag", "%s %d", "formatted", 5);
        EXPECT_TRUE(own.File().Lines().empty());
        EXPECT_TRUE(own.Channel().Lines().empty());
    }
    const std::vector<RecordedLine> lines = recording.File().Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(recording.Channel().Lines().size(), 2u);
    for (const RecordedLine& line : lines) {
        EXPECT_EQ(line.level, 1);
        EXPECT_EQ(line.text.rfind("[AWS_SDK] ", 0), 0u) << line.text;
        EXPECT_EQ(line.text.find('\n'), std::string::npos) << line.text;
    }
    EXPECT_NE(lines[0].text.find("something odd"), std::string::npos);
    EXPECT_NE(lines[1].text.find("formatted 5"), std::string::npos);
}

TEST(SdkLogBridge, TheInstancesLevelFilters) {
    if (!Mirqos::Test::kBundledSdk) {
        GTEST_SKIP() << "an installed SDK filters where its statements are made";
    }
    LogRecording recording;
    CMIRQOSLog sdkLog(LogLevel::Warn);
    Say(sdkLog, LogLevel::Info, "chatter");
    EXPECT_TRUE(recording.File().Lines().empty());
}

TEST(SdkLogBridge, PercentSignsOfAStatementAreNotFormats) {
    LogRecording recording;
    CMIRQOSLog sdkLog(LogLevel::Warn);
    Say(sdkLog, LogLevel::Warn, "a%20b %s %n");
    ASSERT_EQ(recording.Texts().size(), 1u);
    EXPECT_NE(recording.Texts()[0].find("a%20b %s %n"), std::string::npos);
}

TEST(SdkLogBridge, ALongStatementIsCutLikeAnyLine) {
    LogRecording recording;
    CMIRQOSLog sdkLog(LogLevel::Warn);
    Say(sdkLog, LogLevel::Warn, std::string(5000, 'y'));
    ASSERT_EQ(recording.Texts().size(), 1u);
    EXPECT_EQ(recording.Texts()[0].size(), kLongest);
}

TEST(SdkLogBridge, FlushingChangesNothing) {
    LogRecording recording;
    g_ModuleLog.Flush();
    EXPECT_TRUE(recording.File().Lines().empty());
}

}  // namespace
