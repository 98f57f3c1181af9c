#include <gtest/gtest.h>

#include "log/CMIRQOSLog.h"
#include "log/ModuleLog.h"
#include "tests/support/win32/FileOutputTest.h"

namespace Mirqos::Test {
namespace {

class LogOutputs : public FileOutputTest {};

TEST_F(LogOutputs, LinesOfALoggerReachItsLogFile) {
    CMIRQOSLog log(Aws::Utils::Logging::LogLevel::Warn);
    EXPECT_EQ(ModuleLog(&log, 1, "abc %d\n", 5), 6);
    EXPECT_EQ(ModuleLogW(&log, 2, L"abc %s", L"de"), 6);
    EXPECT_EQ(ModuleLog(&log, 3, "dropped"), 0);

    const std::vector<std::wstring> lines = MessagesOf(m_path);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(WithoutTime(lines[0]), PrefixWithoutTime(1) + L"abc 5" + UnversionedTag());
    EXPECT_EQ(WithoutTime(lines[1]), PrefixWithoutTime(2) + L"abc de" + UnversionedTag());
}

TEST_F(LogOutputs, LoggersShareTheFile) {
    CMIRQOSLog first(Aws::Utils::Logging::LogLevel::Warn);
    CMIRQOSLog second(Aws::Utils::Logging::LogLevel::Warn);
    ModuleLog(&first, 1, "one");
    ModuleLog(&second, 1, "two");
    ModuleLog(&first, 1, "three");
    const std::vector<std::wstring> lines = MessagesOf(m_path);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_NE(lines[1].find(L"two"), std::wstring::npos);
}

}  // namespace
}  // namespace Mirqos::Test
