#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "sdk/core/http/Transport.h"
#include "tests/support/HttpExchange.h"
#include "tests/support/RawServer.h"
#include "tests/support/Trickle.h"

namespace Mirqos::Test {
namespace {

using Http::Failure;
using Connection = RawServer::Connection;

const char* const kInterim[] = {"HTTP/1.1 100 Continue\r\n\r\n", "HTTP/1.1 102 Processing\r\n\r\n",
                                "HTTP/1.1 103 Early Hints\r\nLink: </x>\r\n\r\n"};

TEST(TransportInterim, HeadsAreSkipped) {
    for (const std::string interim : kInterim) {
        RawServer server([&](Connection& connection, int) {
            connection.ReadHead();
            connection.Send(interim + interim + "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
            connection.AwaitClose();
        });
        KeptAnswer kept;
        const Http::Result result = Http::MakeTransport({})->Exchange(
            LoopbackRequest(server.Port(), "GET", "/b/k"),
            {std::chrono::seconds(60), std::chrono::seconds(60)}, kept);
        EXPECT_EQ(result.failure, Failure::none) << interim << result.message;
        EXPECT_EQ(kept.heads, 1);
        EXPECT_EQ(kept.head.status, 200);
        EXPECT_EQ(kept.body, "ok");
    }
}

TEST(TransportInterim, EndlessHeadsAreLeft) {
    Trickle trickle;
    RawServer server([&](Connection& connection, int) {
        connection.ReadHead();
        trickle.Run([&] { connection.Send(kInterim[1]); });
    });
    KeptAnswer kept;
    const Http::Result result = Http::MakeTransport({})->Exchange(
        LoopbackRequest(server.Port(), "GET", "/b/k"),
        {std::chrono::seconds(60), std::chrono::milliseconds(300)}, kept);
    trickle.Stop();
    EXPECT_EQ(result.failure, Failure::timeout) << result.message;
    EXPECT_EQ(kept.heads, 0);
}

}  // namespace
}  // namespace Mirqos::Test
