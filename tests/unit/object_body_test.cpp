#include "store/ObjectBody.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <istream>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "store/ReceivingBuffer.h"

namespace {

using Mirqos::CopyBody;
using Mirqos::RangeText;
using Mirqos::ReadContentRange;
using Mirqos::ReceivingBuffer;

constexpr auto kMost = std::numeric_limits<uint64_t>::max();

TEST(ObjectBody, RangeNamesFirstAndLastByteInDecimal) {
    EXPECT_EQ(RangeText(100, 199), "bytes=100-199");
    EXPECT_EQ(RangeText(0, 0), "bytes=0-0");
    EXPECT_EQ(RangeText(0, 5242879), "bytes=0-5242879");
    EXPECT_EQ(RangeText(kMost, kMost), "bytes=18446744073709551615-18446744073709551615");
}

TEST(ObjectBody, AContentRangeTellsItsFirstByteAndItsLength) {
    const auto expect = [](const char* text, uint64_t first, uint64_t length) {
        const auto range = ReadContentRange(text);
        ASSERT_TRUE(range) << text;
        EXPECT_EQ(range->nFirst, first) << text;
        EXPECT_EQ(range->nLength, length) << text;
    };
    expect("bytes 100-199/5000", 100, 100);
    expect("bytes 0-0/*", 0, 1);
    expect("Bytes 007-9/10", 7, 3);  // units are alike in any case
    expect("bytes 18446744073709551615-18446744073709551615/*", kMost, 1);
    expect("bytes 1-18446744073709551615", 1, kMost);
    expect("bytes 5-4/10", 5, 0);
    expect("bytes 5-/10", 5, 0);
    expect("bytes 0--1/0", 0, 0);
    expect("bytes 5-18446744073709551616/*", 5, 0);
}

TEST(ObjectBody, AContentRangeWithoutItsFirstByteIsNone) {
    for (const char* text :
         {"", " ", "bytes", "bytes ", "bytes */300", "bytes 100", "bytes -5/10", "bytes  1-2/3",
          "bytes 0x1-2/3", "bytes=1-2", "bytes 18446744073709551616-*/*"}) {
        EXPECT_FALSE(ReadContentRange(text)) << text;
    }
}

class ObjectBodyCopy : public testing::Test {
protected:
    void Receive(const std::string& bytes) {
        m_stream.sputn(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    std::vector<unsigned char> m_received = std::vector<unsigned char>(8, 0x55);
    ReceivingBuffer m_stream{m_received.data(), m_received.size()};
    std::vector<unsigned char> m_destination = std::vector<unsigned char>(8, 0xEE);
};

TEST_F(ObjectBodyCopy, AFullAnswerIsCopiedWhole) {
    Receive("\1\2\3\4\5\6\7\x8");
    EXPECT_EQ(CopyBody(m_stream, m_destination.data()), 8u);
    EXPECT_EQ(m_destination, (std::vector<unsigned char>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(ObjectBodyCopy, AShortAnswerDeliversOnlyWhatTheServiceSent) {
    Receive("\1\2");
    Receive("\3");
    EXPECT_EQ(CopyBody(m_stream, m_destination.data()), 3u);
    EXPECT_EQ(m_destination, (std::vector<unsigned char>{1, 2, 3, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}));
}

TEST_F(ObjectBodyCopy, AnAnswerLongerThanAskedForIsBounded) {
    Receive("\1\2\3\4\5\6\7\x8\x9");
    EXPECT_EQ(CopyBody(m_stream, m_destination.data()), 8u);
    EXPECT_EQ(m_destination, (std::vector<unsigned char>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(ObjectBodyCopy, AnEmptyAnswerDeliversNothing) {
    EXPECT_EQ(CopyBody(m_stream, m_destination.data()), 0u);
    EXPECT_EQ(m_destination, std::vector<unsigned char>(8, 0xEE));
}

class ObjectBodyReceived : public testing::Test {
protected:
    std::string All() {
        return {std::istreambuf_iterator<char>(&m_stream), std::istreambuf_iterator<char>()};
    }

    std::vector<unsigned char> m_bytes = std::vector<unsigned char>(8, 'o');
    ReceivingBuffer m_stream{m_bytes.data(), m_bytes.size()};
};

TEST_F(ObjectBodyReceived, IsReadAsFarAsItWasWritten) {
    EXPECT_EQ(m_stream.in_avail(), 0);
    EXPECT_EQ(All(), "");
    m_stream.sputn("abc", 3);
    EXPECT_EQ(m_stream.in_avail(), 3);
    EXPECT_EQ(m_stream.sbumpc(), 'a');
    m_stream.sputn("de", 2);
    EXPECT_EQ(m_stream.sbumpc(), 'b');
    EXPECT_EQ(All(), "cde");
    EXPECT_EQ(m_stream.in_avail(), 0);
}

TEST_F(ObjectBodyReceived, HoldsADocumentThatIsLongerThanWhatWasAskedFor) {
    const std::string document(3000, 'd');
    std::iostream stream(&m_stream);
    stream << document.substr(0, 5) << document.substr(5) << std::flush;
    EXPECT_TRUE(stream.good());
    EXPECT_EQ(All(), document);
}

TEST_F(ObjectBodyReceived, ItsPositionIsAmongWhatWasReceived) {
    std::iostream stream(&m_stream);
    stream << "abc";
    EXPECT_EQ(stream.tellp(), 3);
    EXPECT_EQ(stream.tellg(), 0);
    EXPECT_EQ(All(), "abc");
    EXPECT_EQ(stream.tellg(), 3);
    EXPECT_EQ(stream.seekg(1).tellg(), 1);
    EXPECT_EQ(m_stream.in_avail(), 2);
    stream << "defghijk";
    EXPECT_EQ(All(), "bcdefghijk") << "three more than were asked for";
    EXPECT_EQ(stream.tellg(), 11);
    EXPECT_EQ(stream.seekg(9).get(), 'j');
    EXPECT_EQ(stream.seekg(-4, std::ios_base::end).get(), 'h');
    EXPECT_EQ(All(), "ijk");
    EXPECT_TRUE(stream.good());
    EXPECT_TRUE(stream.seekg(12).fail());
    stream.clear();
    EXPECT_TRUE(stream.seekg(-1).fail());
    EXPECT_EQ(m_stream.pubseekpos(0), std::streampos(-1)) << "of which side?";
}

TEST_F(ObjectBodyReceived, TakesNoEndOfMoreThanWhatWasAskedFor) {
    const std::string most(8 + ReceivingBuffer::kMostExcess, 'm');
    EXPECT_EQ(m_stream.sputn((most + "x").data(), static_cast<std::streamsize>(most.size() + 1)),
              static_cast<std::streamsize>(most.size()));
    EXPECT_EQ(m_stream.in_avail(), 8);
    EXPECT_EQ(All(), most);
}

}  // namespace
