#include <gtest/gtest.h>

#include "log/CMIRQOSLog.h"
#include "log/ModuleLog.h"

namespace {

TEST(LogOutputs, ThereAreNoneYetAndLinesAreFormattedAllTheSame) {
    CMIRQOSLog log(Aws::Utils::Logging::LogLevel::Warn);
    EXPECT_EQ(log.m_pFileOutput, nullptr);
    EXPECT_EQ(log.m_pSMOutput, nullptr);
    EXPECT_EQ(ModuleLog(&log, 1, "abc %d", 5), 5);
    EXPECT_EQ(ModuleLogW(&log, 1, L"abc %s", L"de"), 6);
}

}  // namespace
