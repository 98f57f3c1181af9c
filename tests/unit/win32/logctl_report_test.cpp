#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <string>

#include "tools/mirqos-logctl/Report.h"

namespace {

using namespace Mirqos::LogControl;
using LOGUTILS::LogConfigBlock;

class LogControlReport : public testing::Test {
protected:
    LogControlReport() {
        LOGUTILS::ClearBlock(*m_block);
        auto* const module = FindOrTakeModule(*m_block, L"a.dll");
        LOGUTILS::PutText(module->m_szPath, L"C:\\own.Log");
        module->m_nLevel = 3;
    }
    BlockState State(bool ignoresGlobalPath = false) const {
        return {{12, L"host.exe"}, ignoresGlobalPath, *m_block};
    }

    std::unique_ptr<LogConfigBlock> m_block = std::make_unique<LogConfigBlock>();
};

TEST_F(LogControlReport, ListsProcessesInColumns) {
    EXPECT_EQ(ListAsText({{4, L"a.exe"}, {1234, L"b.exe"}}),
              "PID   EXECUTABLE\n"
              "4     a.exe\n"
              "1234  b.exe\n");
    EXPECT_EQ(ListAsText({}), "PID  EXECUTABLE\n");
    EXPECT_EQ(ListAsJson({{4, L"\u00E9.exe"}}),
              "{\"processes\":[{\"pid\":4,\"executable\":\"\xC3\xA9.exe\"}]}\n");
    EXPECT_EQ(ListAsJson({}), "{\"processes\":[]}\n");
}

TEST_F(LogControlReport, ShowsAFreshModule) {
    EXPECT_EQ(StateAsText(State()),
              "process 12, host.exe\n"
              "level of all modules: -\n"
              "path of all modules:  -\n"
              "\n"
              "MODULE  LEVEL  OWN LEVEL  FOLLOWS      FLAGS   LOG FILE    OWN PATH\n"
              "a.dll   3      3          path, level  0xffff  C:\\own.Log  C:\\own.Log\n");
}

TEST_F(LogControlReport, ShowsWhatIsInEffectBesideWhatIsTheModulesOwn) {
    LOGUTILS::PutText(m_block->m_szGlobalPath, L"C:\\all.Log");
    m_block->m_nGlobalLevel = 5;
    EXPECT_EQ(StateAsText(State()),
              "process 12, host.exe\n"
              "level of all modules: 5\n"
              "path of all modules:  C:\\all.Log\n"
              "\n"
              "MODULE  LEVEL  OWN LEVEL  FOLLOWS      FLAGS   LOG FILE    OWN PATH\n"
              "a.dll   5      3          path, level  0xffff  C:\\all.Log  C:\\own.Log\n");
    m_block->m_modules[0].m_dwFlags = 0;
    EXPECT_NE(StateAsText(State()).find("a.dll   3      3          -        0x0000  C:\\own.Log"),
              std::string::npos);
    m_block->m_modules[0].m_dwFlags = 1;
    EXPECT_NE(StateAsText(State(true)).find("C:\\all.Log (ignored by this process)\n"),
              std::string::npos);
    EXPECT_NE(StateAsText(State(true)).find("path     0x0001  C:\\own.Log  C:\\own.Log"),
              std::string::npos);
}

TEST_F(LogControlReport, GivesTheSameAsJson) {
    m_block->m_nGlobalLevel = 5;
    EXPECT_EQ(StateAsJson(State()),
              "{\"pid\":12,\"executable\":\"host.exe\",\"globalPath\":\"\",\"globalLevel\":5,"
              "\"ignoresGlobalPath\":false,\"modules\":[{\"name\":\"a.dll\","
              "\"logFile\":\"C:\\\\own.Log\",\"level\":5,\"ownPath\":\"C:\\\\own.Log\","
              "\"ownLevel\":3,\"followsGlobalPath\":true,\"followsGlobalLevel\":true,"
              "\"flags\":65535}]}\n");
    m_block->m_nGlobalLevel = -1;
    m_block->m_modules[0].m_nLevel = -1;
    const auto state = nlohmann::json::parse(StateAsJson(State()));
    EXPECT_TRUE(state["globalLevel"].is_null());
    EXPECT_TRUE(state["modules"][0]["level"].is_null());
}

TEST_F(LogControlReport, KeepsControlCharactersFromTheTerminal) {
    LOGUTILS::PutText(m_block->m_modules[0].m_szPath, L"C:\\\x1B[2J\n.Log");
    EXPECT_EQ(StateAsText(State()).find('\x1B'), std::string::npos);
    EXPECT_NE(StateAsText(State()).find("C:\\?[2J?.Log"), std::string::npos);
}

TEST_F(LogControlReport, OutlivesAnyContentOfTheBlock) {
    std::mt19937_64 random(3);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same each time
    auto* const bytes = reinterpret_cast<unsigned char*>(m_block.get());
    for (int round = 0; round < 5; ++round) {
        for (std::size_t i = 0; i < sizeof(LogConfigBlock); ++i) {
            bytes[i] = static_cast<unsigned char>(random() >> 24);
        }
        EXPECT_FALSE(StateAsText(State()).empty());
        EXPECT_EQ(nlohmann::json::parse(StateAsJson(State()))["modules"].size(), 1024u);
    }
}

}  // namespace
