#include "log/dbg/SummaryHeader.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace LOGUTILS;

SummaryFacts Facts() {
    SummaryFacts facts;
    facts.m_version = {11, 5, 0};
    facts.m_computerName = "BACKUP-1"_w;
    facts.m_nSystemMajor = 10;
    facts.m_nSystemMinor = 0;
    facts.m_pszPlatform = "X64";
    return facts;
}

TEST(SummaryHeader, TheColumnsComeFirst) {
    EXPECT_EQ(SummaryColumns(),
              "[   Date        Time      Level  PID     TID   ErrCode    ] ......."_w);
}

TEST(SummaryHeader, SixLinesFollowInThisOrder) {
    const std::vector<WideString> expected = {
        "================ SUMMARY LOG ======================="_w,
        "Product Info: [Quorvane (USA) LLC] [quorvane Halvestor] Ver[r11.5]"_w,
        "OS      Info: Computer Name[BACKUP-1] Version[10.0] Platform[X64]"_w,
        "Log level of each module can be controlled by registry key:"_w,
        R"([HKEY_LOCAL_MACHINE\SOFTWARE\Quorvane\Halvestor\Engine\Debug\ModuleName:DWORD])"_w,
        "====================================================="_w};
    EXPECT_EQ(SummaryLines(Facts()), expected);
}

TEST(SummaryHeader, AnUpdateIsNamedOnlyWhenThereIsOne) {
    SummaryFacts facts = Facts();
    facts.m_version.m_dwUpdate = 1;
    EXPECT_EQ(SummaryLines(facts)[1],
              "Product Info: [Quorvane (USA) LLC] [quorvane Halvestor] Ver[r11.5 (Update 1)]"_w);
    facts.m_version = {};
    EXPECT_EQ(SummaryLines(facts)[1],
              "Product Info: [Quorvane (USA) LLC] [quorvane Halvestor] Ver[r0.0]"_w);
}

TEST(SummaryHeader, ASystemThatDidNotSayIsMinusOneOfAnUnknownPlatform) {
    EXPECT_EQ(SummaryLines(SummaryFacts())[2],
              "OS      Info: Computer Name[] Version[-1.-1] Platform[Unknown]"_w);
}

TEST(SummaryHeader, EachPlatformIsNamedAsItIsGiven) {
    for (const char* platform : {"X86", "X64", "IA64", "Unknown"}) {
        SummaryFacts facts = Facts();
        facts.m_pszPlatform = platform;
        EXPECT_EQ(SummaryLines(facts)[2],
                  "OS      Info: Computer Name[BACKUP-1] Version[10.0] Platform["_w +
                      WidenAscii(platform) + "]"_w);
    }
}

TEST(SummaryHeader, AComputerNameKeepsItsLetters) {
    SummaryFacts facts = Facts();
    facts.m_computerName = "B"_w + WideChar{0xDC} + "RO"_w;
    EXPECT_EQ(SummaryLines(facts)[2], "OS      Info: Computer Name[B"_w + WideChar{0xDC} +
                                          "RO] Version[10.0] Platform[X64]"_w);
}

}  // namespace
