#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "sdk/core/http/Transport.h"
#include "tests/support/Gate.h"
#include "tests/support/HttpExchange.h"
#include "tests/support/RawServer.h"

namespace Mirqos::Test {
namespace {

using Http::Failure;
using Connection = RawServer::Connection;

const char* const kEmptyAnswer = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n";

std::shared_ptr<Http::Transport> NewTransport(unsigned connections = 4) {
    Http::TransportOptions options;
    options.maxConnections = connections;
    return Http::MakeTransport(options);
}

/// Limits that no test here is meant to reach.
Http::Limits Ample() {
    return {std::chrono::seconds(60), std::chrono::seconds(60)};
}

/// Answers each request on a connection with the same bytes.
RawServer::Script Always(const std::string& answer) {
    return [answer](Connection& connection, int) {
        for (;;) {
            connection.ReadHead();
            connection.Send(answer);
        }
    };
}

std::string RequestLine(const std::string& head) {
    return head.substr(0, head.find("\r\n"));
}

bool HasLine(const std::string& head, const std::string& line) {
    return head.find("\r\n" + line + "\r\n") != std::string::npos;
}

bool HasHeader(const std::string& head, const std::string& name) {
    return head.find("\r\n" + name + ":") != std::string::npos;
}

/// The head that `request` arrives with.
std::string HeadOf(Http::Request request) {
    std::promise<std::string> arrived;
    RawServer server([&](Connection& connection, int) {
        arrived.set_value(connection.ReadHead());
        connection.Skip(request.bodyLength);
        connection.Send(kEmptyAnswer);
        connection.AwaitClose();
    });
    request.port = server.Port();
    KeptAnswer answer;
    const Http::Result result = NewTransport()->Exchange(request, Ample(), answer);
    EXPECT_EQ(result.failure, Failure::none) << result.message;
    EXPECT_EQ(answer.head.status, 200);
    return result.failure == Failure::none ? arrived.get_future().get() : std::string();
}

/// What a client makes of `answer`, sent to a GET on a connection that is then closed.
Http::Result ResultOf(const std::string& answer, KeptAnswer& kept) {
    RawServer server([&](Connection& connection, int) {
        connection.ReadHead();
        connection.Send(answer);
        connection.Close();
    });
    return NewTransport()->Exchange(LoopbackRequest(server.Port(), "GET", "/b/k"), Ample(), kept);
}

TEST(Transport, TargetsArriveUnchanged) {
    for (const std::string target :
         {"/b//", "/b//x///y", "/b/./x", "/b/../x", "/b/x/.", "/b/x/..", "/../../x", "/b/%2F",
          "/b/a%2Fb%2e%2E", "/b/trailing..", "/b/trailing.", "/b/~-_.!*'();:@&=+$,", "/b/%00%7F",
          "/b/k?prefix=%2F..%2F&marker=a//./../b&x", "/b/?", "/?uploads", "//b/k", "/b/back\\slash",
          "/b/%25%5C%23"}) {
        EXPECT_EQ(RequestLine(HeadOf(LoopbackRequest(0, "GET", target))),
                  "GET " + target + " HTTP/1.1");
    }
}

TEST(Transport, HeadersArriveAsGivenAndNoneIsInvented) {
    Http::Request request = LoopbackRequest(0, "GET", "/b/k");
    request.headers.emplace_back("User-Agent", "agent/1.0 (test)");
    request.headers.emplace_back("x-amz-meta-a", "b; c, \"d\"");
    request.headers.emplace_back("Range", "bytes=0-1");
    const std::string head = HeadOf(request);
    EXPECT_TRUE(HasLine(head, "Host: bucket.example.com")) << head;
    EXPECT_TRUE(HasLine(head, "User-Agent: agent/1.0 (test)")) << head;
    EXPECT_TRUE(HasLine(head, "x-amz-meta-a: b; c, \"d\"")) << head;
    EXPECT_TRUE(HasLine(head, "Range: bytes=0-1")) << head;
    for (const char* const name : {"Accept", "Accept-Encoding", "Expect", "Cookie", "Content-Type",
                                   "Content-Length", "Transfer-Encoding", "Authorization"}) {
        EXPECT_FALSE(HasHeader(head, name)) << head;
    }
    EXPECT_EQ(head.find("Host:"), head.rfind("Host:")) << head;
}

TEST(Transport, AnEmptyHeaderValueIsSent) {
    Http::Request request = LoopbackRequest(0, "GET", "/b/k");
    request.headers.emplace_back("x-amz-empty", "");
    EXPECT_TRUE(HasHeader(HeadOf(request), "x-amz-empty"));
}

TEST(Transport, UploadsAreFramedByTheirLength) {
    std::istringstream body("skipped, then the body");
    body.seekg(14);
    Http::Request request = LoopbackRequest(0, "PUT", "/b/k");
    request.body = &body;
    request.bodyLength = 4;
    const std::string head = HeadOf(request);
    EXPECT_EQ(RequestLine(head), "PUT /b/k HTTP/1.1");
    EXPECT_TRUE(HasLine(head, "Content-Length: 4")) << head;
    EXPECT_FALSE(HasHeader(head, "Expect"));
    EXPECT_FALSE(HasHeader(head, "Transfer-Encoding"));
}

TEST(Transport, UploadsWithoutBytesSayLengthZero) {
    std::istringstream empty;
    for (const char* const method : {"PUT", "POST"}) {
        for (std::istream* const body :
             {static_cast<std::istream*>(nullptr), static_cast<std::istream*>(&empty)}) {
            Http::Request request = LoopbackRequest(0, method, "/b/k");
            request.body = body;
            EXPECT_TRUE(HasLine(HeadOf(request), "Content-Length: 0")) << method;
        }
    }
}

TEST(Transport, RequestsWithoutBodyHaveNoLength) {
    for (const char* const method : {"GET", "HEAD", "DELETE"}) {
        const std::string head = HeadOf(LoopbackRequest(0, method, "/b/k"));
        EXPECT_EQ(RequestLine(head), method + std::string(" /b/k HTTP/1.1"));
        EXPECT_FALSE(HasHeader(head, "Content-Length")) << head;
    }
}

TEST(Transport, BodiesGoThroughWhole) {
    constexpr std::size_t size = 3 * 1024 * 1024 + 7;
    std::string sent(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        sent[i] = static_cast<char>(i * 31 % 251);
    }
    std::string arrived;
    RawServer server([&](Connection& connection, int) {
        connection.ReadHead();
        arrived = connection.Read(size);
        connection.Send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(size) + "\r\n\r\n");
        connection.Send(arrived);
        connection.AwaitClose();
    });
    std::istringstream body(sent);
    Http::Request request = LoopbackRequest(server.Port(), "PUT", "/b/k");
    request.body = &body;
    request.bodyLength = size;
    KeptAnswer answer;
    const Http::Result result = NewTransport()->Exchange(request, Ample(), answer);
    ASSERT_EQ(result.failure, Failure::none) << result.message;
    EXPECT_TRUE(arrived == sent);
    EXPECT_TRUE(answer.body == sent);
}

TEST(Transport, LengthsAboveFourGibibytesAreAnnounced) {
    std::promise<std::string> head;
    RawServer server([&](Connection& connection, int) {
        head.set_value(connection.ReadHead());
        connection.Skip(1024 * 1024);
        connection.Send("HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
        connection.Close();
    });
    LongStream body(5'368'709'123);
    Http::Request request = LoopbackRequest(server.Port(), "PUT", "/b/k");
    request.body = &body;
    request.bodyLength = 5'368'709'123;
    KeptAnswer answer;
    NewTransport()->Exchange(request, Ample(), answer);
    EXPECT_TRUE(HasLine(head.get_future().get(), "Content-Length: 5368709123"));
}

Http::Result Put(Http::Transport& transport, const RawServer& server, std::istream& body,
                 std::uint64_t size, KeptAnswer& answer) {
    Http::Request request = LoopbackRequest(server.Port(), "PUT", "/b/k");
    request.body = &body;
    request.bodyLength = size;
    return transport.Exchange(request, Ample(), answer);
}

const char* const kRefusal =
    "HTTP/1.1 403 Forbidden\r\nContent-Length: 5\r\nConnection: close\r\n\r\nstop!";

TEST(Transport, ARefusalDuringTheUploadIsDelivered) {
    RawServer server([](Connection& connection, int) {
        connection.ReadHead();
        connection.Send(kRefusal);
        connection.AwaitClose();  // reading on
    });
    constexpr std::uint64_t size = 16 * 1024 * 1024;
    LongStream body(size);
    KeptAnswer answer;
    const Http::Result result = Put(*NewTransport(), server, body, size, answer);
    EXPECT_EQ(result.failure, Failure::none) << result.message;
    EXPECT_EQ(answer.head.status, 403);
    EXPECT_EQ(answer.body, "stop!");
}

/// Calls `before` when its first byte is asked for.
class TellingBuffer final : public std::stringbuf {
public:
    TellingBuffer(const std::string& text, std::function<void()> before)
        : std::stringbuf(text), m_before(std::move(before)) {}

protected:
    std::streamsize xsgetn(char* to, std::streamsize count) override {
        if (m_before) {
            std::exchange(m_before, nullptr)();
        }
        return std::stringbuf::xsgetn(to, count);
    }

private:
    std::function<void()> m_before;
};

/// A server that has answered so and hung up before the first byte of the body goes out.
Http::Result PutToOneThatHangsUp(const std::string& said, KeptAnswer& answer) {
    Gate hungUp;
    RawServer server([&](Connection& connection, int) {
        connection.ReadHead();
        connection.Send(said);
        connection.Reset();
        hungUp.Open();
    });
    const std::string sent(4 * 1024 * 1024, 's');
    TellingBuffer buffer(sent, [&] { hungUp.Pass(); });
    std::istream body(&buffer);
    return Put(*NewTransport(), server, body, sent.size(), answer);
}

TEST(Transport, ARefusalIsDeliveredEvenIfTheServerHasHungUp) {
    KeptAnswer answer;
    const Http::Result result = PutToOneThatHangsUp(kRefusal, answer);
    EXPECT_EQ(result.failure, Failure::none) << result.message;
    EXPECT_EQ(answer.heads, 1);
    EXPECT_EQ(answer.head.status, 403);
    EXPECT_EQ(answer.body, "stop!");
}

std::string EarlySuccess(const std::string& ending) {
    return "HTTP/1.1 200 OK\r\nETag: \"e\"\r\nContent-Length: 0\r\n" + ending + "\r\n";
}

TEST(Transport, ASuccessBeforeTheWholeBodyIsSentIsAFailure) {
    for (const char* const ending : {"", "Connection: close\r\n"}) {
        RawServer server([&](Connection& connection, int) {
            connection.ReadHead();
            connection.Send(EarlySuccess(ending));
            connection.Skip(1024 * 1024);
            connection.Close();
        });
        constexpr std::uint64_t size = 32 * 1024 * 1024;
        LongStream body(size);
        KeptAnswer answer;
        const Http::Result result = Put(*NewTransport(), server, body, size, answer);
        EXPECT_EQ(result.failure, Failure::send) << ending << answer.head.status;
        EXPECT_NE(result.message, "");
    }
}

TEST(Transport, ASuccessFromAServerThatHasHungUpIsAFailure) {
    for (const char* const ending : {"", "Connection: close\r\n"}) {
        KeptAnswer answer;
        const Http::Result result = PutToOneThatHangsUp(EarlySuccess(ending), answer);
        EXPECT_EQ(result.failure, Failure::send) << ending << answer.head.status;
        EXPECT_NE(result.message, "");
    }
}

TEST(Transport, WhatWasSentOnAConnectionThatWasReplacedDoesNotCount) {
    constexpr std::uint64_t mebibyte = 1024 * 1024;
    constexpr std::uint64_t size = 32 * mebibyte;
    RawServer server([&](Connection& connection, int number) {
        connection.ReadHead();
        connection.Send(EarlySuccess(""));
        if (number == 0) {
            connection.ReadHead();
            connection.Skip(size - mebibyte);
        } else {
            connection.Skip(2 * mebibyte);
        }
        connection.Close();
    });
    const auto transport = NewTransport(1);
    KeptAnswer first;
    EXPECT_EQ(
        transport->Exchange(LoopbackRequest(server.Port(), "GET", "/b/k"), Ample(), first).failure,
        Failure::none);
    LongStream body(size);
    KeptAnswer answer;
    const Http::Result result = Put(*transport, server, body, size, answer);
    EXPECT_EQ(result.failure, Failure::send) << answer.head.status;
    EXPECT_EQ(server.Accepts(), 2);
}

TEST(Transport, AnEarlySuccessIsOneOnceTheBodyIsSent) {
    constexpr std::uint64_t sizes[] = {0, 1, 3 * 1024 * 1024, 0, 70'000};
    RawServer server([&](Connection& connection, int) {
        for (const std::uint64_t size : sizes) {
            connection.ReadHead();
            connection.Send(EarlySuccess(""));
            connection.Skip(size);
        }
        connection.AwaitClose();
    });
    const auto transport = NewTransport(1);
    for (const std::uint64_t size : sizes) {
        LongStream body(size);
        KeptAnswer answer;
        const Http::Result result = Put(*transport, server, body, size, answer);
        EXPECT_EQ(result.failure, Failure::none) << size << ": " << result.message;
        EXPECT_EQ(answer.head.status, 200);
    }
    EXPECT_EQ(server.Accepts(), 1);
}

TEST(Transport, AHeadAnswerHasNoBodyAndKeepsTheConnection) {
    RawServer server(Always("HTTP/1.1 200 OK\r\nContent-Length: 123456\r\nETag: \"e\"\r\n\r\n"));
    const auto transport = NewTransport();
    for (int i = 0; i < 3; ++i) {
        KeptAnswer answer;
        const Http::Result result =
            transport->Exchange(LoopbackRequest(server.Port(), "HEAD", "/b/k"), Ample(), answer);
        ASSERT_EQ(result.failure, Failure::none) << result.message;
        EXPECT_EQ(answer.body, "");
        ASSERT_NE(Http::FindHeader(answer.head.headers, "content-length"), nullptr);
        EXPECT_EQ(*Http::FindHeader(answer.head.headers, "etag"), "\"e\"");
    }
    EXPECT_EQ(server.Accepts(), 1);
}

TEST(Transport, AnswersOfEveryFramingAreWhole) {
    KeptAnswer length;
    EXPECT_EQ(ResultOf("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello", length).failure,
              Failure::none);
    EXPECT_EQ(length.body, "hello");
    KeptAnswer chunked;
    EXPECT_EQ(ResultOf("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                       "3\r\nhel\r\n2;ext=1\r\nlo\r\n0\r\n\r\n",
                       chunked)
                  .failure,
              Failure::none);
    EXPECT_EQ(chunked.body, "hello");
    KeptAnswer empty;
    EXPECT_EQ(
        ResultOf("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", empty).failure,
        Failure::none);
    EXPECT_EQ(empty.body, "");
    KeptAnswer untilClose;
    EXPECT_EQ(ResultOf("HTTP/1.1 200 OK\r\n\r\nhello", untilClose).failure, Failure::none);
    EXPECT_EQ(untilClose.body, "hello");
    KeptAnswer none;
    EXPECT_EQ(ResultOf("HTTP/1.1 204 No Content\r\n\r\n", none).failure, Failure::none);
    EXPECT_EQ(none.head.status, 204);
}

TEST(Transport, ShortBodiesAreTruncated) {
    const std::string length = "HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n";
    const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (const std::string& answer :
         {length, length + "hello", chunked + "5\r\nhel", chunked + "5\r\nhello",
          chunked + "5\r\nhello\r\n", chunked + "5\r\nhello\r\n5\r\nhe"}) {
        KeptAnswer kept;
        const Http::Result result = ResultOf(answer, kept);
        EXPECT_EQ(result.failure, Failure::truncated) << answer << '\n' << result.message;
        EXPECT_NE(result.message.find("body ended after"), std::string::npos) << result.message;
        EXPECT_EQ(kept.heads, 1);
    }
}

TEST(Transport, ABodyCutByAResetIsTruncated) {
    for (const char* const framing :
         {"Content-Length: 500\r\n\r\nhello", "Transfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n"}) {
        Gate delivered;
        struct Opening final : Http::Receiver {
            explicit Opening(Gate& g) : gate(g) {}
            Want OnHead(const Http::ResponseHead&) override {
                gate.Open();
                return Want::more;
            }
            Want OnBody(const char*, std::size_t) override { return Want::more; }
            Gate& gate;
        } receiver(delivered);
        RawServer server([&](Connection& connection, int) {
            connection.ReadHead();
            connection.Send(std::string("HTTP/1.1 200 OK\r\n") + framing);
            delivered.Pass();
            connection.Reset();
        });
        const Http::Result result = NewTransport()->Exchange(
            LoopbackRequest(server.Port(), "GET", "/b/k"), Ample(), receiver);
        EXPECT_EQ(result.failure, Failure::truncated) << framing << '\n' << result.message;
    }
}

TEST(Transport, BadHeadsAreRefused) {
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    for (const std::string& answer :
         {std::string("garbage\r\n\r\n"), std::string("220 smtp ready\r\n"),
          std::string("HTTP/1.1 abc OK\r\n\r\n"), std::string("HTTP/1.1 20\r\n\r\n"),
          ok + "Content-Length: 1\r\nContent-Length: 2\r\n\r\nab",
          ok + "Content-Length: 1\r\nContent-Length: 1\r\n\r\na",
          ok + "Content-Length: -1\r\n\r\na", ok + "Content-Length: 1, 1\r\n\r\na",
          ok + "Content-Length: 99999999999999999999\r\n\r\na", ok + "Content-Length : 1\r\n\r\na",
          ok + "Content-Length: 0\r\n folded\r\n\r\n",
          ok + "no header\r\nContent-Length: 0\r\n\r\n",
          ok + "Transfer-Encoding: gzip, chunked\r\n\r\n0\r\n\r\n", ok + "Content-Length: 0\r\n",
          ok + "Content-Len", std::string("HTTP/1.1 200 O"), std::string()}) {
        KeptAnswer kept;
        const Http::Result result = ResultOf(answer, kept);
        EXPECT_EQ(result.failure, Failure::receive) << answer << '\n' << result.message;
        EXPECT_NE(result.message, "");
        EXPECT_EQ(kept.heads, 0) << answer;
    }
}

TEST(Transport, AHeadOverTheBoundIsRefused) {
    std::string fits = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n";
    while (fits.size() < 32 * 1024) {
        fits += "x-padding: " + std::string(1000, 'p') + "\r\n";
    }
    KeptAnswer kept;
    EXPECT_EQ(ResultOf(fits + "\r\n", kept).failure, Failure::none);
    std::string over = fits;
    while (over.size() <= Http::kMaxHeadBytes) {
        over += "x-padding: " + std::string(1000, 'p') + "\r\n";
    }
    KeptAnswer refused;
    EXPECT_EQ(ResultOf(over + "\r\n", refused).failure, Failure::receive);
    EXPECT_EQ(refused.heads, 0);
}

TEST(Transport, RedirectsAuthenticationCookiesAndCodingsAreLeftAlone) {
    std::vector<std::string> heads;
    RawServer server([&](Connection& connection, int) {
        for (const char* const status : {"307 Temporary Redirect", "401 Unauthorized",
                                         "407 Proxy Authentication Required", "200 OK", "200 OK"}) {
            heads.push_back(connection.ReadHead());
            connection.Send(std::string("HTTP/1.1 ") + status +
                            "\r\nLocation: /elsewhere\r\nWWW-Authenticate: Basic realm=\"r\"\r\n"
                            "Proxy-Authenticate: Basic realm=\"r\"\r\nSet-Cookie: c=1; Path=/\r\n"
                            "Content-Encoding: gzip\r\nContent-Length: 4\r\n\r\nbody");
        }
        connection.AwaitClose();
    });
    const auto transport = NewTransport();
    for (const int status : {307, 401, 407, 200, 200}) {
        KeptAnswer answer;
        const Http::Result result =
            transport->Exchange(LoopbackRequest(server.Port(), "GET", "/b/k"), Ample(), answer);
        ASSERT_EQ(result.failure, Failure::none) << result.message;
        EXPECT_EQ(answer.head.status, status);
        EXPECT_EQ(answer.body, "body");
    }
    ASSERT_EQ(heads.size(), 5U);
    for (const std::string& head : heads) {
        EXPECT_EQ(RequestLine(head), "GET /b/k HTTP/1.1");
        EXPECT_FALSE(HasHeader(head, "Cookie")) << head;
        EXPECT_FALSE(HasHeader(head, "Authorization")) << head;
    }
}

TEST(Transport, RequestsThatCannotGoOutExactlyGoNowhere) {
    RawServer server(Always(kEmptyAnswer));
    const Http::Request good = LoopbackRequest(server.Port(), "GET", "/b/k");
    std::vector<Http::Request> bad(9, good);
    bad[0].target = "/b/k HTTP/1.1\r\nx: y";
    bad[1].target = "/b/a b";
    bad[2].target = "b/k";
    bad[3].headers.emplace_back("x", "a\r\ny: b");
    bad[4].headers.emplace_back("x y", "a");
    bad[5].headers.emplace_back("Content-Length", "1");
    bad[6].method = "GET /";
    bad[7].host = "a/b";
    bad[8].bodyLength = 1;
    const auto transport = NewTransport();
    for (const Http::Request& request : bad) {
        KeptAnswer answer;
        const Http::Result result = transport->Exchange(request, Ample(), answer);
        EXPECT_EQ(result.failure, Failure::send);
        EXPECT_NE(result.message, "");
    }
    EXPECT_EQ(server.Accepts(), 0);
}

TEST(Transport, AStreamThatEndsEarlyFailsTheUpload) {
    RawServer server([](Connection& connection, int) {
        connection.ReadHead();
        connection.AwaitClose();
    });
    std::istringstream body("short");
    Http::Request request = LoopbackRequest(server.Port(), "PUT", "/b/k");
    request.body = &body;
    request.bodyLength = 500'000;
    KeptAnswer answer;
    const Http::Result result = NewTransport()->Exchange(request, Ample(), answer);
    EXPECT_EQ(result.failure, Failure::send);
    EXPECT_NE(result.message.find("ended early"), std::string::npos) << result.message;
}

TEST(Transport, AReceiverMayHaveEnough) {
    RawServer server([](Connection& connection, int) {
        connection.ReadHead();
        connection.Send("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\nbegin");
        connection.AwaitClose();
    });
    const auto transport = NewTransport();
    KeptAnswer atHead;
    atHead.enoughAtHead = true;
    EXPECT_EQ(
        transport->Exchange(LoopbackRequest(server.Port(), "GET", "/b/k"), Ample(), atHead).failure,
        Failure::none);
    EXPECT_EQ(atHead.heads, 1);
    EXPECT_EQ(atHead.body, "");
}

TEST(Transport, WhatAReceiverThrowsPassesThroughAndTheTransportGoesOn) {
    struct Throwing final : Http::Receiver {
        Want OnHead(const Http::ResponseHead&) override { return Want::more; }
        Want OnBody(const char*, std::size_t) override { throw std::runtime_error("mine"); }
    } throwing;
    RawServer server(Always("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello"));
    const auto transport = NewTransport(1);
    const Http::Request request = LoopbackRequest(server.Port(), "GET", "/b/k");
    EXPECT_THROW(transport->Exchange(request, Ample(), throwing), std::runtime_error);
    KeptAnswer answer;
    EXPECT_EQ(transport->Exchange(request, Ample(), answer).failure, Failure::none);
    EXPECT_EQ(answer.body, "hello");
}

}  // namespace
}  // namespace Mirqos::Test
