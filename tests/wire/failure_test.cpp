#include "tests/support/UsedSdk.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using Aws::S3::S3Errors;
using std::chrono::milliseconds;
using testing::Eq;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::string Repeat(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

/// Every failure ends in a status and its log lines, leaves the caller's record alone, and leaves a
/// store that works.
class Failure : public WireTest {
protected:
    /// The message of an error whose document names none.
    static testing::Matcher<std::string> Nameless(int httpStatus) {
        if (!kBundledSdk) {
            return testing::AnyOf(Eq(""), Eq("No response body."));
        }
        return HasSubstr("Response code: " + std::to_string(httpStatus));
    }

    /// Of an error whose document is longer than what a read keeps: 1.11 fails the read for that.
    static constexpr S3Errors kErrorOfLongDocument =
        kSdk1_11 ? S3Errors::INTERNAL_FAILURE : S3Errors::RESOURCE_NOT_FOUND;
    static testing::Matcher<std::string> MessageOfLongDocument() {
        return kSdk1_11 ? HasSubstr("Failed to flush response stream") : Nameless(404);
    }

    /// Eleven reads answered by `answer`, as all attempts of one call are, then a good one.
    void ExpectEveryAttemptFails(const Answer& answer) {
        m_server.On("GET", "/").Times(11, answer).Always(Answer::Status(206).Body("again"));
        const auto store = MakeStore();
        ExpectReadFailed(Read(*store, "k"), S3Errors::NETWORK_CONNECTION, "k", Not(IsEmpty()));
        EXPECT_EQ(Waits(), AllWaits());
        EXPECT_EQ(Read(*store, "k").Delivered(), "again");
    }

    /// One read answered by `answer`, which is final, then a good one.
    void ExpectFinal(const Answer& answer, S3Errors error,
                     const testing::Matcher<std::string>& message,
                     const std::string& exceptionName = "") {
        m_server.On("GET", "/").Once(answer).Always(Answer::Status(206).Body("again"));
        const auto store = MakeStore();
        ExpectReadFailed(Read(*store, "k"), error, "k", message, exceptionName);
        EXPECT_TRUE(Waits().empty());
        EXPECT_EQ(Read(*store, "k").Delivered(), "again");
    }
};

// A limit short enough for eleven attempts, and far above what loopback needs.
constexpr milliseconds kStall{150};

TEST_F(Failure, AServerThatStallsBeforeItsAnswer) {
    LimitStalls(kStall);
    ExpectEveryAttemptFails(Answer::Status(206).Body("hello").Stall(Place::AnswerByte(0)));
    EXPECT_TRUE(m_server.WaitForFaults(Fault::stall, 11));
}

TEST_F(Failure, AServerThatStallsInItsHead) {
    LimitStalls(kStall);
    ExpectEveryAttemptFails(Answer::Status(206).Body("hello").Stall(Place::AnswerByte(20)));
    EXPECT_TRUE(m_server.WaitForFaults(Fault::stall, 11));
}

TEST_F(Failure, AServerThatStallsInItsBody) {
    LimitStalls(kStall);
    ExpectEveryAttemptFails(Answer::Status(206).Body("hello").Stall(Place::BodyByte(3)));
    EXPECT_TRUE(m_server.WaitForFaults(Fault::stall, 11));
}

TEST_F(Failure, AServerThatStallsAfterAnInterimAnswer) {
    LimitStalls(kStall);
    ExpectEveryAttemptFails(Answer::Status(206).Interim(100).Stall(Place::AnswerByte(0)));
    EXPECT_TRUE(m_server.WaitForFaults(Fault::stall, 11));
}

TEST_F(Failure, AServerThatTakesNoMoreOfTheRequest) {
    LimitStalls(kStall);
    ScriptedServer::Options options;
    options.receiveBuffer = 4096;
    ScriptedServer narrow(options);
    ResolveTo("127.0.0.1", narrow.Port());
    narrow.On("PUT", "/")
        .Times(11, Answer::Status(200).Stall(Place::RequestByte(1000)))
        .Always(Answer::Status(200));
    const auto store = MakeStore();
    ExpectWriteFailed(Write(*store, "k", std::string(16 * 1024 * 1024, 'x')),
                      S3Errors::NETWORK_CONNECTION, "k", Not(IsEmpty()));
    EXPECT_EQ(Waits(), AllWaits());
    EXPECT_TRUE(narrow.WaitForFaults(Fault::stall, 11));
    EXPECT_EQ(Write(*store, "k", "v"), 0);
}

TEST_F(Failure, ASlowServerThatNeverStallsForLongIsNoFailure) {
    LimitStalls(std::chrono::seconds(20));
    const Gate gate;
    gate.Open();
    m_server.Next(Answer::Status(206).Body(std::string(100, 's')).Trickle(1, gate));
    const auto store = MakeStore();
    EXPECT_EQ(Read(*store, "k").Delivered(), std::string(100, 's'));
}

TEST_F(Failure, AServerThatResetsHalfWayThroughTheBody) {
    ExpectEveryAttemptFails(
        Answer::Status(206).Body(std::string(100, 'x')).Reset(Place::BodyByte(50)));
    EXPECT_EQ(m_server.Faults(Fault::reset), 11);
}

TEST_F(Failure, ABodyShorterThanItsContentLength) {
    ExpectEveryAttemptFails(
        Answer::Status(206).Body(std::string(100, 'x')).Close(Place::BodyByte(50)));
    EXPECT_EQ(m_server.Faults(Fault::close), 11);
}

TEST_F(Failure, AChunkedBodyWithoutItsEnd) {
    ExpectEveryAttemptFails(Answer::Status(206).Body("in chunks").ChunkedWithoutEnd(4));
}

TEST_F(Failure, AnAnswerThatEndsInItsHead) {
    ExpectEveryAttemptFails(Answer::Status(206).Body("hello").Close(Place::AnswerByte(20)));
    EXPECT_EQ(m_server.Faults(Fault::close), 11);
}

TEST_F(Failure, AnAnswerThatIsNotHttp) {
    ExpectEveryAttemptFails(Answer::Raw("220 mail.test ESMTP ready\r\n\r\n"));
}

TEST_F(Failure, AHeadWithoutEnd) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK takes a longer head";
    }
    ExpectEveryAttemptFails(
        Answer::Raw("HTTP/1.1 200 OK\r\n" + Repeat("X-Filler: 0123456789abcdef\r\n", 10000)));
}

TEST_F(Failure, AnAbsurdContentLengthIsNotBelieved) {
    ExpectEveryAttemptFails(Answer::Status(200)
                                .Body("hello")
                                .ClaimLength("1000000000000000000")
                                .Close(Place::BodyByte(5)));
}

TEST_F(Failure, AnAbsurdContentLengthOfAnErrorIsNotBelieved) {
    ExpectEveryAttemptFails(Answer::S3Error(404, "NoSuchKey", "gone")
                                .ClaimLength("1000000000000000000")
                                .Close(Place::BodyByte(20)));
}

TEST_F(Failure, AContentLengthThatIsNoNumber) {
    m_server.On("GET", "/").Times(11, Answer::Status(206).Body("hello").ClaimLength("many"));
    const auto store = MakeStore();
    const ReadResult read = Read(*store, "k");
    EXPECT_EQ(read.status, StatusOf(S3Errors::NETWORK_CONNECTION));
    EXPECT_TRUE(read.Untouched());
}

TEST_F(Failure, AHugeBodyDeliversWhatWasAskedForAndNoMore) {
    if (kSdk1_7) {
        GTEST_SKIP() << "1.7 receives every body to its end";
    }
    m_server.Next(Answer::Status(200)
                      .Body(std::string(4 * 1024 * 1024, 'h'))
                      .ClaimLength("1000000000000000000")
                      .Stall(Place::BodyByte(4 * 1024 * 1024)));
    m_server.Next(Answer::Status(206).Body("again"));
    const auto store = MakeStore();
    const ReadResult read = Read(*store, "k", 0, 100);
    if (kSdk1_11) {  // which fails a read of so much more than was asked for
        EXPECT_EQ(read.status, StatusOf(S3Errors::INTERNAL_FAILURE));
        EXPECT_TRUE(read.Untouched());
    } else {
        EXPECT_EQ(read.status, 0);
        EXPECT_EQ(read.buffer, std::string(100, 'h') + std::string(16, ReadResult::kUntouchedByte));
        EXPECT_EQ(read.size, 100u);
    }
    EXPECT_EQ(Read(*store, "k").Delivered(), "again");
}

TEST_F(Failure, AnUnknownCodeIsNamedInTheMessage) {
    ExpectFinal(Answer::S3Error(409, "NobodyKnowsThis", "the text"), S3Errors::UNKNOWN,
                Eq("Unable to parse ExceptionName: NobodyKnowsThis Message: the text"),
                "NobodyKnowsThis");
}

TEST_F(Failure, AnErrorDocumentThatIsMalformed) {
    ExpectFinal(Answer::Status(403).Body("<Error><Code>AccessDenied</Code><Message>"),
                S3Errors::ACCESS_DENIED, Nameless(403));
}

TEST_F(Failure, AnErrorDocumentThatIsAPageForPeople) {
    ExpectFinal(Answer::Status(404).Body("<html><body><p>404<br></body></html>"),
                S3Errors::RESOURCE_NOT_FOUND, Nameless(404));
}

TEST_F(Failure, AnErrorWithoutABody) {
    ExpectFinal(Answer::Status(403), S3Errors::ACCESS_DENIED, Nameless(403));
}

TEST_F(Failure, AnErrorDocumentThatIsEmptyInside) {
    ExpectFinal(Answer::Status(404).Body("<Error/>"), S3Errors::RESOURCE_NOT_FOUND, Nameless(404));
}

TEST_F(Failure, AnErrorDocumentNestedWithoutEnd) {
    ExpectFinal(Answer::Status(404).Body(Repeat("<a>", 100000) + Repeat("</a>", 100000)),
                kErrorOfLongDocument, MessageOfLongDocument());
}

TEST_F(Failure, AnErrorDocumentThatExpandsEntities) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK takes the name of an entity for a code";
    }
    ExpectFinal(
        Answer::Status(404).Body("<!DOCTYPE x [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b "
                                 "\"&a;&a;&a;&a;&a;&a;&a;&a;\">]><Error><Code>&b;</Code></Error>"),
        S3Errors::RESOURCE_NOT_FOUND, Nameless(404));
}

TEST_F(Failure, AnErrorDocumentOfManyMegabytes) {
    ExpectFinal(Answer::Status(404).Body("<Error><Code>NoSuchKey</Code><Message>" +
                                         std::string(20 * 1024 * 1024, 'm')),
                kErrorOfLongDocument, MessageOfLongDocument());
}

TEST_F(Failure, AMessageLongerThanALogLineIsCut) {
    m_server.Next(Answer::S3Error(404, "NoSuchKey", std::string(5000, 'm')));
    const auto store = MakeStore();
    EXPECT_EQ(Write(*store, "k", "v"), StatusOf(S3Errors::NO_SUCH_KEY));
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].size(), 1023u);
}

TEST_F(Failure, ARedirectIsAnErrorAndIsNotFollowed) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK follows it by itself";
    }
    ExpectFinal(Answer::S3Error(307, "TemporaryRedirect", "elsewhere")
                    .Header("Location", "http://127.0.0.1:1/elsewhere"),
                S3Errors::UNKNOWN,
                Eq("Unable to parse ExceptionName: TemporaryRedirect Message: elsewhere"),
                "TemporaryRedirect");
}

TEST_F(Failure, AnAuthenticationDialogueIsAnErrorAndIsNotHeld) {
    ExpectFinal(Answer::Status(401).Header("WWW-Authenticate", "Basic realm=\"x\""),
                S3Errors::ACCESS_DENIED, Nameless(401));
    EXPECT_EQ(m_server.Requests().size(), 2u);
}

TEST_F(Failure, ACookieIsNotKept) {
    m_server.Next(Answer::Status(200).Header("Set-Cookie", "a=b; Path=/"));
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_EQ(Write(*store, "k", "v"), 0);
    EXPECT_EQ(Write(*store, "k", "v"), 0);
    EXPECT_EQ(UnknownHeaders(m_server.Requests().back()), "");
}

TEST_F(Failure, APortThatRefuses) {
    m_server.On("", "/").Always(Answer::Status(200));
    std::uint16_t refused = 0;
    {
        ScriptedServer gone;
        refused = gone.Port();
    }
    ResolveTo("127.0.0.1", refused);
    const auto store = MakeStore();
    ExpectWriteFailed(Write(*store, "k", "v"), S3Errors::NETWORK_CONNECTION, "k", Not(IsEmpty()));
    EXPECT_EQ(Waits(), AllWaits());
    m_log.Clear();
    ExpectReadFailed(Read(*store, "k"), S3Errors::NETWORK_CONNECTION, "k", Not(IsEmpty()));
    EXPECT_FALSE(Head(*store));
    EXPECT_EQ(Create(*store, kBucket, nullptr), StatusOf(S3Errors::NETWORK_CONNECTION));
    EXPECT_EQ(Delete(*store, "k"), StatusOf(S3Errors::NETWORK_CONNECTION));
    EXPECT_TRUE(m_server.Requests().empty());
    ResolveTo("127.0.0.1", m_server.Port());
    EXPECT_EQ(Write(*store, "k", "v"), 0);
}

TEST_F(Failure, AHostThatNobodyKnows) {
    m_server.On("", "/").Always(Answer::Status(200));
    ResolveTo("no-such-host.invalid", 80);
    const auto store = MakeStore();
    ExpectWriteFailed(Write(*store, "k", "v"), S3Errors::NETWORK_CONNECTION, "k", Not(IsEmpty()));
    m_log.Clear();
    ExpectReadFailed(Read(*store, "k"), S3Errors::NETWORK_CONNECTION, "k", Not(IsEmpty()));
    ResolveTo("127.0.0.1", m_server.Port());
    EXPECT_EQ(Write(*store, "k", "v"), 0);
}

TEST_F(Failure, AnEndpointThatIsNone) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK sends a request whatever the endpoint is";
    }
    for (const char* const endpoint : {"host:0", "host:99999", "host:x", ":80"}) {
        m_log.Clear();
        Setup setup;
        setup.endpoint = endpoint;
        const auto store = MakeStore(setup);
        ExpectWriteFailed(Write(*store, "k", "v"), S3Errors::INVALID_PARAMETER_VALUE, "k",
                          HasSubstr("endpoint"));
    }
    EXPECT_TRUE(m_server.Requests().empty());
}

}  // namespace
}  // namespace Mirqos::Test
