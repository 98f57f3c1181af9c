#include "log/dbg/win32/CLogMessage.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/win32/CallSlot.h"

namespace {

using Mirqos::Test::CallSlot;
using NSDBG::CLogMessage;
using NSDBG::LogMessageReference;

/// Counts its end.
class CountedMessage : public CLogMessage {
public:
    CountedMessage(const LOGUTILS::LogRecord& record, int& nEnds)
        : CLogMessage(record), m_nEnds(nEnds) {}

protected:
    ~CountedMessage() override { ++m_nEnds; }

private:
    int& m_nEnds;
};

LOGUTILS::LogRecord FullRecord() {
    LOGUTILS::LogRecord record =
        LOGUTILS::MakeRecord(L"Engine.exe", L"MIRQOS.dll", L"a \u4E2D line");
    record.m_time = {2024, 2, 4, 29, 23, 58, 59, 7};
    record.m_dwErrorCode = 0x80070005;
    record.m_dwLevel = 2;
    record.m_dwProcessId = 4711;
    record.m_dwThreadId = 815;
    return record;
}

TEST(LogMessage, TellsWhatTheRecordHolds) {
    const LogMessageReference message(new CLogMessage(FullRecord()));
    EXPECT_STREQ(message->GetChannel(), L"Engine.exe");
    EXPECT_STREQ(message->GetSource(), L"MIRQOS.dll");
    EXPECT_STREQ(message->GetText(), L"a \u4E2D line");
    EXPECT_EQ(message->GetProcessId(), 4711u);
    EXPECT_EQ(message->GetThreadId(), 815u);
    EXPECT_EQ(message->GetErrorCode(), 0x80070005u);
    EXPECT_EQ(message->GetLevel(), 2u);
    const SYSTEMTIME expected = {2024, 2, 4, 29, 23, 58, 59, 7};
    const SYSTEMTIME time = message->GetTime();
    EXPECT_EQ(std::memcmp(&time, &expected, sizeof(time)), 0);
}

TEST(LogMessage, PrefixIsThatOfAFilesLine) {
    LOGUTILS::LogRecord record = FullRecord();
    EXPECT_EQ(LogMessageReference(new CLogMessage(record))->GetPrefix(),
              L"[2024/02/29 23:58:59:007   02   04711   00815   0X80070005] ");
    record.m_dwErrorCode = 0;
    EXPECT_EQ(LogMessageReference(new CLogMessage(record))->GetPrefix(),
              L"[2024/02/29 23:58:59:007   02   04711   00815             ] ");
}

TEST(LogMessage, KeepsACopyOfItsRecord) {
    LOGUTILS::LogRecord record = FullRecord();
    const LogMessageReference message(new CLogMessage(record));
    std::memset(&record, 0xFF, sizeof(record));
    EXPECT_STREQ(message->GetText(), L"a \u4E2D line");
}

TEST(LogMessage, TextsOfADamagedRecordEnd) {
    LOGUTILS::LogRecord record;
    std::memset(&record, 'A', sizeof(record));
    const LogMessageReference message(new CLogMessage(record));
    EXPECT_EQ(std::wcslen(message->GetChannel()), 127u);
    EXPECT_EQ(std::wcslen(message->GetSource()), 127u);
    EXPECT_EQ(std::wcslen(message->GetText()), 1023u);
}

TEST(LogMessage, CountsFromOneAndEndsWithItsLastReference) {
    int nEnds = 0;
    CLogMessage* const pMessage = new CountedMessage(FullRecord(), nEnds);
    EXPECT_EQ(pMessage->AddRef(), 2);
    EXPECT_EQ(pMessage->AddRef(), 3);
    EXPECT_EQ(pMessage->Release(), 2);
    EXPECT_EQ(pMessage->Release(), 1);
    EXPECT_EQ(nEnds, 0);
    EXPECT_EQ(pMessage->Release(), 0);
    EXPECT_EQ(nEnds, 1);
}

TEST(LogMessage, ThreadsMayShareIt) {
    int nEnds = 0;
    CLogMessage* const pMessage = new CountedMessage(FullRecord(), nEnds);
    std::vector<std::thread> threads;
    for (int n = 0; n < 4; ++n) {
        pMessage->AddRef();
        threads.emplace_back([pMessage] {
            for (int i = 0; i < 10000; ++i) {
                pMessage->AddRef();
                pMessage->Release();
            }
            pMessage->Release();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(nEnds, 0);
    EXPECT_EQ(pMessage->Release(), 0);
    EXPECT_EQ(nEnds, 1);
}

TEST(LogMessage, OperationsStandInTheirOrder) {
    int nEnds = 0;
    auto* const pMessage = new CountedMessage(FullRecord(), nEnds);
    CLogMessage& message = *pMessage;
    EXPECT_EQ(CallSlot<std::int32_t>(message, 2), 2);
    EXPECT_EQ(CallSlot<std::int32_t>(message, 3), 1);
    EXPECT_EQ(CallSlot<std::wstring>(message, 4),
              L"[2024/02/29 23:58:59:007   02   04711   00815   0X80070005] ");
    EXPECT_STREQ(CallSlot<const wchar_t*>(message, 5), L"Engine.exe");
    EXPECT_STREQ(CallSlot<const wchar_t*>(message, 6), L"MIRQOS.dll");
    EXPECT_EQ(CallSlot<std::uint32_t>(message, 7), 4711u);
    EXPECT_EQ(CallSlot<std::uint32_t>(message, 8), 815u);
    EXPECT_EQ(CallSlot<std::uint32_t>(message, 9), 0x80070005u);
    EXPECT_EQ(CallSlot<std::uint32_t>(message, 10), 2u);
    EXPECT_EQ(CallSlot<SYSTEMTIME>(message, 11).wMilliseconds, 7);
    EXPECT_STREQ(CallSlot<const wchar_t*>(message, 12), L"a \u4E2D line");
    EXPECT_EQ(CallSlot<std::int32_t>(message, 3), 0);
    EXPECT_EQ(nEnds, 1);
}

}  // namespace
