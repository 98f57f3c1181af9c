#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "sdk/core/http/BodyLedger.h"
#include "sdk/core/http/CertificateTrouble.h"
#include "sdk/core/http/HeadReader.h"
#include "sdk/core/http/RequestBody.h"
#include "sdk/core/http/Transport.h"

namespace Mirqos::Http {
namespace {

using State = HeadReader::State;

ResponseHead HeadWith(int status, HeaderList headers) {
    ResponseHead head;
    head.status = status;
    head.headers = std::move(headers);
    return head;
}

TEST(HeadReader, KeepsStatusAndHeadersInOrder) {
    HeadReader reader;
    EXPECT_FALSE(reader.HasBegun());
    EXPECT_EQ(reader.AddLine("HTTP/1.1 206 Partial Content\r\n"), State::reading);
    EXPECT_TRUE(reader.HasBegun());
    EXPECT_EQ(reader.AddLine("ETag:  \"a\" \t\r\n"), State::reading);
    EXPECT_EQ(reader.AddLine("x-empty:\n"), State::reading);
    EXPECT_EQ(reader.AddLine("etag: second"), State::reading);
    EXPECT_EQ(reader.AddLine("\r\n"), State::complete);
    EXPECT_EQ(reader.Head().status, 206);
    const HeaderList expected = {{"ETag", "\"a\""}, {"x-empty", ""}, {"etag", "second"}};
    EXPECT_EQ(reader.Head().headers, expected);
    EXPECT_EQ(*FindHeader(reader.Head().headers, "ETAG"), "\"a\"");
    EXPECT_EQ(FindHeader(reader.Head().headers, "ETA"), nullptr);
}

TEST(HeadReader, SkipsInterimHeadsButCountsThem) {
    HeadReader reader;
    EXPECT_EQ(reader.AddHead("HTTP/1.1 100 Continue\r\nx: y\r\n\r\n"), State::reading);
    EXPECT_EQ(reader.AddHead("HTTP/1.1 200 OK\r\na: b\r\n\r\n"), State::complete);
    EXPECT_EQ(reader.Head().headers, (HeaderList{{"a", "b"}}));

    HeadReader flooded;
    State state = State::reading;
    for (std::size_t sent = 0; sent <= kMaxHeadBytes; sent += 27) {
        ASSERT_EQ(state, State::reading);
        state = flooded.AddHead("HTTP/1.1 102 Processing\r\n\r\n");
    }
    EXPECT_EQ(state, State::refused);
}

TEST(HeadReader, TakesExactlyTheBound) {
    const std::string status = "HTTP/1.1 200 OK\r\n";
    const std::string header =
        "x: " + std::string(kMaxHeadBytes - status.size() - 3 - 2 - 2, 'v') + "\r\n";
    HeadReader fits;
    EXPECT_EQ(fits.AddHead(status + header + "\r\n"), State::complete) << fits.Error();
    HeadReader over;
    EXPECT_EQ(over.AddHead(status + 'x' + header + "\r\n"), State::refused);
    EXPECT_NE(over.Error().find("65536"), std::string::npos) << over.Error();
}

TEST(HeadReader, RefusesWhatItCannotRead) {
    for (const char* const head :
         {"\r\n",
          "HTTP/2 200\r\n\r\n",
          "HTTP/1.1  200 OK\r\n\r\n",
          "HTTP/1.1 2000\r\n\r\n",
          "HTTP/1.1 099 X\r\n\r\n",
          "http/1.1 200 OK\r\n\r\n",
          "HTTP/1.1 101 Switching Protocols\r\n\r\n",
          "HTTP/1.1 200 OK\r\n: v\r\n\r\n",
          "HTTP/1.1 200 OK\r\n a: b\r\n\r\n",
          "HTTP/1.1 200 OK\r\na : b\r\n\r\n",
          "HTTP/1.1 200 OK\r\na: b\rc\r\n\r\n",
          "HTTP/1.1 200 OK\r\na: b\nc: d\r\n\r\n",
          "HTTP/1.1 200 O\nK\r\n\r\n",
          "HTTP/1.1 200 OK\r\nab\r\n\r\n",
          "HTTP/1.1 200 OK\r\nContent-Length:\r\n\r\n",
          "HTTP/1.1 200 OK\r\nContent-Length: +1\r\n\r\n",
          "HTTP/1.1 200 OK\r\nContent-Length: 0x1\r\n\r\n",
          "HTTP/1.1 200 OK\r\ncontent-length: 1\r\nCONTENT-LENGTH: 1\r\n\r\n",
          "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n",
          "HTTP/1.1 200 OK\r\na: b\r\n",
          "HTTP/1.1 200 OK\r\na: b"}) {
        HeadReader reader;
        EXPECT_EQ(reader.AddHead(head), State::refused) << head;
        EXPECT_NE(reader.Error(), "") << head;
    }
}

TEST(HeadReader, TakesOldVersionsAndMissingReasons) {
    for (const char* const head :
         {"HTTP/1.0 200 OK\r\n\r\n", "HTTP/1.1 200\r\n\r\n", "HTTP/1.1 200 \r\n\r\n"}) {
        HeadReader reader;
        EXPECT_EQ(reader.AddHead(head), State::complete) << head;
        EXPECT_EQ(reader.Head().status, 200);
    }
}

TEST(BodyLedger, LengthsAreReadWithoutSurprise) {
    std::uint64_t length = 0;
    EXPECT_TRUE(ParseLength("0", length));
    EXPECT_EQ(length, 0U);
    EXPECT_TRUE(ParseLength("18446744073709551615", length));
    EXPECT_EQ(length, 18446744073709551615U);
    for (const char* const text : {"", "18446744073709551616", "99999999999999999999", "-1", "+1",
                                   " 1", "1 ", "1,1", "0x1", "1a"}) {
        EXPECT_FALSE(ParseLength(text, length)) << text;
    }
}

TEST(BodyLedger, KnowsTheFramingAndWhatIsMissing) {
    using Framing = BodyLedger::Framing;
    const HeaderList five = {{"Content-Length", "5"}};
    EXPECT_EQ(BodyLedger("HEAD", HeadWith(200, five)).GetFraming(), Framing::none);
    EXPECT_EQ(BodyLedger("GET", HeadWith(204, {})).GetFraming(), Framing::none);
    EXPECT_EQ(BodyLedger("GET", HeadWith(304, five)).GetFraming(), Framing::none);
    EXPECT_EQ(BodyLedger("GET", HeadWith(200, {})).GetFraming(), Framing::untilClose);
    EXPECT_EQ(BodyLedger("GET",
                         HeadWith(200, {{"transfer-encoding", "chunked"}, {"Content-Length", "5"}}))
                  .GetFraming(),
              Framing::chunked);

    BodyLedger length("GET", HeadWith(200, five));
    EXPECT_EQ(length.GetFraming(), Framing::length);
    length.Add(4);
    EXPECT_FALSE(length.IsComplete(true));
    EXPECT_NE(length.Shortfall().find("4 of 5 bytes"), std::string::npos) << length.Shortfall();
    length.Add(1);
    EXPECT_TRUE(length.IsComplete(false));
    length.Add(1);
    EXPECT_FALSE(length.IsComplete(false));

    BodyLedger chunked("GET", HeadWith(200, {{"Transfer-Encoding", "Chunked"}}));
    EXPECT_FALSE(chunked.IsComplete(false));
    EXPECT_TRUE(chunked.IsComplete(true));
}

TEST(RequestBody, ReadsItsLengthFromWhereTheStreamStandsAndAgain) {
    std::istringstream stream("0123456789");
    stream.seekg(3);
    Request request;
    request.body = &stream;
    request.bodyLength = 5;
    RequestBody body(request);
    char room[16] = "";
    EXPECT_EQ(body.Read(room, sizeof(room)), 5U);
    EXPECT_EQ(std::string(room, 5), "34567");
    EXPECT_EQ(body.Left(), 0U);
    EXPECT_EQ(body.Read(room, sizeof(room)), 0U);
    ASSERT_TRUE(body.Rewind());
    EXPECT_EQ(body.Read(room, 2), 2U);
    EXPECT_EQ(std::string(room, 2), "34");
    ASSERT_TRUE(body.Rewind(4));
    EXPECT_EQ(body.Read(room, sizeof(room)), 1U);
    EXPECT_EQ(room[0], '7');
    EXPECT_FALSE(body.Rewind(6));
}

TEST(RequestBody, AShortStreamReadsZeroBeforeItsEndAndCanStillRewind) {
    std::istringstream stream("abc");
    Request request;
    request.body = &stream;
    request.bodyLength = 5;
    RequestBody body(request);
    char room[16];
    EXPECT_EQ(body.Read(room, sizeof(room)), 3U);
    EXPECT_EQ(body.Read(room, sizeof(room)), 0U);
    EXPECT_EQ(body.Left(), 2U);
    EXPECT_TRUE(body.Rewind());
    EXPECT_EQ(body.Read(room, sizeof(room)), 3U);
}

TEST(CertificateTrouble, EachKindSaysItsOwn) {
    EXPECT_EQ(Describe(CertificateTrouble::unknown, "h"), "");
    EXPECT_NE(Describe(CertificateTrouble::untrusted, "h").find("not trusted"), std::string::npos);
    EXPECT_NE(Describe(CertificateTrouble::expired, "h").find("expired"), std::string::npos);
    EXPECT_NE(Describe(CertificateTrouble::notYetValid, "h").find("not valid yet"),
              std::string::npos);
    EXPECT_NE(Describe(CertificateTrouble::wrongHost, "h").find("host name h"), std::string::npos);
    EXPECT_NE(Describe(CertificateTrouble::revoked, "h").find("revoked"), std::string::npos);
}

}  // namespace
}  // namespace Mirqos::Http
