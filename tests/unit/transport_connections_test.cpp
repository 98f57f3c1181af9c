#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "sdk/core/http/Transport.h"
#include "tests/support/Gate.h"
#include "tests/support/HttpExchange.h"
#include "tests/support/RawServer.h"

namespace Mirqos::Test {
namespace {

using Http::Failure;
using Connection = RawServer::Connection;

const char* const kHello = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello";

std::shared_ptr<Http::Transport> NewTransport(unsigned connections) {
    Http::TransportOptions options;
    options.maxConnections = connections;
    return Http::MakeTransport(options);
}

Http::Limits Ample() {
    return {std::chrono::seconds(60), std::chrono::seconds(60)};
}

Http::Result Get(Http::Transport& transport, const RawServer& server, KeptAnswer& answer) {
    return transport.Exchange(LoopbackRequest(server.Port(), "GET", "/b/k"), Ample(), answer);
}

TEST(TransportConnections, AreReusedOneAfterAnother) {
    RawServer server([](Connection& connection, int) {
        for (;;) {
            const std::string head = connection.ReadHead();
            if (head.compare(0, 3, "PUT") == 0) {
                connection.Read(4);
            }
            connection.Send(kHello);
        }
    });
    const auto transport = NewTransport(4);
    for (int i = 0; i < 20; ++i) {
        KeptAnswer answer;
        std::istringstream body("body");
        Http::Request request = LoopbackRequest(server.Port(), i % 2 == 0 ? "GET" : "PUT", "/b/k");
        if (i % 2 != 0) {
            request.body = &body;
            request.bodyLength = 4;
        }
        const Http::Result result = transport->Exchange(request, Ample(), answer);
        ASSERT_EQ(result.failure, Failure::none) << result.message;
        ASSERT_EQ(answer.body, "hello");
    }
    EXPECT_EQ(server.Accepts(), 1);
}

TEST(TransportConnections, AnExchangeShowsNothingOfTheOneBefore) {
    std::string seen;  // by one request at a time
    RawServer server([&](Connection& connection, int) {
        for (;;) {
            seen = connection.ReadHead();
            seen += seen.find("Content-Length: 4") != std::string::npos ? connection.Read(4) : "";
            const std::string hello = kHello;
            connection.Send(seen.compare(0, 4, "HEAD") == 0 ? hello.substr(0, hello.size() - 5)
                                                            : hello);
        }
    });
    const auto transport = NewTransport(1);
    const auto exchange = [&](Http::Transport& by, const std::string& method) {
        std::istringstream body("body");
        Http::Request request = LoopbackRequest(server.Port(), method, "/b/" + method);
        request.headers.emplace_back("x-" + method, method);
        if (method == "PUT") {
            request.body = &body;
            request.bodyLength = 4;
        }
        KeptAnswer answer;
        const Http::Result result = by.Exchange(request, Ample(), answer);
        EXPECT_EQ(result.failure, Failure::none) << result.message;
        EXPECT_EQ(answer.body, method == "HEAD" ? "" : "hello");
        return seen;
    };
    const std::vector<std::string> methods = {"GET", "PUT", "HEAD", "POST", "DELETE"};
    for (const std::string& method : methods) {
        const std::string alone = exchange(*NewTransport(1), method);
        for (const std::string& before : methods) {
            SCOPED_TRACE(method + " after " + before);
            exchange(*transport, before);
            EXPECT_EQ(exchange(*transport, method), alone);
        }
    }
    EXPECT_LE(server.Accepts(), static_cast<int>(methods.size()) + 1);
}

TEST(TransportConnections, StayWithinTheirNumber) {
    std::atomic<int> atOnce{0};
    std::atomic<int> most{0};
    RawServer server([&](Connection& connection, int) {
        for (;;) {
            connection.ReadHead();
            const int now = ++atOnce;
            int seen = most;
            while (seen < now && !most.compare_exchange_weak(seen, now)) {
            }
            --atOnce;
            connection.Send(kHello);
        }
    });
    const auto transport = NewTransport(3);
    std::vector<std::thread> threads;
    std::atomic<int> good{0};
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i) {
                KeptAnswer answer;
                if (Get(*transport, server, answer).failure == Failure::none &&
                    answer.body == "hello") {
                    ++good;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, 160);
    EXPECT_LE(most, 3);
    EXPECT_LE(server.Accepts(), 3);
}

TEST(TransportConnections, AFourthExchangeWaitsForAFreeOne) {
    Gate answers;
    RawServer server([&](Connection& connection, int) {
        for (;;) {
            connection.ReadHead();
            answers.Pass();
            connection.Send(kHello);
        }
    });
    const auto transport = NewTransport(3);
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 6; ++t) {
        threads.emplace_back([&] {
            KeptAnswer answer;
            good += Get(*transport, server, answer).failure == Failure::none ? 1 : 0;
        });
    }
    EXPECT_TRUE(answers.WaitUntilReached(3));
    EXPECT_EQ(answers.Reached(), 3);
    answers.Open();
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, 6);
    EXPECT_EQ(server.Accepts(), 3);
}

TEST(TransportConnections, TheOneUsedLastIsTakenFirst) {
    Gate gates[2];
    std::vector<int> used;  // written by one request at a time
    std::atomic<bool> recording{false};
    RawServer server([&](Connection& connection, int number) {
        connection.ReadHead();
        gates[number].Pass();
        connection.Send(kHello);
        for (;;) {
            connection.ReadHead();
            used.push_back(number);
            connection.Send(kHello);
        }
    });
    const auto transport = NewTransport(2);
    const auto get = [&] {
        KeptAnswer answer;
        EXPECT_EQ(Get(*transport, server, answer).failure, Failure::none);
    };
    std::thread first(get);
    ASSERT_TRUE(gates[0].WaitUntilReached());
    std::thread second(get);
    ASSERT_TRUE(gates[1].WaitUntilReached());
    gates[1].Open();
    second.join();
    gates[0].Open();
    first.join();  // so connection 0 came back last
    for (int i = 0; i < 5; ++i) {
        get();
    }
    EXPECT_EQ(used, std::vector<int>(5, 0));
    EXPECT_EQ(server.Accepts(), 2);
}

TEST(TransportConnections, OneClosedWhileIdleIsReplaced) {
    RawServer server([](Connection& connection, int) {
        connection.ReadHead();
        connection.Send(kHello);
        connection.Close();
    });
    const auto transport = NewTransport(1);
    for (int i = 0; i < 5; ++i) {
        KeptAnswer answer;
        const Http::Result result = Get(*transport, server, answer);
        EXPECT_EQ(result.failure, Failure::none) << result.message;
        EXPECT_EQ(answer.body, "hello");
    }
    EXPECT_EQ(server.Accepts(), 5);
}

/// The close that crosses the next request: it cannot be seen before that is sent.
TEST(TransportConnections, OneClosedUnderTheNextRequestIsReplaced) {
    for (const bool reset : {false, true}) {
        RawServer server([&](Connection& connection, int) {
            connection.ReadHead();
            connection.Send(kHello);
            connection.ReadHead();
            reset ? connection.Reset() : connection.Close();
        });
        const auto transport = NewTransport(1);
        for (int i = 0; i < 3; ++i) {
            KeptAnswer answer;
            const Http::Result result = Get(*transport, server, answer);
            EXPECT_EQ(result.failure, Failure::none) << result.message;
            EXPECT_EQ(answer.heads, 1);
            EXPECT_EQ(answer.body, "hello");
        }
        EXPECT_EQ(server.Accepts(), 3);
    }
}

TEST(TransportConnections, AReplacedUploadSendsItsWholeBodyAgain) {
    const std::string sent(2 * 1024 * 1024, 'b');
    std::string arrived;
    RawServer server([&](Connection& connection, int number) {
        if (number == 0) {
            connection.ReadHead();
            connection.Send(kHello);
            connection.ReadHead();
            connection.Read(1024 * 1024);
            connection.Reset();
            return;
        }
        connection.ReadHead();
        arrived = connection.Read(sent.size());
        connection.Send(kHello);
        connection.AwaitClose();
    });
    const auto transport = NewTransport(1);
    KeptAnswer first;
    ASSERT_EQ(Get(*transport, server, first).failure, Failure::none);
    std::istringstream body("before" + sent);
    body.seekg(6);
    Http::Request request = LoopbackRequest(server.Port(), "PUT", "/b/k");
    request.body = &body;
    request.bodyLength = sent.size();
    KeptAnswer answer;
    const Http::Result result = transport->Exchange(request, Ample(), answer);
    EXPECT_EQ(result.failure, Failure::none) << result.message;
    EXPECT_TRUE(arrived == sent);
    EXPECT_EQ(server.Accepts(), 2);
}

TEST(TransportConnections, AreReplacedOnlyOnce) {
    RawServer server([](Connection& connection, int number) {
        connection.ReadHead();
        if (number == 0) {
            connection.Send(kHello);
            connection.ReadHead();
        }
        connection.Close();
    });
    const auto transport = NewTransport(1);
    KeptAnswer first;
    ASSERT_EQ(Get(*transport, server, first).failure, Failure::none);
    KeptAnswer answer;
    const Http::Result result = Get(*transport, server, answer);
    EXPECT_EQ(result.failure, Failure::receive) << result.message;
    EXPECT_EQ(answer.heads, 0);
    EXPECT_EQ(server.Accepts(), 2);
}

TEST(TransportConnections, AreNotReplacedOnceAnAnswerHasBegun) {
    RawServer server([](Connection& connection, int) {
        connection.ReadHead();
        connection.Send(kHello);
        connection.ReadHead();
        connection.Send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n");
        connection.Close();
    });
    const auto transport = NewTransport(1);
    KeptAnswer first;
    ASSERT_EQ(Get(*transport, server, first).failure, Failure::none);
    KeptAnswer answer;
    EXPECT_EQ(Get(*transport, server, answer).failure, Failure::receive);
    EXPECT_EQ(server.Accepts(), 1);
}

TEST(TransportConnections, GoWhereTheRequestSays) {
    RawServer server([](Connection& connection, int) {
        connection.ReadHead();
        connection.Send(kHello);
        connection.AwaitClose();
    });
    Http::Request request = LoopbackRequest(80, "GET", "/k");
    request.host = "bucket.s3.example.com";
    request.connectHost = "127.0.0.1";
    request.connectPort = server.Port();
    KeptAnswer answer;
    const Http::Result result = NewTransport(1)->Exchange(request, Ample(), answer);
    EXPECT_EQ(result.failure, Failure::none) << result.message;
    EXPECT_EQ(answer.body, "hello");
}

TEST(TransportConnections, RefusedOnesFailAsConnect) {
    std::uint16_t port = 0;
    {
        RawServer gone([](Connection&, int) {});
        port = gone.Port();
    }
    KeptAnswer answer;
    const Http::Result result =
        NewTransport(1)->Exchange(LoopbackRequest(port, "GET", "/b/k"), Ample(), answer);
    EXPECT_EQ(result.failure, Failure::connect) << result.message;
    EXPECT_NE(result.message, "");
}

TEST(TransportConnections, UnknownHostsFailAsResolve) {
    Http::Request request = LoopbackRequest(80, "GET", "/b/k");
    request.host = "no-such-host.invalid";
    KeptAnswer answer;
    const Http::Result result = NewTransport(1)->Exchange(request, Ample(), answer);
    EXPECT_EQ(result.failure, Failure::resolve) << result.message;
}

}  // namespace
}  // namespace Mirqos::Test
