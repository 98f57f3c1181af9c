#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "sdk/core/http/Transport.h"
#include "tests/support/Gate.h"
#include "tests/support/HttpExchange.h"
#include "tests/support/RawServer.h"
#include "tests/support/Trickle.h"

namespace Mirqos::Test {
namespace {

using Http::Failure;
using Connection = RawServer::Connection;
using namespace std::chrono_literals;

/// The limit under test is short, the other one out of reach.
constexpr Http::Limits kShortStall{60s, 300ms};
constexpr Http::Limits kShortConnect{300ms, 60s};

Http::Result Get(const RawServer& server, const Http::Limits& limits, KeptAnswer& answer) {
    return Http::MakeTransport({})->Exchange(LoopbackRequest(server.Port(), "GET", "/b/k"), limits,
                                             answer);
}

TEST(TransportLimits, AServerThatNeverAnswersIsLeft) {
    RawServer server([](Connection& connection, int) { connection.AwaitClose(); });
    KeptAnswer answer;
    const Http::Result result = Get(server, kShortStall, answer);
    EXPECT_EQ(result.failure, Failure::timeout) << result.message;
    EXPECT_NE(result.message.find("300 ms"), std::string::npos) << result.message;
    EXPECT_EQ(answer.heads, 0);
    EXPECT_EQ(server.Accepts(), 1);
}

TEST(TransportLimits, AServerThatDoesNotReadIsLeft) {
    // more than every buffer between the two ends holds
    constexpr std::uint64_t size = 256 * 1024 * 1024;
    Gate over;
    RawServer server([&](Connection& connection, int) {
        connection.ReadHead();
        over.Pass();
    });
    LongStream body(size);
    Http::Request request = LoopbackRequest(server.Port(), "PUT", "/b/k");
    request.body = &body;
    request.bodyLength = size;
    KeptAnswer answer;
    const Http::Result result = Http::MakeTransport({})->Exchange(request, kShortStall, answer);
    over.Open();
    EXPECT_EQ(result.failure, Failure::timeout) << result.message;
    EXPECT_NE(result.message.find("while sending"), std::string::npos) << result.message;
}

TEST(TransportLimits, AHeadThatStopsIsLeft) {
    RawServer server([](Connection& connection, int) {
        connection.ReadHead();
        connection.Send("HTTP/1.1 200 OK\r\nContent-Len");
        connection.AwaitClose();
    });
    KeptAnswer answer;
    const Http::Result result = Get(server, kShortStall, answer);
    EXPECT_EQ(result.failure, Failure::timeout) << result.message;
    EXPECT_EQ(answer.heads, 0);
}

TEST(TransportLimits, AHeadThatTricklesInIsLeft) {
    Trickle trickle;
    RawServer server([&](Connection& connection, int) {
        connection.ReadHead();
        connection.Send("HTTP/1.1 200 OK\r\n");
        trickle.Run([&] { connection.Send("x: y\r\n"); });
    });
    KeptAnswer answer;
    const Http::Result result = Get(server, kShortStall, answer);
    trickle.Stop();
    EXPECT_EQ(result.failure, Failure::timeout) << result.message;
    EXPECT_EQ(answer.heads, 0);
}

TEST(TransportLimits, ABodyThatStopsIsLeft) {
    for (const char* const framing :
         {"Content-Length: 500\r\n\r\nhello", "Transfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n"}) {
        RawServer server([&](Connection& connection, int) {
            connection.ReadHead();
            connection.Send(std::string("HTTP/1.1 200 OK\r\n") + framing);
            connection.AwaitClose();
        });
        KeptAnswer answer;
        const Http::Result result = Get(server, kShortStall, answer);
        EXPECT_EQ(result.failure, Failure::timeout) << result.message;
        EXPECT_NE(result.message.find("while receiving"), std::string::npos) << result.message;
        EXPECT_EQ(answer.heads, 1);
    }
}

TEST(TransportLimits, ASlowBodyThatMovesIsNotLeft) {
    Trickle trickle;
    RawServer server([&](Connection& connection, int) {
        connection.ReadHead();
        connection.Send("HTTP/1.1 200 OK\r\nContent-Length: 200\r\n\r\n");
        trickle.Run([&] { connection.Send("x"); }, 200);  // takes at least 2 s
        connection.AwaitClose();
    });
    KeptAnswer answer;
    const Http::Result result = Get(server, {60s, 1500ms}, answer);
    trickle.Stop();
    EXPECT_EQ(result.failure, Failure::none) << result.message;
    EXPECT_EQ(answer.body, std::string(200, 'x'));
}

TEST(TransportLimits, ASlowUploadThatMovesIsNotLeft) {
    // far more than the buffers between the two ends hold
    constexpr std::uint64_t step = 512 * 1024;
    constexpr int steps = 200;
    Trickle trickle;
    RawServer server([&](Connection& connection, int) {
        connection.ReadHead();
        trickle.Run([&] { connection.Skip(step); }, steps);  // takes at least 2 s
        connection.Send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
        connection.AwaitClose();
    });
    LongStream body(step * steps);
    Http::Request request = LoopbackRequest(server.Port(), "PUT", "/b/k");
    request.body = &body;
    request.bodyLength = step * steps;
    KeptAnswer answer;
    const Http::Result result = Http::MakeTransport({})->Exchange(request, {60s, 1500ms}, answer);
    trickle.Stop();
    EXPECT_EQ(result.failure, Failure::none) << result.message;
    EXPECT_EQ(answer.heads, 1);
}

TEST(TransportLimits, AHandshakeThatNeverEndsIsLeft) {
    RawServer server([](Connection& connection, int) { connection.AwaitClose(); });
    Http::Request request = LoopbackRequest(server.Port(), "GET", "/b/k");
    request.https = true;
    request.host = "localhost";
    KeptAnswer answer;
    const Http::Result result = Http::MakeTransport({})->Exchange(request, kShortConnect, answer);
    EXPECT_EQ(result.failure, Failure::connect) << result.message;
}

TEST(TransportLimits, ATransportGoesOnAfterATimeOut) {
    RawServer server([](Connection& connection, int number) {
        connection.ReadHead();
        if (number != 0) {
            connection.Send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
        }
        connection.AwaitClose();
    });
    Http::TransportOptions options;
    options.maxConnections = 1;
    const auto transport = Http::MakeTransport(options);
    const Http::Request request = LoopbackRequest(server.Port(), "GET", "/b/k");
    KeptAnswer late;
    EXPECT_EQ(transport->Exchange(request, kShortStall, late).failure, Failure::timeout);
    KeptAnswer answer;
    EXPECT_EQ(transport->Exchange(request, {60s, 60s}, answer).failure, Failure::none);
    EXPECT_EQ(answer.heads, 1);
}

}  // namespace
}  // namespace Mirqos::Test
