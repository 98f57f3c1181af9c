#include "store/ObjectBody.h"

#include <aws/core/utils/stream/PreallocatedStreamBuf.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace {

using Aws::Utils::Stream::PreallocatedStreamBuf;
using Mirqos::CopyBody;
using Mirqos::RangeText;

TEST(ObjectBody, RangeNamesFirstAndLastByteInDecimal) {
    EXPECT_EQ(RangeText(100, 199), "bytes=100-199");
    EXPECT_EQ(RangeText(0, 0), "bytes=0-0");
    EXPECT_EQ(RangeText(0, 5242879), "bytes=0-5242879");
    constexpr auto kMost = std::numeric_limits<uint64_t>::max();
    EXPECT_EQ(RangeText(kMost, kMost), "bytes=18446744073709551615-18446744073709551615");
}

class ObjectBodyCopy : public testing::Test {
protected:
    std::vector<unsigned char> m_received = {1, 2, 3, 4, 5, 6, 7, 8};
    PreallocatedStreamBuf m_stream{m_received.data(), m_received.size()};
    std::vector<unsigned char> m_destination = std::vector<unsigned char>(8, 0xEE);
};

TEST_F(ObjectBodyCopy, AFullAnswerIsCopiedWhole) {
    EXPECT_EQ(CopyBody(m_stream, 8, m_destination.data()), 8u);
    EXPECT_EQ(m_destination, m_received);
}

TEST_F(ObjectBodyCopy, AShortAnswerDeliversOnlyWhatTheServiceSent) {
    EXPECT_EQ(CopyBody(m_stream, 3, m_destination.data()), 3u);
    EXPECT_EQ(m_destination, (std::vector<unsigned char>{1, 2, 3, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}));
}

TEST_F(ObjectBodyCopy, AnAnswerLongerThanTheStreamIsBoundedByIt) {
    EXPECT_EQ(CopyBody(m_stream, 1000, m_destination.data()), 8u);
    EXPECT_EQ(m_destination, m_received);
}

TEST_F(ObjectBodyCopy, NoContentLengthDeliversNothing) {
    EXPECT_EQ(CopyBody(m_stream, 0, m_destination.data()), 0u);
    EXPECT_EQ(CopyBody(m_stream, -1, m_destination.data()), 0u);
    EXPECT_EQ(m_destination, std::vector<unsigned char>(8, 0xEE));
}

}  // namespace
