#include <gtest/gtest.h>

#include <string>

#include "tools/mirqos-logview/Filter.h"
#include "tools/mirqos-logview/RecordLine.h"

namespace Mirqos::LogView {
namespace {

using NSDBG::CLogMessage;
using NSDBG::LogMessageReference;

LogMessageReference Message(const wchar_t* text, std::uint32_t level = 1,
                            std::uint32_t errorCode = 0) {
    LOGUTILS::LogRecord record = LOGUTILS::MakeRecord(L"Engine.exe", L"MIRQOS.dll", text);
    record.m_time = {2024, 1, 3, 31, 9, 8, 7, 6};
    record.m_dwLevel = level;
    record.m_dwErrorCode = errorCode;
    record.m_dwProcessId = 42;
    record.m_dwThreadId = 77;
    return LogMessageReference(new CLogMessage(record));
}

TEST(LogViewLines, ALineHasThePrefixTheTextAndTheSource) {
    EXPECT_EQ(LineOf(*Message(L"caf\u00E9")),
              "[2024/01/31 09:08:07:006   01   00042   00077             ] caf\xC3\xA9"
              "   {Engine.exe::MIRQOS.dll}");
    EXPECT_EQ(LineOf(*Message(L"x", 2, 5)),
              "[2024/01/31 09:08:07:006   02   00042   00077   0X00000005] x"
              "   {Engine.exe::MIRQOS.dll}");
}

TEST(LogViewLines, ATextCannotSteerTheTerminal) {
    const std::string line = LineOf(*Message(L"a\x1b[31m\nb"));
    EXPECT_NE(line.find("a?[31m?b"), std::string::npos) << line;
}

TEST(LogViewLines, ColoursTellErrorsAndLevels) {
    EXPECT_EQ(Coloured("line", *Message(L"x", 1)), "\x1b[1mline\x1b[0m");
    EXPECT_EQ(Coloured("line", *Message(L"x", 2)), "line");
    EXPECT_EQ(Coloured("line", *Message(L"x", 3)), "\x1b[2mline\x1b[0m");
    EXPECT_EQ(Coloured("line", *Message(L"x", 2, 5)), "\x1b[31mline\x1b[0m");
}

TEST(LogViewLines, AnEmptyFilterShowsEverything) {
    EXPECT_TRUE(IsShown({}, *Message(L"x", 0xFFFFFFFF)));
}

TEST(LogViewLines, EachPartOfAFilterNarrowsIt) {
    Filter filter;
    filter.level = 2;
    EXPECT_TRUE(IsShown(filter, *Message(L"x", 2)));
    EXPECT_FALSE(IsShown(filter, *Message(L"x", 3)));
    filter.processId = 42;
    filter.threadId = 77;
    EXPECT_TRUE(IsShown(filter, *Message(L"x", 1)));
    filter.text = L"Some";
    EXPECT_FALSE(IsShown(filter, *Message(L"something", 1)));
    EXPECT_TRUE(IsShown(filter, *Message(L"and Something", 1)));
    filter.threadId = 78;
    EXPECT_FALSE(IsShown(filter, *Message(L"Some", 1)));
    filter.threadId = 77;
    filter.processId = 43;
    EXPECT_FALSE(IsShown(filter, *Message(L"Some", 1)));
}

}  // namespace
}  // namespace Mirqos::LogView
