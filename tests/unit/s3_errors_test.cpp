#include <aws/core/client/DefaultRetryStrategy.h>
#include <aws/s3/S3Client.h>
#include <aws/s3/model/GetObjectRequest.h>
#include <aws/s3/model/HeadBucketRequest.h>
#include <gtest/gtest.h>

#include <string>

#include "sdk/core/client/ServiceErrors.h"
#include "sdk/core/client/Text.h"
#include "sdk/s3/src/ServiceCodes.h"
#include "tests/support/ScriptedTransport.h"

namespace {

using Aws::S3::S3Error;
using Aws::S3::S3Errors;
using Mirqos::ToStd;
using namespace Mirqos::Test;

S3Error ErrorOf(int status, const std::string& body) {
    return S3Error(Mirqos::Client::ErrorFromAnswer(status, body, Mirqos::S3::FindServiceError));
}

S3Error ErrorOfCode(int status, const std::string& code) {
    return ErrorOf(status,
                   "<Error><Code>" + code + "</Code><Message>the message</Message></Error>");
}

TEST(S3ErrorNumbers, AreThoseOfTheGenerationThatHostsKnow) {
    EXPECT_EQ(0, static_cast<int>(S3Errors::INCOMPLETE_SIGNATURE));
    EXPECT_EQ(15, static_cast<int>(S3Errors::ACCESS_DENIED));
    EXPECT_EQ(16, static_cast<int>(S3Errors::RESOURCE_NOT_FOUND));
    EXPECT_EQ(24, static_cast<int>(S3Errors::REQUEST_TIMEOUT));
    EXPECT_EQ(99, static_cast<int>(S3Errors::NETWORK_CONNECTION));
    EXPECT_EQ(100, static_cast<int>(S3Errors::UNKNOWN));
    EXPECT_EQ(129, static_cast<int>(S3Errors::BUCKET_ALREADY_EXISTS));
    EXPECT_EQ(132, static_cast<int>(S3Errors::NO_SUCH_KEY));
    EXPECT_EQ(135, static_cast<int>(S3Errors::OBJECT_NOT_IN_ACTIVE_TIER));
}

struct CodeCase {
    const char* code;
    int status;
    S3Errors type;
    bool retryable;
};

class S3ErrorCodes : public testing::TestWithParam<CodeCase> {};

TEST_P(S3ErrorCodes, BecomeTheSdksErrors) {
    const CodeCase& expected = GetParam();
    const S3Error error = ErrorOfCode(expected.status, expected.code);

    EXPECT_EQ(expected.type, error.GetErrorType());
    EXPECT_EQ(expected.code, ToStd(error.GetExceptionName()));
    EXPECT_EQ("the message", ToStd(error.GetMessage()));
    EXPECT_EQ(expected.retryable, error.ShouldRetry());
}

INSTANTIATE_TEST_SUITE_P(
    Known, S3ErrorCodes,
    testing::Values(
        CodeCase{"NoSuchKey", 404, S3Errors::NO_SUCH_KEY, false},
        CodeCase{"NoSuchBucket", 404, S3Errors::NO_SUCH_BUCKET, false},
        CodeCase{"NoSuchUpload", 404, S3Errors::NO_SUCH_UPLOAD, false},
        CodeCase{"BucketAlreadyExists", 409, S3Errors::BUCKET_ALREADY_EXISTS, false},
        CodeCase{"BucketAlreadyOwnedByYou", 409, S3Errors::BUCKET_ALREADY_OWNED_BY_YOU, false},
        CodeCase{"ObjectAlreadyInActiveTierError", 403, S3Errors::OBJECT_ALREADY_IN_ACTIVE_TIER,
                 false},
        CodeCase{"ObjectNotInActiveTierError", 403, S3Errors::OBJECT_NOT_IN_ACTIVE_TIER, false},
        CodeCase{"AccessDenied", 403, S3Errors::ACCESS_DENIED, false},
        CodeCase{"AccessDeniedException", 403, S3Errors::ACCESS_DENIED, false},
        CodeCase{"InvalidAccessKeyId", 403, S3Errors::INVALID_ACCESS_KEY_ID, false},
        CodeCase{"SignatureDoesNotMatch", 403, S3Errors::SIGNATURE_DOES_NOT_MATCH, false},
        CodeCase{"RequestTimeTooSkewed", 403, S3Errors::REQUEST_TIME_TOO_SKEWED, true},
        CodeCase{"RequestTimeout", 400, S3Errors::REQUEST_TIMEOUT, true},
        CodeCase{"SlowDown", 503, S3Errors::SLOW_DOWN, true},
        CodeCase{"ServiceUnavailable", 503, S3Errors::SERVICE_UNAVAILABLE, true},
        CodeCase{"InternalError", 500, S3Errors::INTERNAL_FAILURE, true},
        CodeCase{"ThrottlingException", 400, S3Errors::THROTTLING, true}));

TEST(S3Errors, UnknownCodeIsQuotedInTheMessage) {
    const S3Error error = ErrorOfCode(400, "TooManyBuckets");

    EXPECT_EQ(S3Errors::UNKNOWN, error.GetErrorType());
    EXPECT_EQ("TooManyBuckets", ToStd(error.GetExceptionName()));
    EXPECT_EQ("Unable to parse ExceptionName: TooManyBuckets Message: the message",
              ToStd(error.GetMessage()));
    EXPECT_FALSE(error.ShouldRetry());
    EXPECT_TRUE(ErrorOfCode(503, "Whatever").ShouldRetry());
}

struct StatusCase {
    int status;
    S3Errors type;
    bool retryable;
};

class S3BodylessErrors : public testing::TestWithParam<StatusCase> {};

TEST_P(S3BodylessErrors, TakeTheirTypeFromTheStatus) {
    const S3Error error = ErrorOf(GetParam().status, "");

    EXPECT_EQ(GetParam().type, error.GetErrorType());
    EXPECT_EQ("No response body. Response code: " + std::to_string(GetParam().status),
              ToStd(error.GetMessage()));
    EXPECT_EQ("", ToStd(error.GetExceptionName()));
    EXPECT_EQ(GetParam().retryable, error.ShouldRetry());
}

INSTANTIATE_TEST_SUITE_P(Statuses, S3BodylessErrors,
                         testing::Values(StatusCase{301, S3Errors::UNKNOWN, false},
                                         StatusCase{400, S3Errors::VALIDATION, false},
                                         StatusCase{401, S3Errors::ACCESS_DENIED, false},
                                         StatusCase{403, S3Errors::ACCESS_DENIED, false},
                                         StatusCase{404, S3Errors::RESOURCE_NOT_FOUND, false},
                                         StatusCase{408, S3Errors::REQUEST_TIMEOUT, true},
                                         StatusCase{412, S3Errors::UNKNOWN, false},
                                         StatusCase{429, S3Errors::THROTTLING, true},
                                         StatusCase{500, S3Errors::INTERNAL_FAILURE, true},
                                         StatusCase{501, S3Errors::INTERNAL_FAILURE, false},
                                         StatusCase{502, S3Errors::INTERNAL_FAILURE, true},
                                         StatusCase{503, S3Errors::SERVICE_UNAVAILABLE, true},
                                         StatusCase{600, S3Errors::UNKNOWN, false}));

TEST(S3Errors, BodyThatIsNoErrorDocumentLeavesTheStatusToDecide) {
    for (const char* const body :
         {"<html><body>Bad gateway</body></html>", "<html><p>", "Bad gateway", "<Error/>",
          "<Error><Code></Code></Error>", "{\"Code\":\"NoSuchKey\"}", " "}) {
        const S3Error error = ErrorOf(502, body);
        EXPECT_EQ(S3Errors::INTERNAL_FAILURE, error.GetErrorType()) << body;
        EXPECT_TRUE(error.ShouldRetry()) << body;
        EXPECT_NE(std::string::npos, ToStd(error.GetMessage()).find("502")) << body;
    }
}

TEST(S3Errors, BlanksBeforeTheDocumentArePassedOver) {
    const std::string document =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Error><Code>NoSuchKey</Code></Error>";
    for (const char* const blanks : {"\n", " \t\r\n  "}) {
        EXPECT_EQ(S3Errors::NO_SUCH_KEY, ErrorOf(404, blanks + document).GetErrorType());
    }
}

TEST(S3Errors, WrappedErrorDocumentIsUnderstood) {
    EXPECT_EQ(S3Errors::NO_SUCH_KEY,
              ErrorOf(404,
                      "<Response><Errors><Error><Code>NoSuchKey</Code></Error></Errors>"
                      "</Response>")
                  .GetErrorType());
    EXPECT_EQ(S3Errors::NO_SUCH_BUCKET,
              ErrorOf(404,
                      "<ErrorResponse><Error><Code>NoSuchBucket</Code></Error>"
                      "</ErrorResponse>")
                  .GetErrorType());
}

TEST(S3Errors, DeeplyNestedOrTruncatedDocumentsAreNoErrorDocuments) {
    std::string nested;
    for (int i = 0; i < 100000; ++i) {
        nested += "<Error>";
    }
    EXPECT_EQ(S3Errors::RESOURCE_NOT_FOUND, ErrorOf(404, nested).GetErrorType());
    EXPECT_EQ(S3Errors::RESOURCE_NOT_FOUND,
              ErrorOf(404, "<Error><Code>NoSuchKey</Code><Mess").GetErrorType());
}

TEST(S3Errors, OutcomeCarriesTheStatusOfTheAnswer) {
    ScriptedNetwork network({ErrorReply(404, "NoSuchKey", "The key does not exist.")});
    const Aws::S3::S3Client client(Aws::Auth::AWSCredentials("k", "s"));

    Aws::S3::Model::GetObjectRequest request;
    const auto outcome = client.GetObject(request.WithBucket("bucket").WithKey("key"));

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(S3Errors::NO_SUCH_KEY, outcome.GetError().GetErrorType());
    EXPECT_EQ("NoSuchKey", ToStd(outcome.GetError().GetExceptionName()));
    EXPECT_EQ("The key does not exist.", ToStd(outcome.GetError().GetMessage()));
    EXPECT_EQ(Aws::Http::HttpResponseCode::NOT_FOUND, outcome.GetError().GetResponseCode());
}

TEST(S3Errors, MissingBucketOfAHeadIsNotFound) {
    ScriptedNetwork network({Reply(404)});
    const Aws::S3::S3Client client(Aws::Auth::AWSCredentials("k", "s"));

    const auto outcome =
        client.HeadBucket(Aws::S3::Model::HeadBucketRequest().WithBucket("bucket"));

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(S3Errors::RESOURCE_NOT_FOUND, outcome.GetError().GetErrorType());
    EXPECT_EQ("No response body. Response code: 404", ToStd(outcome.GetError().GetMessage()));
}

}  // namespace
