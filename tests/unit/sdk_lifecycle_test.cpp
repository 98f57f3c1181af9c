#include <aws/core/Aws.h>
#include <aws/core/utils/logging/AWSLogging.h>
#include <aws/core/utils/logging/FormattedLogSystem.h>
#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "sdk/core/Seam.h"

namespace {

using Aws::Utils::Logging::FormattedLogSystem;
using Aws::Utils::Logging::GetLogSystem;
using Aws::Utils::Logging::LogLevel;

class SilentLog : public FormattedLogSystem {
public:
    using FormattedLogSystem::FormattedLogSystem;

protected:
    void ProcessFormattedStatement(Aws::String&&) override {}
};

class SdkLifecycle : public testing::Test {
protected:
    SdkLifecycle() {
        Mirqos::TheSeam().onInitApi = [this] { ++m_starts; };
        Mirqos::TheSeam().onShutdownApi = [this] { ++m_stops; };
        m_options.loggingOptions.logger_create_fn = [this] {
            ++m_made;
            return std::make_shared<SilentLog>(m_options.loggingOptions.logLevel);
        };
    }
    ~SdkLifecycle() override {
        Mirqos::TheSeam() = Mirqos::Seam();
        Aws::ShutdownAPI(m_options);
    }

    Aws::SDKOptions m_options;
    int m_starts = 0;
    int m_stops = 0;
    int m_made = 0;
};

TEST_F(SdkLifecycle, LoggingIsOffByDefault) {
    EXPECT_EQ(Aws::SDKOptions().loggingOptions.logLevel, LogLevel::Off);
    EXPECT_FALSE(Aws::SDKOptions().loggingOptions.logger_create_fn);
}

TEST_F(SdkLifecycle, StartMakesTheLogSystemAndStopEndsIt) {
    m_options.loggingOptions.logLevel = LogLevel::Warn;
    Aws::InitAPI(m_options);
    ASSERT_NE(GetLogSystem(), nullptr);
    EXPECT_EQ(GetLogSystem()->GetLogLevel(), LogLevel::Warn);
    EXPECT_EQ(m_made, 1);
    Aws::ShutdownAPI(m_options);
    EXPECT_EQ(GetLogSystem(), nullptr);
    EXPECT_EQ(m_starts, 1);
    EXPECT_EQ(m_stops, 1);
}

TEST_F(SdkLifecycle, NoLogSystemWithLevelOffOrWithoutFactory) {
    Aws::InitAPI(m_options);
    EXPECT_EQ(GetLogSystem(), nullptr);
    EXPECT_EQ(m_made, 0);
    m_options.loggingOptions.logLevel = LogLevel::Trace;
    m_options.loggingOptions.logger_create_fn = nullptr;
    Aws::InitAPI(m_options);
    EXPECT_EQ(GetLogSystem(), nullptr);
}

TEST_F(SdkLifecycle, LevelIsReadAtTheStart) {
    m_options.loggingOptions.logLevel = LogLevel::Warn;
    Aws::InitAPI(m_options);
    m_options.loggingOptions.logLevel = LogLevel::Trace;
    EXPECT_EQ(GetLogSystem()->GetLogLevel(), LogLevel::Warn);
    Aws::ShutdownAPI(m_options);
    Aws::InitAPI(m_options);
    EXPECT_EQ(GetLogSystem()->GetLogLevel(), LogLevel::Trace);
}

TEST_F(SdkLifecycle, FurtherStopsDoNothingMore) {
    m_options.loggingOptions.logLevel = LogLevel::Warn;
    Aws::ShutdownAPI(m_options);
    Aws::InitAPI(m_options);
    Aws::ShutdownAPI(m_options);
    Aws::ShutdownAPI(m_options);
    EXPECT_EQ(m_starts, 1);
    EXPECT_EQ(m_stops, 3);
    EXPECT_EQ(GetLogSystem(), nullptr);
    Aws::InitAPI(m_options);
    EXPECT_NE(GetLogSystem(), nullptr);
}

}  // namespace
