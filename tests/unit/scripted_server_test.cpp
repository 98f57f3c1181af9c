#include "tests/support/ScriptedServer.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/RawClient.h"

namespace {

using Mirqos::Test::Answer;
using Mirqos::Test::Fault;
using Mirqos::Test::Gate;
using Mirqos::Test::Place;
using Mirqos::Test::RawClient;
using Mirqos::Test::RecordedRequest;
using Mirqos::Test::ScriptedServer;

std::string Get(const std::string& target) {
    return "GET " + target + " HTTP/1.1\r\nHost: h\r\n\r\n";
}

std::string Put(const std::string& target, const std::string& body) {
    return "PUT " + target +
           " HTTP/1.1\r\nHost: h\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
           body;
}

const char* const kOkHello = "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello";

/// The connection has ended, by a reset where the system tells.
bool SawReset(const RawClient& client) {
    return RawClient::TellsResetsApart() ? client.Ended() == RawClient::End::broken
                                         : client.Ended() != RawClient::End::open;
}

TEST(ScriptedServer, RecordsARequestToTheLetter) {
    ScriptedServer server;
    server.Next(Answer::Status(200));
    RawClient client(server.Port());
    const std::string head =
        "PUT /b//./a/../%41+@~?x=1&y?z HTTP/1.1\r\nX-b: 2\r\nHost: h\r\nx-B:  3 \r\n"
        "Content-Length: 4\r\nX-Empty:\r\n\r\n";
    ASSERT_TRUE(client.Send(head + std::string("\0\r\n\xff", 4)));
    EXPECT_EQ(client.ReadHead(), "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");

    const std::vector<RecordedRequest> requests = server.Requests();
    ASSERT_EQ(requests.size(), 1u);
    const RecordedRequest& request = requests[0];
    EXPECT_EQ(request.connection, 1);
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.target, "/b//./a/../%41+@~?x=1&y?z");
    EXPECT_EQ(request.Path(), "/b//./a/../%41+@~");
    EXPECT_EQ(request.Query(), "x=1&y?z");
    EXPECT_EQ(request.version, "HTTP/1.1");
    EXPECT_EQ(request.head, head);
    const std::vector<std::pair<std::string, std::string>> headers{
        {"X-b", "2"}, {"Host", "h"}, {"x-B", "3"}, {"Content-Length", "4"}, {"X-Empty", ""}};
    EXPECT_EQ(request.headers, headers);
    EXPECT_EQ(request.body, std::string("\0\r\n\xff", 4));
    EXPECT_TRUE(request.complete);
    ASSERT_NE(request.Header("hOST"), nullptr);
    EXPECT_EQ(*request.Header("hOST"), "h");
    EXPECT_EQ(request.Header("absent"), nullptr);
}

TEST(ScriptedServer, RulesAreTriedInOrderAndUsedUp) {
    ScriptedServer server;
    auto puts = server.On("PUT", "/b/").Once(Answer::Status(500)).Times(2, Answer::Status(503));
    auto any = server.On("", "/b/").Always(Answer::Status(204));
    RawClient client(server.Port());
    const auto statusOf = [&](const std::string& request) {
        EXPECT_TRUE(client.Send(request));
        return client.ReadHead().substr(9, 3);
    };
    EXPECT_EQ(statusOf(Get("/b/k")), "204");
    EXPECT_EQ(statusOf(Put("/b/k", "x")), "500");
    EXPECT_EQ(statusOf(Put("/b/k", "x")), "503");
    EXPECT_EQ(statusOf(Put("/b/k", "x")), "503");
    EXPECT_EQ(statusOf(Put("/b/k", "x")), "204");
    EXPECT_EQ(server.Unexpected(), 0);
    EXPECT_EQ(statusOf(Get("/c")), "501");
    EXPECT_EQ(server.Unexpected(), 1);
    EXPECT_EQ(puts.Matches(), 3);
    EXPECT_EQ(any.Matches(), 2);
    EXPECT_EQ(server.Connections(), 1);
}

TEST(ScriptedServer, AHandlerSeesTheCompleteRequest) {
    ScriptedServer server;
    server.On("PUT", "/").Call([](const RecordedRequest& request) {
        return Answer::Status(200).Header("X-Seen", request.target).Body(request.body + "!");
    });
    RawClient client(server.Port());
    const std::string request = Put("/echo", "body");
    ASSERT_TRUE(client.Send(request.substr(0, request.size() - 2)));
    ASSERT_TRUE(client.Send(request.substr(request.size() - 2)));
    EXPECT_EQ(client.ReadHead(), "HTTP/1.1 200 OK\r\nX-Seen: /echo\r\nContent-Length: 5\r\n\r\n");
    EXPECT_EQ(client.Read(5), "body!");
}

TEST(ScriptedServer, DecodesAChunkedRequest) {
    ScriptedServer server;
    server.Next(Answer::Status(200));
    RawClient client(server.Port());
    ASSERT_TRUE(
        client.Send("PUT /k HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n"
                    "3\r\nabc\r\n2;x=y\r\nde\r\n0\r\n\r\n"));
    client.ReadHead();
    ASSERT_EQ(server.Requests().size(), 1u);
    EXPECT_EQ(server.Requests()[0].body, "abcde");
}

TEST(ScriptedServer, AnswersPipelinedRequestsInOrder) {
    ScriptedServer server;
    server.Next(Answer::Status(200).Body("1"));
    server.Next(Answer::Status(200).Body("2").ConnectionClose());
    RawClient client(server.Port());
    ASSERT_TRUE(client.Send(Get("/a") + Get("/b")));
    EXPECT_EQ(client.ReadToEnd(),
              "HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\n1"
              "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 1\r\n\r\n2");
    EXPECT_EQ(client.Ended(), RawClient::End::closed);
}

TEST(ScriptedServer, AnswersToHeadKeepTheLengthAndDropTheBody) {
    ScriptedServer server;
    server.Next(Answer::Status(200).Body("hello"));
    server.Next(Answer::Status(204));
    RawClient client(server.Port());
    ASSERT_TRUE(
        client.Send("HEAD /k HTTP/1.1\r\n\r\nHEAD /k HTTP/1.1\r\nConnection: close\r\n\r\n"));
    EXPECT_EQ(client.ReadToEnd(),
              "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nHTTP/1.1 204 No Content\r\n\r\n");
}

TEST(ScriptedServer, SendsChunksRawBytesAndUnboundedBodies) {
    ScriptedServer server;
    server.Next(Answer::Status(200).Body("abcdefghijklm").Chunked(11));
    server.Next(Answer::Raw("HTTP/1.1 200 fine\nX\n\nzz").KeepAlive());
    server.Next(Answer::Status(200).Body("abc").ClaimLength("99"));
    server.Next(Answer::Status(200).Body("xyz").WithoutLength());
    RawClient client(server.Port());
    ASSERT_TRUE(client.Send(Get("/") + Get("/") + Get("/") + Get("/")));
    EXPECT_EQ(client.ReadToEnd(),
              "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
              "b\r\nabcdefghijk\r\n2\r\nlm\r\n0\r\n\r\n"
              "HTTP/1.1 200 fine\nX\n\nzz"
              "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\nabc"
              "HTTP/1.1 200 OK\r\n\r\nxyz");
    RawClient second(server.Port());
    server.Next(Answer::Status(200).Body("abc").ChunkedWithoutEnd(2));
    ASSERT_TRUE(second.Send(Get("/")));
    EXPECT_EQ(second.ReadToEnd(),
              "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nab\r\n1\r\nc\r\n");
}

TEST(ScriptedServer, SendsAnInterimAnswerBeforeTheBodyArrives) {
    ScriptedServer server;
    server.Next(Answer::Status(200).Body("hello").Interim(100).Interim(102));
    RawClient client(server.Port());
    const std::string request = Put("/k", "12345");
    ASSERT_TRUE(client.Send(request.substr(0, request.size() - 5)));
    EXPECT_EQ(client.ReadHead(), "HTTP/1.1 100 Continue\r\n\r\n");
    EXPECT_EQ(client.ReadHead(), "HTTP/1.1 102 Status\r\n\r\n");
    ASSERT_TRUE(client.Send("12345"));
    EXPECT_EQ(client.Read(43), kOkHello);
}

TEST(ScriptedServer, AnswersEarlyAndStillRecordsTheWholeBody) {
    ScriptedServer server;
    server.Next(Answer::Status(200).Body("hello").AfterRequestBytes(2));
    server.Next(Answer::Status(200).Body("hello"));
    RawClient client(server.Port());
    const std::string request = Put("/k", "12345");
    ASSERT_TRUE(client.Send(request.substr(0, request.size() - 3)));
    EXPECT_EQ(client.Read(43), kOkHello);
    EXPECT_FALSE(server.Requests()[0].complete);
    ASSERT_TRUE(client.Send("345" + Get("/next")));
    EXPECT_EQ(client.Read(43), kOkHello);
    EXPECT_EQ(server.Requests()[0].body, "12345");
    EXPECT_TRUE(server.Requests()[0].complete);
}

TEST(ScriptedServer, ClosesAtAByteOfTheAnswer) {
    ScriptedServer server;
    auto rule = server.On("GET", "/")
                    .Once(Answer::Status(200).Body("hello").Close(Place::BodyByte(2)))
                    .Once(Answer::Status(200).Body("hello").Close(Place::AnswerByte(9)))
                    .Once(Answer::Status(200).Body("hello").Close(Place::AnswerByte(0)))
                    .Once(Answer::Status(200).ConnectionClose().Close(Place::BodyByte(1)));
    const std::vector<std::string> expected{
        std::string(kOkHello).substr(0, 40), "HTTP/1.1 ", "",
        "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 0\r\n\r\n"};
    for (const std::string& text : expected) {
        RawClient client(server.Port());
        ASSERT_TRUE(client.Send(Get("/k")));
        EXPECT_EQ(client.ReadToEnd(), text);
        EXPECT_EQ(client.Ended(), RawClient::End::closed);
    }
    EXPECT_EQ(rule.Faults(), 3) << "the last answer has no byte 1 in its body";
    EXPECT_EQ(server.Faults(Fault::close), 3);
    EXPECT_EQ(server.Faults(Fault::reset), 0);
}

TEST(ScriptedServer, ResetsAtAByteOfTheAnswer) {
    ScriptedServer server;
    const Gate beforeReset;
    server.Next(Answer::Status(200)
                    .Body("hello")
                    .Wait(Place::BodyByte(2), beforeReset)
                    .Reset(Place::BodyByte(2)));
    RawClient client(server.Port());
    ASSERT_TRUE(client.Send(Get("/k")));
    EXPECT_EQ(client.Read(40), std::string(kOkHello).substr(0, 40));
    beforeReset.Open();
    EXPECT_EQ(client.Read(1), "");
    EXPECT_TRUE(SawReset(client));
    EXPECT_EQ(server.Faults(Fault::reset), 1);
}

TEST(ScriptedServer, ResetsAtAByteOfTheRequest) {
    ScriptedServer server;
    server.Next(Answer::Status(200).Reset(Place::RequestByte(3)));
    RawClient client(server.Port());
    ASSERT_TRUE(client.Send("PUT /k HTTP/1.1\r\nContent-Length: 100\r\n\r\nab"));
    ASSERT_TRUE(client.Send("c"));
    EXPECT_EQ(client.Read(1), "");
    EXPECT_TRUE(SawReset(client));
    EXPECT_EQ(server.Faults(Fault::reset), 1);
    ASSERT_EQ(server.Requests().size(), 1u);
    EXPECT_EQ(server.Requests()[0].body, "abc");
    EXPECT_FALSE(server.Requests()[0].complete);
}

TEST(ScriptedServer, ClosesAtAByteOfTheRequest) {
    ScriptedServer server;
    server.Next(Answer::Status(200).Close(Place::RequestByte(0)));
    RawClient client(server.Port());
    ASSERT_TRUE(client.Send("PUT /k HTTP/1.1\r\nContent-Length: 100\r\n\r\n"));
    EXPECT_EQ(client.Read(1), "");
    EXPECT_EQ(client.Ended(), RawClient::End::closed);
    EXPECT_EQ(server.Faults(Fault::close), 1);
}

TEST(ScriptedServer, AStallLastsUntilTheServerGoes) {
    auto server = std::make_unique<ScriptedServer>();
    server->On("GET", "/head").Once(Answer::Status(200).Stall(Place::AnswerByte(0)));
    server->On("GET", "/body").Once(Answer::Status(200).Body("hello").Stall(Place::BodyByte(1)));
    server->On("PUT", "/").Once(Answer::Status(200).Stall(Place::RequestByte(1)));
    RawClient head(server->Port());
    RawClient body(server->Port());
    RawClient request(server->Port());
    ASSERT_TRUE(head.Send(Get("/head")));
    ASSERT_TRUE(body.Send(Get("/body")));
    ASSERT_TRUE(request.Send("PUT /k HTTP/1.1\r\nContent-Length: 9\r\n\r\n1"));
    ASSERT_TRUE(server->WaitForFaults(Fault::stall, 3));
    EXPECT_EQ(body.Read(39), std::string(kOkHello).substr(0, 39));
    EXPECT_EQ(server->OpenConnections(), 3);
    server.reset();
    EXPECT_EQ(head.ReadToEnd(), "");
    EXPECT_EQ(body.ReadToEnd(), "");
    EXPECT_EQ(request.ReadToEnd(), "");
}

TEST(ScriptedServer, AGateHoldsAnExchangeWithoutHoldingOthers) {
    ScriptedServer server;
    const Gate gate;
    server.On("GET", "/slow")
        .Once(Answer::Status(200).Body("hello").Wait(Place::AnswerByte(0), gate));
    server.On("GET", "/quick").Once(Answer::Status(200).Body("hello"));
    RawClient slow(server.Port());
    RawClient quick(server.Port());
    ASSERT_TRUE(slow.Send(Get("/slow")));
    ASSERT_TRUE(gate.WaitUntilReached());
    ASSERT_TRUE(quick.Send(Get("/quick")));
    EXPECT_EQ(quick.Read(43), kOkHello);
    gate.Open();
    EXPECT_EQ(slow.Read(43), kOkHello);
}

TEST(ScriptedServer, ATrickleSendsOnePieceForEachPermit) {
    ScriptedServer server;
    const Gate gate;
    server.Next(Answer::Status(200).Body("hello").Trickle(2, gate));
    RawClient client(server.Port());
    ASSERT_TRUE(client.Send(Get("/k")));
    client.ReadHead();
    ASSERT_TRUE(gate.WaitUntilReached(1));
    EXPECT_EQ(gate.Reached(), 1);
    for (const char* piece : {"he", "ll", "o"}) {
        gate.Allow();
        EXPECT_EQ(client.Read(std::string(piece).size()), piece);
    }
    EXPECT_EQ(gate.Reached(), 3);
}

TEST(ScriptedServer, AGateOpenedAfterTheServerHasGoneDoesNothing) {
    const Gate gate;
    {
        ScriptedServer server;
        server.Next(Answer::Status(200).Wait(Place::AnswerByte(0), gate));
        RawClient client(server.Port());
        ASSERT_TRUE(client.Send(Get("/k")));
        ASSERT_TRUE(gate.WaitUntilReached());
    }
    gate.Open();
}

TEST(ScriptedServer, AGateMayOpenWhileTheServerGoes) {
    for (int round = 0; round < 50; ++round) {
        const Gate gate;
        auto server = std::make_unique<ScriptedServer>();
        server->Next(Answer::Status(200).Wait(Place::AnswerByte(0), gate));
        RawClient client(server->Port());
        ASSERT_TRUE(client.Send(Get("/k")));
        ASSERT_TRUE(gate.WaitUntilReached());
        std::thread opener([&] { gate.Open(); });
        server.reset();
        opener.join();
    }
}

TEST(ScriptedServer, RefusesWhatIsNotHttp) {
    ScriptedServer server;
    RawClient client(server.Port());
    ASSERT_TRUE(client.Send("hello\r\n\r\n"));
    EXPECT_EQ(client.ReadToEnd().substr(0, 12), "HTTP/1.1 400");
    EXPECT_EQ(server.Unexpected(), 1);
    ASSERT_EQ(server.Requests().size(), 1u);
    EXPECT_EQ(server.Requests()[0].head, "hello\r\n\r\n");
}

TEST(ScriptedServer, ClosesIdleConnectionsWhenTold) {
    ScriptedServer server;
    server.On("GET", "/").Always(Answer::Status(200).Body("hello"));
    RawClient client(server.Port());
    ASSERT_TRUE(client.Send(Get("/k")));
    EXPECT_EQ(client.Read(43), kOkHello);
    EXPECT_EQ(server.OpenConnections(), 1);
    server.CloseConnections();
    EXPECT_EQ(server.OpenConnections(), 0);
    EXPECT_EQ(client.ReadToEnd(), "");
    RawClient second(server.Port());
    ASSERT_TRUE(second.Send(Get("/k")));
    EXPECT_EQ(second.Read(43), kOkHello);
    EXPECT_EQ(server.Requests()[1].connection, 2);
}

TEST(ScriptedServer, ServesManyConnectionsAtOnce) {
    ScriptedServer server;
    server.On("PUT", "/").Call([](const RecordedRequest& request) {
        return Answer::Status(200).Body(std::to_string(request.body.size()));
    });
    const std::string body(300000, 'b');
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            RawClient client(server.Port());
            for (int k = 0; k < 5; ++k) {
                ASSERT_TRUE(client.Send(Put("/k", body)));
                client.ReadHead();
                EXPECT_EQ(client.Read(6), "300000");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(server.WaitForRequests(40));
    EXPECT_EQ(server.Connections(), 8);
}

}  // namespace
