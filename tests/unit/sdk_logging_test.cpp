#include <aws/core/utils/logging/AWSLogging.h>
#include <aws/core/utils/logging/FormattedLogSystem.h>
#include <aws/core/utils/logging/LogMacros.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace Aws::Utils::Logging;

/// Keeps what it is given.
class KeepingLog : public FormattedLogSystem {
public:
    using FormattedLogSystem::FormattedLogSystem;

    std::vector<std::string> Lines() {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }

protected:
    void ProcessFormattedStatement(Aws::String&& statement) override {
        const std::lock_guard lock(m_mutex);
        m_lines.emplace_back(statement.c_str());
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

Aws::OStringStream StreamOf(const char* text) {
    Aws::OStringStream stream;
    stream << text;
    return stream;
}

class SdkLogging : public testing::Test {
protected:
    ~SdkLogging() override { ShutdownAWSLogging(); }
};

TEST_F(SdkLogging, LevelsHaveTheSdksNumbers) {
    EXPECT_EQ(static_cast<int>(LogLevel::Off), 0);
    EXPECT_EQ(static_cast<int>(LogLevel::Fatal), 1);
    EXPECT_EQ(static_cast<int>(LogLevel::Error), 2);
    EXPECT_EQ(static_cast<int>(LogLevel::Warn), 3);
    EXPECT_EQ(static_cast<int>(LogLevel::Info), 4);
    EXPECT_EQ(static_cast<int>(LogLevel::Debug), 5);
    EXPECT_EQ(static_cast<int>(LogLevel::Trace), 6);
}

TEST_F(SdkLogging, StatementHasItsUsualShape) {
    KeepingLog log(LogLevel::Trace);
    log.LogStream(LogLevel::Error, "Tag", StreamOf("the message"));
    std::ostringstream id;
    id << std::this_thread::get_id();
    ASSERT_EQ(log.Lines().size(), 1u);
    const std::string line = log.Lines()[0];
    const std::string end = " Tag [" + id.str() + "] the message\n";
    // "[ERROR] 2020-01-31 12:34:56.789" and the rest, with every digit a nine.
    std::string shape = line.substr(0, line.size() - end.size());
    for (char& c : shape) {
        c = c >= '0' && c <= '9' ? '9' : c;
    }
    EXPECT_EQ(shape, "[ERROR] 9999-99-99 99:99:99.999");
    EXPECT_THAT(line, testing::EndsWith(end));
}

TEST_F(SdkLogging, EachLevelHasItsName) {
    KeepingLog log(LogLevel::Trace);
    const std::pair<LogLevel, const char*> names[] = {
        {LogLevel::Fatal, "[FATAL] "}, {LogLevel::Error, "[ERROR] "},
        {LogLevel::Warn, "[WARN] "},   {LogLevel::Info, "[INFO] "},
        {LogLevel::Debug, "[DEBUG] "}, {LogLevel::Trace, "[TRACE] "}};
    for (const auto& [level, name] : names) {
        log.LogStream(level, "t", StreamOf("m"));
        EXPECT_THAT(log.Lines().back(), testing::StartsWith(name));
    }
    EXPECT_STREQ(GetLogLevelName(LogLevel::Off), "OFF");
}

TEST_F(SdkLogging, StatementsAboveTheLevelAreDropped) {
    for (int own = 0; own <= 6; ++own) {
        KeepingLog log(static_cast<LogLevel>(own));
        EXPECT_EQ(log.GetLogLevel(), static_cast<LogLevel>(own));
        for (int level = 0; level <= 6; ++level) {
            log.LogStream(static_cast<LogLevel>(level), "t", StreamOf("m"));
            log.Log(static_cast<LogLevel>(level), "t", "%s", "m");
        }
        EXPECT_EQ(log.Lines().size(), static_cast<std::size_t>(2 * own));
    }
}

TEST_F(SdkLogging, FormattedMessagesOfAnyLengthAreKeptWhole) {
    KeepingLog log(LogLevel::Info);
    const std::string text(100000, 'x');
    log.Log(LogLevel::Info, "t", "%s-%d", text.c_str(), 42);
    log.Log(LogLevel::Info, "t", "%s", "");
    EXPECT_THAT(log.Lines().at(0), testing::EndsWith("] " + text + "-42\n"));
    EXPECT_THAT(log.Lines().at(1), testing::EndsWith("] \n"));
}

TEST_F(SdkLogging, MacrosReachTheLogSystemAndEvaluateOnlyWhatIsWanted) {
    const auto log = std::make_shared<KeepingLog>(LogLevel::Warn);
    int evaluated = 0;
    AWS_LOGSTREAM_ERROR("t", "before" << ++evaluated);
    InitializeAWSLogging(log);
    AWS_LOGSTREAM_FATAL("t", "a" << ++evaluated);
    AWS_LOGSTREAM_ERROR("t", "b" << ++evaluated);
    AWS_LOGSTREAM_WARN("t", "c" << ++evaluated);
    AWS_LOGSTREAM_INFO("t", "d" << ++evaluated);
    AWS_LOGSTREAM_DEBUG("t", "e" << ++evaluated);
    AWS_LOGSTREAM_TRACE("t", "f" << ++evaluated);
    EXPECT_EQ(evaluated, 3);
    ASSERT_EQ(log->Lines().size(), 3u);
    EXPECT_THAT(log->Lines()[2], testing::EndsWith("] c3\n"));
    ShutdownAWSLogging();
    AWS_LOGSTREAM_ERROR("t", "after" << ++evaluated);
    EXPECT_EQ(evaluated, 3);
}

TEST_F(SdkLogging, ShutdownLetsGoOfTheLogSystem) {
    auto log = std::make_shared<KeepingLog>(LogLevel::Warn);
    const std::weak_ptr<KeepingLog> watch = log;
    InitializeAWSLogging(log);
    log.reset();
    EXPECT_FALSE(watch.expired());
    EXPECT_EQ(GetLogSystem(), watch.lock());
    ShutdownAWSLogging();
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(GetLogSystem(), nullptr);
    ShutdownAWSLogging();
}

TEST_F(SdkLogging, LogSystemMayBeReplacedWhileThreadsLog) {
    std::atomic<bool> stop{false};
    std::atomic<int> logged{0};
    std::vector<std::thread> loggers;
    for (int n = 0; n < 4; ++n) {
        loggers.emplace_back([&] {
            while (!stop) {
                AWS_LOGSTREAM_ERROR("t", "m" << ++logged);
            }
        });
    }
    for (int round = 0; round < 200; ++round) {
        InitializeAWSLogging(std::make_shared<KeepingLog>(LogLevel::Error));
        const int before = logged;
        while (logged == before) {
            std::this_thread::yield();
        }
        ShutdownAWSLogging();
    }
    stop = true;
    for (std::thread& logger : loggers) {
        logger.join();
    }
    EXPECT_EQ(GetLogSystem(), nullptr);
}

/// Logs from its own end, as a file output may.
class TalkativeLog : public KeepingLog {
public:
    using KeepingLog::KeepingLog;
    ~TalkativeLog() override { AWS_LOGSTREAM_ERROR("t", "the end"); }
};

TEST_F(SdkLogging, LogSystemMayLogWhileItEnds) {
    InitializeAWSLogging(std::make_shared<TalkativeLog>(LogLevel::Error));
    ShutdownAWSLogging();
    InitializeAWSLogging(std::make_shared<TalkativeLog>(LogLevel::Error));
    const auto next = std::make_shared<KeepingLog>(LogLevel::Error);
    InitializeAWSLogging(next);
    EXPECT_EQ(next->Lines().size(), 1u);
}

}  // namespace
