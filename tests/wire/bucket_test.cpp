#include "tests/support/UsedSdk.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using testing::ElementsAre;

class Bucket : public WireTest, public testing::WithParamInterface<Style> {
protected:
    void ExpectAddressed(const RecordedRequest& request) {
        if (GetParam() == Style::path) {
            EXPECT_EQ(request.target, "/the-bucket");
            EXPECT_EQ(request.Value("host"), kEndpoint);
        } else if (!kBundledSdk && request.method == "PUT" && request.target != "/") {
            // 1.7 creates by path
            EXPECT_EQ(request.target, "/the-bucket");
            EXPECT_EQ(request.Value("host"), "s3.eu-central-1.amazonaws.com");
        } else {
            EXPECT_EQ(request.target, "/");
            EXPECT_EQ(request.Value("host"), kVirtualHost);
        }
        EXPECT_TRUE(IsAmzDate(request.Value("x-amz-date"))) << request.Value("x-amz-date");
        EXPECT_EQ(request.Value("x-amz-content-sha256"), Sha256Of(request.body));
        EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
        EXPECT_EQ(UnknownHeaders(request), "");
    }
};

INSTANTIATE_TEST_SUITE_P(Styles, Bucket, testing::Values(Style::path, Style::virtualHost),
                         [](const auto& info) {
                             return info.param == Style::path ? "Path" : "VirtualHost";
                         });

TEST_P(Bucket, IsCreatedWithoutABodyWhenNoLocationIsGiven) {
    m_server.Next(Answer::Status(200).Header("Location", "/the-bucket"));
    const auto store = MakeStore(In(GetParam()));
    EXPECT_EQ(Create(*store, kBucket, nullptr), 0);
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "PUT");
    ExpectAddressed(request);
    EXPECT_EQ(request.body, "");
    EXPECT_EQ(request.Header("content-type") == nullptr, kBundledSdk);
    EXPECT_EQ(request.Value("content-length"), "0") << "a PUT without a length may be refused";
    EXPECT_THAT(Lines(), ElementsAre("Create bucket:[the-bucket] successful!"));
    EXPECT_EQ(store->GetRequestCount(), 0u) << "it is not counted";
}

TEST_P(Bucket, IsCreatedAtALocation) {
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore(In(GetParam()));
    EXPECT_EQ(Create(*store, kBucket, "eu-west-1"), 0);
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "PUT");
    ExpectAddressed(request);
    EXPECT_EQ(XmlOf(request),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
              "<CreateBucketConfiguration xmlns=\"http://s3.amazonaws.com/doc/2006-03-01/\">"
              "<LocationConstraint>eu-west-1</LocationConstraint></CreateBucketConfiguration>");
    EXPECT_EQ(request.Value("content-type"), "application/xml");
    EXPECT_EQ(request.Value("content-length"), std::to_string(request.body.size()));
    EXPECT_EQ(SignedHeadersOf(request),
              "content-length;content-type;host;x-amz-content-sha256;x-amz-date");
}

TEST_P(Bucket, IsAskedForByHead) {
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore(In(GetParam()));
    EXPECT_TRUE(Head(*store));
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "HEAD");
    ExpectAddressed(request);
    EXPECT_EQ(request.body, "");
    EXPECT_EQ(SignedHeadersOf(request), "host;x-amz-content-sha256;x-amz-date");
    EXPECT_THAT(Lines(), ElementsAre("AwsS3Store::HeadBucket the bucket exists[the-bucket]!"));
    EXPECT_EQ(store->GetRequestCount(), 1u);
}

using BucketName = WireTest;

TEST_F(BucketName, WithoutABucketNothingIsSentNorLogged) {
    const auto store = MakeStore();
    EXPECT_EQ(Create(*store, nullptr, "eu-west-1"), -1);
    EXPECT_TRUE(m_server.Requests().empty());
    EXPECT_TRUE(Lines().empty());
}

TEST_F(BucketName, ANameThatNoHostCanHaveGoesIntoThePath) {
    m_server.On("HEAD", "/").Always(Answer::Status(200));
    const auto store = MakeStore(In(Style::virtualHost));
    std::vector<std::string> names{"Upper_Case", "under_score", "end-", "192.168.5.4"};
    if (kBundledSdk) {
        names.emplace_back("ab");  // a host can, but no bucket is called so
    }
    for (const std::string& name : names) {
        EXPECT_TRUE(Head(*store, name.c_str()));
        const RecordedRequest request = m_server.Requests().back();
        EXPECT_EQ(request.target, "/" + name);
        EXPECT_EQ(request.Value("host"), "s3.eu-central-1.amazonaws.com") << name;
        EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    }
}

TEST_F(BucketName, ANameWithDotsGoesIntoTheHostOfAPlainRequest) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK always puts it into the path";
    }
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore(In(Style::virtualHost));
    EXPECT_TRUE(Head(*store, "a.b.c"));
    EXPECT_EQ(OnlyRequest().Value("host"), "a.b.c.s3.eu-central-1.amazonaws.com");
    EXPECT_EQ(OnlyRequest().target, "/");
}

TEST_F(BucketName, SpecialCharactersAreEncodedInThePath) {
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_TRUE(Head(*store, "a b?d"));
    EXPECT_EQ(OnlyRequest().target, kBundledSdk ? "/a%20b%3Fd" : "/a%20b?d");
}

// An installed SDK leaves the slash as it is: the request would be one about an object.
TEST_F(BucketName, ASlashNeverEndsTheName) {
    m_server.On("HEAD", "").Always(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_EQ(Head(*store, "a/b"), kBundledSdk);
    std::vector<std::string> targets;
    for (const RecordedRequest& request : m_server.Requests()) {
        targets.push_back(request.target);
    }
    EXPECT_EQ(targets,
              kBundledSdk ? std::vector<std::string>{"/a%2Fb"} : std::vector<std::string>());
}

using BucketLocation = WireTest;

TEST_F(BucketLocation, ATextThatNobodyListsKeepsItsText) {
    m_server.On("PUT", "/").Always(Answer::Status(200));
    const auto store = MakeStore();
    for (const char* const location : {"default", "my-zone:fast&cheap<x>", "EU"}) {
        EXPECT_EQ(Create(*store, kBucket, location), 0);
    }
    const auto requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 3u);
    using testing::HasSubstr;
    EXPECT_THAT(requests[0].body, HasSubstr("<LocationConstraint>default</LocationConstraint>"));
    EXPECT_THAT(requests[1].body,
                HasSubstr("<LocationConstraint>my-zone:fast&amp;cheap&lt;x&gt;<"));
    EXPECT_THAT(requests[2].body, HasSubstr("<LocationConstraint>EU</LocationConstraint>"));
}

TEST_F(BucketLocation, AnEmptyTextIsSentEmpty) {
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_EQ(Create(*store, kBucket, ""), 0);
    EXPECT_EQ(XmlOf(OnlyRequest()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
              "<CreateBucketConfiguration xmlns=\"http://s3.amazonaws.com/doc/2006-03-01/\">"
              "<LocationConstraint></LocationConstraint></CreateBucketConfiguration>");
}

class BucketAnswer : public WireTest {
protected:
    static std::string LineOfFailure(int httpStatus) {
        return "AwsS3Store::HeadBucket, Error: , Err Msg: " + MessageOfNoBody(httpStatus) +
               ", bucket: the-bucket ";
    }
};

TEST_F(BucketAnswer, AFailedHeadNamesItsErrorWhereItHasAName) {
    const auto store = MakeStore();
    EXPECT_FALSE(Head(*store, ""));
    EXPECT_TRUE(m_server.Requests().empty());
    EXPECT_THAT(Lines(), ElementsAre("AwsS3Store::HeadBucket, Error: MISSING_PARAMETER, Err Msg: "
                                     "Missing required field [Bucket], bucket:  "));
}

TEST_F(BucketAnswer, ACreationRefusedGivesItsStatusAndLine) {
    m_server.Next(Answer::S3Error(409, "BucketAlreadyExists", "It is taken."));
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    const std::int32_t status = Create(*store, kBucket, nullptr);
    EXPECT_EQ(status, StatusOf(Aws::S3::S3Errors::BUCKET_ALREADY_EXISTS));
    EXPECT_THAT(Lines(), ElementsAre("Create bucket:[the-bucket] failed! [It is taken.], EC:[" +
                                     std::to_string(status) + "]"));
    EXPECT_EQ(Create(*store, kBucket, nullptr), 0);
}

TEST_F(BucketAnswer, TooManyBucketsHasAStatusOfItsOwn) {
    m_server.Next(Answer::S3Error(400, "TooManyBuckets", "You have attempted to create more"));
    const auto store = MakeStore();
    EXPECT_EQ(Create(*store, kBucket, nullptr), 110);
    EXPECT_THAT(Lines(),
                ElementsAre("Create bucket:[the-bucket] failed! [Unable to parse ExceptionName: "
                            "TooManyBuckets Message: You have attempted to create more], EC:[" +
                            std::to_string(StatusOf(Aws::S3::S3Errors::UNKNOWN)) + "]"));
}

TEST_F(BucketAnswer, TooManyBucketsIsFoundInTheMessageOfAnyError) {
    m_server.Next(Answer::S3Error(403, "AccessDenied", "Your plan: TooManyBuckets, delete some"));
    m_server.Next(Answer::S3Error(403, "AccessDenied", "Your plan: too many buckets"));
    const auto store = MakeStore();
    EXPECT_EQ(Create(*store, kBucket, nullptr), 110);
    EXPECT_EQ(Create(*store, kBucket, nullptr), 15);
    EXPECT_THAT(Lines(), ElementsAre("Create bucket:[the-bucket] failed! [Your plan: "
                                     "TooManyBuckets, delete some], EC:[15]",
                                     "Create bucket:[the-bucket] failed! [Your plan: too many "
                                     "buckets], EC:[15]"));
}

TEST_F(BucketAnswer, ACreationAnsweredWithAPageForPeopleIsAFailure) {
    m_server.Next(Answer::Status(200)
                      .Header("Content-Type", "text/html")
                      .Body("<!DOCTYPE html><html><body>Log in first<br></body></html>"));
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    const std::int32_t status = Create(*store, kBucket, nullptr);
    EXPECT_EQ(status, StatusOf(Aws::S3::S3Errors::UNKNOWN));
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_THAT(lines[0], testing::MatchesRegex("Create bucket:.the-bucket. failed! ..+., EC:..+"));
    EXPECT_EQ(Create(*store, kBucket, nullptr), 0);
}

TEST_F(BucketAnswer, AFailedHeadIsJudgedByItsStatus) {
    m_server.Next(Answer::Status(404));
    m_server.Next(Answer::Status(403));
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_FALSE(Head(*store));
    EXPECT_FALSE(Head(*store));
    EXPECT_TRUE(Head(*store));
    EXPECT_EQ(m_server.Requests().size(), 3u);
    EXPECT_THAT(Lines(), ElementsAre(LineOfFailure(404), LineOfFailure(403),
                                     "AwsS3Store::HeadBucket the bucket exists[the-bucket]!"));
    EXPECT_EQ(store->GetRequestCount(), 3u);
}

TEST_F(BucketAnswer, ARedirectedHeadIsNotFollowed) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK follows it by itself";
    }
    m_server.Next(Answer::Status(301).Header("Location", "http://elsewhere.test/"));
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_FALSE(Head(*store));
    EXPECT_EQ(m_server.Requests().size(), 1u);
    EXPECT_THAT(Lines(), ElementsAre(LineOfFailure(301)));
    EXPECT_EQ(store->GetRequestCount(), 1u);
    EXPECT_TRUE(Head(*store));
}

}  // namespace
}  // namespace Mirqos::Test
