#include "log/dbg/LogRing.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/ChannelBytes.h"

namespace {

using namespace LOGUTILS;
using Mirqos::Test::RingBytes;

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

std::u16string Units(WideView text) {
    return {text.begin(), text.end()};
}

WideString Wide(const std::u16string& text) {
    return {text.begin(), text.end()};
}

LogRecord Record(std::int64_t nNumber) {
    return MakeRecord("Engine.exe"_w, "MIRQOS.dll"_w, Decimal(nNumber));
}

class LogRingTest : public testing::Test {
protected:
    LogRingTest() : m_bytes(RingBytes::kSize, 0xEE), m_reader(m_bytes.data()) { ClearRing(Ring()); }

    LogRing& Ring() { return *reinterpret_cast<LogRing*>(m_bytes.data()); }

    void Append(std::int64_t nFirst, std::int64_t nCount) {
        for (std::int64_t n = nFirst; n < nFirst + nCount; ++n) {
            AppendRecord(Ring(), Record(n));
        }
    }

    std::vector<std::string> Take() {
        std::vector<std::string> taken;
        const NewRecords found = FindNewRecords(Ring());
        for (std::int64_t i = 0; i < found.m_nCount; ++i) {
            const auto text = TextIn(RecordAt(Ring(), found.m_nFirst + i).m_szText);
            taken.emplace_back(text.begin(), text.end());
        }
        Ring().m_nLastRead = Ring().m_nLastWritten;
        return taken;
    }

    std::int64_t CountBetween(std::int64_t nLastRead, std::int64_t nLastWritten) {
        Ring().m_nLastRead = nLastRead;
        Ring().m_nLastWritten = nLastWritten;
        return FindNewRecords(Ring()).m_nCount;
    }

    std::vector<unsigned char> m_bytes;
    RingBytes m_reader;
};

TEST_F(LogRingTest, IsAsLargeAsItIsDocumented) {
    EXPECT_EQ(sizeof(LogRing), RingBytes::kSize);
    EXPECT_EQ(sizeof(LogRecord), RingBytes::kRecordSize);
}

TEST_F(LogRingTest, NobodyHasWrittenToAClearedRing) {
    EXPECT_EQ(m_reader.LastRead(), -1);
    EXPECT_EQ(m_reader.LastWritten(), -1);
    EXPECT_TRUE(m_reader.IsZero(16, RingBytes::kSize - 16));
    EXPECT_EQ(FindNewRecords(Ring()).m_nCount, 0);
}

TEST_F(LogRingTest, EveryFieldOfARecordStandsWhereItIsDocumented) {
    LogRecord record = MakeRecord("Engine.exe"_w, "MIRQOS.dll"_w, "a line"_w);
    record.m_time = {2024, 2, 4, 29, 23, 58, 59, 999};
    record.m_dwErrorCode = 0x80070005;
    record.m_dwLevel = 2;
    record.m_dwProcessId = 0x12345678;
    record.m_dwThreadId = 0x9ABCDEF0;
    AppendRecord(Ring(), record);
    AppendRecord(Ring(), record);

    EXPECT_EQ(m_reader.LastRead(), -1);
    EXPECT_EQ(m_reader.LastWritten(), 1);
    EXPECT_TRUE(m_reader.IsZero(RingBytes::kReservedAt, RingBytes::kReservedSize));
    for (const std::size_t slot : {0u, 1u}) {
        EXPECT_EQ(m_reader.Channel(slot), u"Engine.exe");
        EXPECT_EQ(m_reader.Source(slot), u"MIRQOS.dll");
        EXPECT_EQ(m_reader.Line(slot), u"a line");
        const std::uint16_t time[] = {2024, 2, 4, 29, 23, 58, 59, 999};
        for (std::size_t n = 0; n < 8; ++n) {
            EXPECT_EQ(m_reader.Short(RingBytes::TimeAt(slot) + 2 * n), time[n]);
        }
        EXPECT_EQ(m_reader.Number(RingBytes::ErrorCodeAt(slot)), 0x80070005u);
        EXPECT_EQ(m_reader.Number(RingBytes::LevelAt(slot)), 2u);
        EXPECT_EQ(m_reader.Number(RingBytes::ProcessAt(slot)), 0x12345678u);
        EXPECT_EQ(m_reader.Number(RingBytes::ThreadAt(slot)), 0x9ABCDEF0u);
    }
    EXPECT_TRUE(m_reader.IsZero(RingBytes::RecordAt(2), RingBytes::kRecordSize));
}

TEST_F(LogRingTest, ARecordThatAnotherProgramWroteIsReadTheSame) {
    m_reader.SetText(RingBytes::ChannelAt(5), RingBytes::kNameUnits, u"\u00C9ngine.exe");
    m_reader.SetText(RingBytes::SourceAt(5), RingBytes::kNameUnits, u"other.dll");
    m_reader.SetText(RingBytes::TextAt(5), RingBytes::kTextUnits, u"\u4E2D\U0001F600");
    m_reader.SetNumber(RingBytes::TimeAt(5), 0x000C07E8);  // 2024, December
    m_reader.SetNumber(RingBytes::ErrorCodeAt(5), 5);
    m_reader.SetNumber(RingBytes::LevelAt(5), 3);
    m_reader.SetNumber(RingBytes::ProcessAt(5), 44);
    m_reader.SetNumber(RingBytes::ThreadAt(5), 55);
    const LogRecord& record = RecordAt(Ring(), 5);
    EXPECT_EQ(Units(TextIn(record.m_szChannel)), u"\u00C9ngine.exe");
    EXPECT_EQ(Units(TextIn(record.m_szSource)), u"other.dll");
    EXPECT_EQ(Units(TextIn(record.m_szText)), u"\u4E2D\U0001F600");
    EXPECT_EQ(record.m_time.m_wYear, 2024);
    EXPECT_EQ(record.m_time.m_wMonth, 12);
    EXPECT_EQ(record.m_dwErrorCode, 5u);
    EXPECT_EQ(record.m_dwLevel, 3u);
    EXPECT_EQ(record.m_dwProcessId, 44u);
    EXPECT_EQ(record.m_dwThreadId, 55u);
}

TEST_F(LogRingTest, TextsAreCutToTheirRoomsAndEndInAZero) {
    for (const std::size_t length : {127u, 128u, 200u}) {
        const std::u16string name(length, u'\u00E9');
        AppendRecord(Ring(), MakeRecord(Wide(name), Wide(name), "x"_w));
        const auto slot = static_cast<std::size_t>(m_reader.LastWritten());
        EXPECT_EQ(m_reader.Channel(slot), name.substr(0, 127));
        EXPECT_EQ(m_reader.Source(slot), name.substr(0, 127));
        EXPECT_EQ(m_reader.Short(RingBytes::ChannelAt(slot) + 254), 0);
        EXPECT_EQ(m_reader.Short(RingBytes::SourceAt(slot) + 254), 0);
    }
    for (const std::size_t length : {1u, 1022u, 1023u, 1024u, 5000u}) {
        const std::u16string text(length, u'\u4E2D');
        AppendRecord(Ring(), MakeRecord("c"_w, {}, Wide(text)));
        const auto slot = static_cast<std::size_t>(m_reader.LastWritten());
        EXPECT_EQ(m_reader.Line(slot), text.substr(0, 1023));
        EXPECT_EQ(m_reader.Short(RingBytes::TextAt(slot) + 2046), 0);
        EXPECT_TRUE(m_reader.IsZero(RingBytes::SourceAt(slot), 256));
    }
}

TEST_F(LogRingTest, AShorterTextLeavesNothingOfTheOneBeforeItInTheSlot) {
    AppendRecord(Ring(), MakeRecord("channel"_w, "source"_w, "a long line"_w));
    Ring().m_nLastWritten = 1023;
    AppendRecord(Ring(), MakeRecord("c"_w, {}, "x"_w));
    EXPECT_EQ(m_reader.Line(0), u"x");
    EXPECT_TRUE(m_reader.IsZero(RingBytes::TextAt(0) + 2, 2046));
    EXPECT_TRUE(m_reader.IsZero(RingBytes::ChannelAt(0) + 2, 254));
    EXPECT_TRUE(m_reader.IsZero(RingBytes::SourceAt(0), 256));
}

TEST_F(LogRingTest, Record1025TakesTheSlotOfTheFirst) {
    Append(0, 1024);
    EXPECT_EQ(m_reader.Line(0), u"0");
    EXPECT_EQ(m_reader.Line(1023), u"1023");
    Append(1024, 1);
    EXPECT_EQ(m_reader.LastWritten(), 1024);
    EXPECT_EQ(m_reader.Line(0), u"1024");
    EXPECT_EQ(m_reader.Line(1), u"1");
}

TEST_F(LogRingTest, AReaderTakesEachRecordOnceAndInOrder) {
    Append(0, 3);
    EXPECT_EQ(Take(), (std::vector<std::string>{"0", "1", "2"}));
    EXPECT_EQ(m_reader.LastRead(), 2);
    EXPECT_TRUE(Take().empty());
    Append(3, 1);
    EXPECT_EQ(Take(), (std::vector<std::string>{"3"}));
}

TEST_F(LogRingTest, AFullRingIsTakenWholeAlsoAcrossItsEnd) {
    Append(0, 1000);
    Take();
    Append(1000, 1024);
    const auto taken = Take();
    ASSERT_EQ(taken.size(), 1024u);
    EXPECT_EQ(taken.front(), "1000");
    EXPECT_EQ(taken.back(), "2023");
}

TEST_F(LogRingTest, LappedNumbersGiveTheNewerRecordsInTheirSlots) {
    Append(0, 5);
    Take();
    Append(5, 3000);  // numbers 5 to 3004; 1981 to 3004 are left
    const auto taken = Take();
    ASSERT_EQ(taken.size(), 3000u);
    for (std::int64_t n = 5; n <= 3004; ++n) {
        std::int64_t nNewest = n;
        while (nNewest + 1024 <= 3004) {
            nNewest += 1024;
        }
        ASSERT_EQ(taken[static_cast<std::size_t>(n - 5)], std::to_string(nNewest)) << n;
    }
    EXPECT_EQ(m_reader.LastRead(), 3004);
    EXPECT_TRUE(Take().empty());
}

TEST_F(LogRingTest, AReaderIsOwedNoMoreThan64Laps) {
    EXPECT_EQ(CountBetween(-1, 65535), 65536);
    EXPECT_EQ(CountBetween(-1, 65536), 65536);
    EXPECT_EQ(FindNewRecords(Ring()).m_nFirst, 1);
    EXPECT_EQ(CountBetween(10, kHighest), 65536);
    EXPECT_EQ(FindNewRecords(Ring()).m_nFirst, kHighest - 65535);
}

TEST_F(LogRingTest, NoNumbersInADamagedRingLeadAnywhereElse) {
    const std::int64_t numbers[] = {kLowest, kLowest + 1, -70000, -1025, -2,           -1,
                                    0,       1,           1023,   1024,  kHighest - 1, kHighest};
    for (const std::int64_t nLastRead : numbers) {
        for (const std::int64_t nLastWritten : numbers) {
            const std::int64_t nCount = CountBetween(nLastRead, nLastWritten);
            EXPECT_GE(nCount, 0);
            EXPECT_LE(nCount, kMostNewRecords);
            const auto found = FindNewRecords(Ring());
            if (nCount > 0) {
                EXPECT_EQ(found.m_nFirst + (nCount - 1), nLastWritten);
                EXPECT_GT(found.m_nFirst, nLastRead);
            }
            for (std::int64_t i = 0; i < nCount; ++i) {
                const auto* const pRecord = &RecordAt(Ring(), found.m_nFirst + i);
                ASSERT_GE(pRecord, &Ring().m_records[0]);
                ASSERT_LE(pRecord, &Ring().m_records[1023]);
            }
            AppendRecord(Ring(), Record(1));
        }
    }
}

TEST_F(LogRingTest, NegativeNumbersHaveSlotsToo) {
    EXPECT_EQ(&RecordAt(Ring(), -1), &Ring().m_records[1023]);
    EXPECT_EQ(&RecordAt(Ring(), -1024), &Ring().m_records[0]);
    EXPECT_EQ(&RecordAt(Ring(), kLowest), &Ring().m_records[0]);
    Ring().m_nLastWritten = kHighest;
    AppendRecord(Ring(), Record(7));
    EXPECT_EQ(m_reader.LastWritten(), kLowest);
    EXPECT_EQ(m_reader.Line(0), u"7");
}

TEST_F(LogRingTest, AReaderAheadOfTheWriterTakesNothing) {
    EXPECT_EQ(CountBetween(10, 5), 0);
    EXPECT_EQ(CountBetween(-70000, -1), 0);  // -1 is a ring without records, whatever was read
    EXPECT_EQ(CountBetween(0, 0), 0);        // as in a ring that nobody cleared
}

TEST(LogRecord, TextsWithoutAnEndAreEndedByTheirRooms) {
    auto record = std::make_unique<LogRecord>();
    std::memset(record.get(), 'A', sizeof(LogRecord));
    EndTexts(*record);
    EXPECT_EQ(TextIn(record->m_szChannel).size(), 127u);
    EXPECT_EQ(TextIn(record->m_szSource).size(), 127u);
    EXPECT_EQ(TextIn(record->m_szText).size(), 1023u);
}

TEST(LogRecord, PrefixIsThatOfAFilesLine) {
    LogRecord record{};
    record.m_time = {2024, 1, 3, 31, 9, 8, 7, 6};
    record.m_dwLevel = 1;
    record.m_dwProcessId = 42;
    record.m_dwThreadId = 123456;
    EXPECT_EQ(PrefixOf(record), "[2024/01/31 09:08:07:006   01   00042   123456             ] "_w);
    record.m_dwErrorCode = 5;
    EXPECT_EQ(PrefixOf(record), "[2024/01/31 09:08:07:006   01   00042   123456   0X00000005] "_w);
    record.m_dwErrorCode = 0x8007000E;
    EXPECT_EQ(PrefixOf(record), "[2024/01/31 09:08:07:006   01   00042   123456   0X8007000e] "_w);
}

TEST(LogRecord, APrefixOfAnyBytesFitsItsRoom) {
    auto record = std::make_unique<LogRecord>();
    std::memset(record.get(), 0xFF, sizeof(LogRecord));
    const auto prefix = PrefixOf(*record);
    EXPECT_EQ(prefix.substr(prefix.size() - 14), "  0Xffffffff] "_w);
}

}  // namespace
