#include <utility>

#include "tests/support/UsedSdk.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

class PutObject : public WireTest, public testing::WithParamInterface<Style> {};

INSTANTIATE_TEST_SUITE_P(Styles, PutObject, testing::Values(Style::path, Style::virtualHost),
                         [](const auto& info) {
                             return info.param == Style::path ? "Path" : "VirtualHost";
                         });

TEST_P(PutObject, SendsExactlyThisRequest) {
    m_server.Next(Answer::Status(200).Header("ETag", "\"1\""));
    const auto store = MakeStore(In(GetParam()));
    EXPECT_EQ(Write(*store, "folder/file.bin", "twelve bytes"), 0);

    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.version, "HTTP/1.1");
    if (GetParam() == Style::path) {
        EXPECT_EQ(request.target, "/the-bucket/folder/file.bin");
        EXPECT_EQ(request.Value("host"), kEndpoint);
    } else {
        EXPECT_EQ(request.target, "/folder/file.bin");
        EXPECT_EQ(request.Value("host"), kVirtualHost);
    }
    EXPECT_EQ(request.body, "twelve bytes");
    EXPECT_EQ(request.Value("content-length"), "12");
    EXPECT_EQ(request.Value("content-type"), "binary/octet-stream");
    EXPECT_EQ(request.Value("x-amz-content-sha256"), Sha256Of("twelve bytes"));
    EXPECT_TRUE(IsAmzDate(request.Value("x-amz-date"))) << request.Value("x-amz-date");
    EXPECT_EQ(request.Value("content-md5"), Md5OfUploads("twelve bytes"));
    EXPECT_EQ(SignedHeadersOf(request),
              "content-length;content-type;host;x-amz-content-sha256;x-amz-date");
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_EQ(UnknownHeaders(request), "");
    EXPECT_EQ(store->GetRequestCount(), 1u);
    EXPECT_TRUE(Lines().empty()) << "a success writes no line";
}

TEST_P(PutObject, AnEmptyObjectHasALengthOfZero) {
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore(In(GetParam()));
    EXPECT_EQ(Write(*store, "empty", ""), 0);
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.body, "");
    EXPECT_EQ(request.Value("content-length"), "0");
    EXPECT_EQ(request.Header("transfer-encoding"), nullptr);
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_TRUE(Lines().empty());
}

TEST_P(PutObject, SendsEveryByteValueAndLargeBodiesUnchanged) {
    m_server.On("PUT", "/").Always(Answer::Status(200));
    const auto store = MakeStore(In(GetParam()));
    std::string every;
    for (int i = 0; i < 256; ++i) {
        every += static_cast<char>(i);
    }
    std::string large;
    while (large.size() < 5 * 1024 * 1024 + 1) {
        large += every + std::to_string(large.size());
    }
    EXPECT_EQ(Write(*store, "every", every), 0);
    EXPECT_EQ(Write(*store, "large", large), 0);
    const auto requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_TRUE(requests[0].body == every);
    EXPECT_TRUE(requests[1].body == large);
    EXPECT_EQ(requests[1].Value("content-length"), std::to_string(large.size()));
    EXPECT_EQ(requests[1].Header("expect"), nullptr);
    EXPECT_EQ(requests[1].Header("transfer-encoding"), nullptr);
    EXPECT_EQ(SignatureProblem(requests[1], kKeyId, kSecret, kRegion), "");
}

TEST_P(PutObject, RequestsOneAfterTheOtherShareAConnection) {
    m_server.On("PUT", "/").Always(Answer::Status(200));
    const auto store = MakeStore(In(GetParam()));
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(Write(*store, "k", "v"), 0);
    }
    EXPECT_EQ(m_server.Connections(), 1);
}

using PutObjectAnswers = WireTest;

TEST_F(PutObjectAnswers, EveryAttemptSendsTheBytesOfTheCallWhateverBecomesOfTheCallersBuffer) {
    std::string bytes = "as they were";
    bool first = true;
    m_server.On("PUT", "/").Call([&](const RecordedRequest&) {
        bytes.assign(bytes.size(), '?');
        return Answer::Status(std::exchange(first, false) ? 500 : 200);
    });
    const auto store = MakeStore();
    EXPECT_EQ(Write(*store, "k", bytes), 0);
    const auto requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].body, "as they were");
    EXPECT_EQ(requests[1].body, "as they were");
}

TEST_F(PutObjectAnswers, ARefusalGivesItsStatusAndOneLine) {
    m_server.Next(Answer::S3Error(404, "NoSuchBucket", "The bucket does not exist"));
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    ExpectWriteFailed(Write(*store, "a@b", "v"), Aws::S3::S3Errors::NO_SUCH_BUCKET, "a@b",
                      testing::Eq("The bucket does not exist"));
    EXPECT_EQ(Write(*store, "a@b", "v"), 0);
    EXPECT_TRUE(Waits().empty());
}

TEST_F(PutObjectAnswers, AnEarlyRefusalOfALargeBodyIsReportedAsWhatItIs) {
    m_server.Next(Answer::S3Error(403, "AccessDenied", "Access Denied").AfterRequestBytes(1000));
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    ExpectWriteFailed(Write(*store, "k", std::string(1024 * 1024, 'x')),
                      Aws::S3::S3Errors::ACCESS_DENIED, "k", testing::Eq("Access Denied"));
    EXPECT_EQ(Write(*store, "k", "v"), 0);
}

TEST_F(PutObjectAnswers, ASuccessBeforeTheBodyIsSentIsTriedAgainAndNeverBelieved) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK believes it";
    }
    const std::string body(16 * 1024 * 1024, 'x');
    const Answer early = Answer::Status(200).Header("ETag", "\"1\"").AfterRequestBytes(1000);
    for (Answer answer : {early, Answer(early).ConnectionClose()}) {
        m_log.Clear();
        answer.Close(Place::RequestByte(100'000));
        m_server.Next(answer);
        m_server.Next(Answer::Status(200));
        const auto store = MakeStore();
        EXPECT_EQ(Write(*store, "k", body), 0);
        EXPECT_TRUE(m_server.Requests().back().body == body);
        for (int attempt = 0; attempt <= 10; ++attempt) {
            m_server.Next(answer);
        }
        ExpectWriteFailed(Write(*store, "k", body), Aws::S3::S3Errors::NETWORK_CONNECTION, "k",
                          testing::Not(testing::IsEmpty()));
    }
}

TEST_F(PutObjectAnswers, ASuccessWithAPageForPeopleIsAFailure) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK does not look into it";
    }
    for (const char* const page :
         {"<!DOCTYPE html><html><body>Log in first<br></body></html>",
          "<html><body>Log in first</body></html>", "<HTML><BODY>Log in first</BODY></HTML>"}) {
        m_log.Clear();
        m_server.Next(Answer::Status(200).Header("Content-Type", "text/html").Body(page));
        m_server.Next(Answer::Status(200));
        const auto store = MakeStore();
        ExpectWriteFailed(Write(*store, "k", "v"), Aws::S3::S3Errors::UNKNOWN, "k",
                          testing::Not(testing::IsEmpty()));
        EXPECT_EQ(Write(*store, "k", "v"), 0);
    }
}

TEST_F(PutObjectAnswers, AnErrorDocumentUnderStatus200IsAFailure) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK does not look into it";
    }
    m_server.Next(Answer::S3Error(200, "NoSuchBucket", "gone"));
    const auto store = MakeStore();
    ExpectWriteFailed(Write(*store, "k", "v"), Aws::S3::S3Errors::NO_SUCH_BUCKET, "k",
                      testing::Eq("gone"));
}

}  // namespace
}  // namespace Mirqos::Test
