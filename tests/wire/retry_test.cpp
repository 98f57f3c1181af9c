#include "sdk/core/Seam.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using Aws::S3::S3Errors;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;
using testing::Not;

class Retry : public WireTest {
protected:
    std::string Body() const {
        std::string body;
        while (body.size() < 1024 * 1024) {
            body += std::to_string(body.size()) + ' ';
        }
        return body;
    }

    void ExpectElevenWholeAttempts(const std::string& body) {
        const auto requests = m_server.Requests();
        ASSERT_EQ(requests.size(), 11u);
        for (const RecordedRequest& request : requests) {
            EXPECT_TRUE(request.complete);
            EXPECT_TRUE(request.body == body);
            EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
        }
        EXPECT_EQ(Waits(), AllWaits());
    }
};

TEST_F(Retry, TenFailuresThenASuccessAreASuccess) {
    m_server.On("PUT", "/")
        .Times(10, Answer::S3Error(500, "InternalError", "We encountered an internal error."))
        .Once(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_EQ(Write(*store, "k", Body()), 0);
    ExpectElevenWholeAttempts(Body());
    EXPECT_TRUE(Lines().empty()) << "attempts are no business of the log";
    EXPECT_EQ(store->GetRequestCount(), 1u) << "attempts are not counted";
}

TEST_F(Retry, ElevenFailuresAreAFailureAndTheNextCallWorks) {
    auto failures =
        m_server.On("PUT", "/")
            .Times(11, Answer::S3Error(500, "InternalError", "We encountered an internal error."));
    m_server.On("PUT", "/").Always(Answer::Status(200));
    const auto store = MakeStore();
    ExpectWriteFailed(Write(*store, "k", Body()), S3Errors::INTERNAL_FAILURE, "k",
                      Eq("We encountered an internal error."));
    EXPECT_EQ(failures.Matches(), 11);
    ExpectElevenWholeAttempts(Body());
    EXPECT_EQ(Write(*store, "k", "v"), 0);
    EXPECT_EQ(Waits().size(), 10u);
}

TEST_F(Retry, AServiceThatAsksForLessIsAskedAgain) {
    m_server.On("PUT", "/")
        .Once(Answer::S3Error(503, "SlowDown", "Please reduce your request rate."))
        .Once(Answer::S3Error(503, "ServiceUnavailable", "Come back"))
        .Once(Answer::Status(503))
        .Once(Answer::Status(429))
        .Once(Answer::Status(502).Body("<html><body>Bad Gateway</body></html>"))
        .Once(Answer::S3Error(400, "RequestTimeout", "Your socket was idle"))
        .Once(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_EQ(Write(*store, "k", "v"), 0);
    EXPECT_THAT(Waits(), ElementsAre(milliseconds(0), milliseconds(50), milliseconds(100),
                                     milliseconds(200), milliseconds(400), milliseconds(800)));
}

TEST_F(Retry, TheLastErrorIsTheOneReported) {
    m_server.On("PUT", "/")
        .Times(10, Answer::S3Error(500, "InternalError", "first"))
        .Once(Answer::S3Error(503, "SlowDown", "last"));
    const auto store = MakeStore();
    ExpectWriteFailed(Write(*store, "k", "v"), S3Errors::SLOW_DOWN, "k", Eq("last"));
}

TEST_F(Retry, AServiceThatIsUnavailableThroughoutIsReportedSo) {
    m_server.On("GET", "/").Always(Answer::S3Error(503, "ServiceUnavailable", "Come back"));
    const auto store = MakeStore();
    ExpectReadFailed(Read(*store, "k"), S3Errors::SERVICE_UNAVAILABLE, "k", Eq("Come back"),
                     "ServiceUnavailable");
    EXPECT_EQ(Waits(), AllWaits());
}

TEST_F(Retry, WhatAnotherAttemptCannotMendIsNotTriedAgain) {
    const auto store = MakeStore();
    struct Refusal {
        int httpStatus;
        const char* code;
        S3Errors error;
    };
    for (const Refusal& refusal :
         {Refusal{400, "InvalidArgument", S3Errors::UNKNOWN},
          Refusal{403, "AccessDenied", S3Errors::ACCESS_DENIED},
          Refusal{403, "SignatureDoesNotMatch", S3Errors::SIGNATURE_DOES_NOT_MATCH},
          Refusal{403, "InvalidAccessKeyId", S3Errors::INVALID_ACCESS_KEY_ID},
          Refusal{404, "NoSuchKey", S3Errors::NO_SUCH_KEY},
          Refusal{404, "NoSuchBucket", S3Errors::NO_SUCH_BUCKET},
          Refusal{409, "BucketAlreadyOwnedByYou", S3Errors::BUCKET_ALREADY_OWNED_BY_YOU},
          Refusal{501, "NotImplemented", S3Errors::UNKNOWN}}) {
        m_server.Next(Answer::S3Error(refusal.httpStatus, refusal.code, "no"));
        EXPECT_EQ(Read(*store, "k").status, StatusOf(refusal.error)) << refusal.code;
    }
    EXPECT_EQ(m_server.Requests().size(), 8u);
    EXPECT_TRUE(Waits().empty());
}

TEST_F(Retry, AConnectionResetInTheAnswerIsTriedAgain) {
    m_server.On("PUT", "/")
        .Once(Answer::Status(200).Reset(Place::AnswerByte(0)))
        .Once(Answer::Status(200).Body("12345").Reset(Place::AnswerByte(7)))
        .Once(Answer::Status(200).Close(Place::AnswerByte(12)))
        .Once(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_EQ(Write(*store, "k", Body()), 0);
    EXPECT_EQ(m_server.Faults(Fault::reset), 2);
    EXPECT_EQ(m_server.Faults(Fault::close), 1);
    for (const RecordedRequest& request : m_server.Requests()) {
        EXPECT_TRUE(request.body == Body());
        EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    }
    EXPECT_TRUE(Lines().empty());
}

TEST_F(Retry, AConnectionLostHalfWayThroughTheRequestSendsTheBodyAgainWhole) {
    const std::string body = Body();
    m_server.On("PUT", "/")
        .Once(Answer::Status(200).Reset(Place::RequestByte(body.size() / 2)))
        .Once(Answer::Status(200).Reset(Place::RequestByte(0)))
        .Once(Answer::Status(200).Close(Place::RequestByte(1000)))
        .Once(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_EQ(Write(*store, "k", body), 0);
    EXPECT_EQ(m_server.Faults(Fault::reset), 2);
    EXPECT_EQ(m_server.Faults(Fault::close), 1);
    const RecordedRequest last = m_server.Requests().back();
    EXPECT_TRUE(last.complete);
    EXPECT_TRUE(last.body == body);
    EXPECT_EQ(SignatureProblem(last, kKeyId, kSecret, kRegion), "");
}

TEST_F(Retry, AnIdleConnectionThatTheServerClosedIsReplacedUnnoticed) {
    m_server.On("PUT", "/").Always(Answer::Status(200));
    const auto store = MakeStore();
    for (int round = 1; round <= 3; ++round) {
        EXPECT_EQ(Write(*store, "k", Body()), 0);
        EXPECT_EQ(m_server.Connections(), round);
        m_server.CloseConnections();
    }
    EXPECT_TRUE(Waits().empty());
}

TEST_F(Retry, EveryAttemptIsSignedForItsOwnTime) {
    int second = 0;
    TheSeam().now = [&second] {
        return std::chrono::system_clock::time_point(std::chrono::seconds(1700000000 + second++));
    };
    m_server.On("PUT", "/").Times(2, Answer::Status(500)).Always(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_EQ(Write(*store, "k", "v"), 0);
    const auto requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_LT(requests[0].Value("x-amz-date"), requests[1].Value("x-amz-date"));
    EXPECT_LT(requests[1].Value("x-amz-date"), requests[2].Value("x-amz-date"));
    for (const RecordedRequest& request : requests) {
        EXPECT_EQ(request.Value("x-amz-date").substr(0, 11), "20231114T22");
        EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    }
}

TEST_F(Retry, AClockThatIsWrongIsCorrectedByTheServicesDate) {
    TheSeam().now = [] { return std::chrono::system_clock::from_time_t(1700000000); };
    m_server.Next(Answer::S3Error(403, "RequestTimeTooSkewed", "The difference is too large.")
                      .Header("Date", "Wed, 15 Nov 2023 01:13:20 GMT"));
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_EQ(Write(*store, "k", "v"), 0);
    const auto requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].Value("x-amz-date"), "20231114T221320Z");
    EXPECT_EQ(requests[1].Value("x-amz-date"), "20231115T011320Z");
    EXPECT_EQ(SignatureProblem(requests[1], kKeyId, kSecret, kRegion), "");
}

TEST_F(Retry, AClockThatIsWrongHidesNoBucketFromAHead) {
    TheSeam().now = [] { return std::chrono::system_clock::from_time_t(1700000000); };
    m_server.Next(Answer::Status(403).Header("Date", "Wed, 15 Nov 2023 01:13:20 GMT"));
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_TRUE(Head(*store));
    const auto requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].Value("x-amz-date"), "20231114T221320Z");
    EXPECT_EQ(requests[1].Value("x-amz-date"), "20231115T011320Z");
}

TEST_F(Retry, AHeadRefusedWithTheRightTimeIsRefused) {
    TheSeam().now = [] { return std::chrono::system_clock::from_time_t(1700000000); };
    for (const char* const date :
         {"Tue, 14 Nov 2023 22:28:20 GMT", "Tue, 14 Nov 2023 21:58:20 GMT", "no date"}) {
        m_server.Next(Answer::Status(403).Header("Date", date));
        const auto store = MakeStore();
        EXPECT_FALSE(Head(*store));
    }
    // an installed SDK already takes a quarter of an hour for another time
    EXPECT_EQ(m_server.Requests().size(), kBundledSdk ? 3u : 5u);
    EXPECT_TRUE(Waits().empty());
}

TEST_F(Retry, AHeadRefusedAlsoWithTheServicesTimeIsTriedNoMore) {
    TheSeam().now = [] { return std::chrono::system_clock::from_time_t(1700000000); };
    m_server.On("HEAD", "/")
        .Always(Answer::Status(403).Header("Date", "Wed, 15 Nov 2023 01:13:20 GMT"));
    const auto store = MakeStore();
    EXPECT_FALSE(Head(*store));
    EXPECT_EQ(m_server.Requests().size(), 2u);
}

}  // namespace
}  // namespace Mirqos::Test
