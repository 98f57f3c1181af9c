#include <aws/core/utils/memory/AWSMemory.h>
#include <aws/core/utils/stream/PreallocatedStreamBuf.h>
#include <aws/core/utils/stream/ResponseStream.h>
#include <aws/s3/model/CreateBucketRequest.h>
#include <aws/s3/model/DeleteObjectRequest.h>
#include <aws/s3/model/HeadBucketRequest.h>
#include <gmock/gmock.h>

#include <cstring>
#include <new>
#include <string>

#include "sdk/core/client/Pipeline.h"
#include "sdk/s3/src/ServiceCodes.h"
#include "tests/support/S3Calls.h"
#include "tests/support/ScriptedTransport.h"

namespace {

using Aws::S3::S3Client;
using Aws::S3::S3Errors;
using Aws::S3::Model::GetObjectRequest;
using Aws::Utils::Stream::DefaultUnderlyingStream;
using Aws::Utils::Stream::PreallocatedStreamBuf;
using Mirqos::ToStd;
using Mirqos::Http::Failure;
using testing::HasSubstr;
using testing::SizeIs;
using namespace Mirqos::Test;

constexpr char kTag[] = "s3_answers_test";

TEST(S3Answers, BodyGoesIntoTheDefaultStream) {
    TransportStep step = Reply(200, "some bytes", {{"Content-Length", "10"}, {"ETag", "\"e\""}});
    step.chunk = 3;
    ScriptedNetwork network({step});

    const auto outcome = S3Client(kCredentials, Configuration()).GetObject(Get());

    ASSERT_TRUE(outcome.IsSuccess());
    EXPECT_EQ("some bytes", TextOf(outcome.GetResult().GetBody()));
    EXPECT_EQ(10, outcome.GetResult().GetContentLength());
    EXPECT_EQ("\"e\"", ToStd(outcome.GetResult().GetETag()));
}

TEST(S3Answers, ContentLengthOfAChunkedBodyIsWhatWasReceived) {
    ScriptedNetwork network({Reply(200, "some bytes")});

    const auto outcome = S3Client(kCredentials, Configuration()).GetObject(Get());

    ASSERT_TRUE(outcome.IsSuccess());
    EXPECT_EQ(10, outcome.GetResult().GetContentLength());
}

TEST(S3Answers, ShortStreamTakesTheFirstBytesAndTheRestIsDropped) {
    TransportStep step = Reply(200, "0123456789", {{"Content-Length", "10000000010"}});
    step.filler = 10000000000u;
    ScriptedNetwork network({step});
    unsigned char room[8] = {};
    GetObjectRequest request = Get();
    request.SetResponseStreamFactory([&room] {
        return Aws::New<DefaultUnderlyingStream>(
            kTag, Aws::MakeUnique<PreallocatedStreamBuf>(kTag, room, 4u));
    });

    const auto outcome = S3Client(kCredentials, Configuration()).GetObject(request);

    ASSERT_TRUE(outcome.IsSuccess());
    EXPECT_EQ(0, std::memcmp("0123\0\0\0\0", room, sizeof room));
    EXPECT_EQ(10u, network.Requests().at(0).offered);
}

TEST(S3Answers, StreamIsMadeAnewForEachSuccessfulAnswerOnly) {
    TransportStep broken = Reply(200, "stale");
    broken.result = {Failure::truncated, "5 of 9 bytes"};
    ScriptedNetwork network({ErrorReply(500, "InternalError", "oops"), broken,
                             Reply(200, "fresh", {{"Content-Length", "5"}})});
    int streams = 0;
    GetObjectRequest request = Get();
    request.SetResponseStreamFactory([&streams] {
        ++streams;
        return Aws::New<DefaultUnderlyingStream>(kTag);
    });

    const auto outcome = S3Client(kCredentials, Configuration()).GetObject(request);

    ASSERT_TRUE(outcome.IsSuccess());
    EXPECT_EQ("fresh", TextOf(outcome.GetResult().GetBody()));
    EXPECT_EQ(2, streams);
}

TEST(S3Answers, ErrorBodyNeverMeetsTheCallersStream) {
    ScriptedNetwork network({ErrorReply(404, "NoSuchKey", "gone")});
    bool asked = false;
    GetObjectRequest request = Get();
    request.SetResponseStreamFactory([&asked]() -> Aws::IOStream* {
        asked = true;
        return nullptr;
    });

    const auto outcome = S3Client(kCredentials, Configuration()).GetObject(request);

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(S3Errors::NO_SUCH_KEY, outcome.GetError().GetErrorType());
    EXPECT_FALSE(asked);
}

TEST(S3Answers, FactoryWithoutAStreamFailsTheCall) {
    ScriptedNetwork network({Reply(200, "bytes")});
    GetObjectRequest request = Get();
    request.SetResponseStreamFactory([]() -> Aws::IOStream* { return nullptr; });
    const S3Client client(kCredentials, Configuration());
    EXPECT_EQ(S3Errors::INVALID_PARAMETER_VALUE,
              client.GetObject(request).GetError().GetErrorType());

    request.SetResponseStreamFactory(nullptr);
    EXPECT_EQ(S3Errors::INVALID_PARAMETER_VALUE,
              client.GetObject(request).GetError().GetErrorType());
}

TEST(S3Answers, AStreamWithoutItsBufferFailsTheCall) {
    ScriptedNetwork network({Reply(200, "bytes")});
    GetObjectRequest request = Get();
    request.SetResponseStreamFactory([]() -> Aws::IOStream* {
        return Aws::New<DefaultUnderlyingStream>("test", Aws::UniquePtr<std::streambuf>());
    });

    const auto outcome = S3Client(kCredentials, Configuration()).GetObject(request);

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(S3Errors::INVALID_PARAMETER_VALUE, outcome.GetError().GetErrorType());
    EXPECT_THAT(network.Requests(), SizeIs(1));
}

TEST(S3Answers, WhatTheFactoryThrowsReachesTheCaller) {
    ScriptedNetwork network({Reply(200, "bytes")});
    GetObjectRequest request = Get();
    request.SetResponseStreamFactory([]() -> Aws::IOStream* { throw std::bad_alloc(); });

    EXPECT_THROW(S3Client(kCredentials, Configuration()).GetObject(request), std::bad_alloc);
}

TEST(S3Answers, EndlessErrorBodyIsCutOff) {
    TransportStep step = Reply(404, "<Error><Code>NoSuchKey</Code>");
    step.filler = 100000000000u;
    ScriptedNetwork network({step});

    const auto outcome = S3Client(kCredentials, Configuration()).GetObject(Get());

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(S3Errors::RESOURCE_NOT_FOUND, outcome.GetError().GetErrorType());
    EXPECT_LE(network.Requests().at(0).offered, 2u * 1024 * 1024);
}

TEST(S3Answers, EndlessBodyNobodyWantsIsCutOffAndIsNoSuccess) {
    TransportStep step = Reply(200);
    step.filler = 100000000000u;
    ScriptedNetwork network({step});

    const auto outcome = S3Client(kCredentials, Configuration()).PutObject(Put(Body("hello")));

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ("The answer is larger than can be read.", outcome.GetError().GetMessage());
    EXPECT_LE(network.Requests().at(0).offered, 2u * 1024 * 1024);
}

TEST(S3Answers, ResultsComeFromTheAnswersHeaders) {
    ScriptedNetwork network(
        {Reply(200, "", {{"location", "/bucket"}}),
         Reply(204, "", {{"x-amz-delete-marker", "true"}, {"x-amz-version-id", "v1"}}),
         Reply(200)});
    const S3Client client(kCredentials, Configuration());
    Aws::S3::Model::CreateBucketRequest create;
    Aws::S3::Model::DeleteObjectRequest remove;

    const auto created = client.CreateBucket(create.WithBucket("bucket"));
    const auto removed = client.DeleteObject(remove.WithBucket("bucket").WithKey("key"));
    const auto head = client.HeadBucket(Aws::S3::Model::HeadBucketRequest().WithBucket("bucket"));

    EXPECT_EQ("/bucket", ToStd(created.GetResult().GetLocation()));
    EXPECT_TRUE(removed.GetResult().GetDeleteMarker());
    EXPECT_EQ("v1", ToStd(removed.GetResult().GetVersionId()));
    EXPECT_TRUE(head.IsSuccess());
    const auto sent = network.Requests();
    ASSERT_THAT(sent, SizeIs(3));
    EXPECT_EQ("PUT /", sent[0].request.method + ' ' + sent[0].request.target);
    EXPECT_EQ("DELETE /key", sent[1].request.method + ' ' + sent[1].request.target);
    EXPECT_EQ("HEAD /", sent[2].request.method + ' ' + sent[2].request.target);
}

TEST(S3Answers, CreateBucketSendsItsConfiguration) {
    ScriptedNetwork network({Reply(200)});
    Aws::S3::Model::CreateBucketConfiguration configuration;
    configuration.SetLocationConstraint(Aws::S3::Model::BucketLocationConstraint::eu_west_1);
    Aws::S3::Model::CreateBucketRequest request;
    request.WithBucket("bucket").WithCreateBucketConfiguration(configuration);

    ASSERT_TRUE(S3Client(kCredentials, Configuration()).CreateBucket(request).IsSuccess());
    EXPECT_EQ("application/xml", network.Requests().at(0).Header("Content-Type"));
    EXPECT_THAT(network.Requests().at(0).body,
                HasSubstr("<LocationConstraint>eu-west-1</LocationConstraint>"));
}

// ---- XML answers

/// An operation that answers with a document.
class ListRequest : public Aws::AmazonWebServiceRequest {
public:
    const char* GetServiceRequestName() const override { return "List"; }
    Mirqos::Client::WireRequest Describe() const override {
        Mirqos::Client::WireRequest wire;
        wire.method = "GET";
        wire.query = {{"list-type", "2"}, {"prefix", "a b"}, {"versions", ""}};
        wire.response = Mirqos::Client::ResponseKind::xml;
        wire.xmlRoot = "ListResult";
        return wire;
    }
};

Mirqos::Client::Pipeline::Outcome RunList() {
    const Mirqos::Client::Pipeline pipeline(
        kCredentials, Configuration(), Aws::Client::AWSAuthV4Signer::PayloadSigningPolicy::Never,
        {"s3", "test", Mirqos::S3::FindServiceError});
    const ListRequest request;
    Mirqos::Client::Destination destination;
    destination.host = "host.example";
    destination.path = "/";
    return pipeline.Run(request, request.Describe(), destination);
}

TEST(XmlAnswers, DocumentIsParsed) {
    ScriptedNetwork network(
        {Reply(200, " \r\n<?xml version=\"1.0\"?><ListResult><Name>n</Name></ListResult>")});

    const auto outcome = RunList();

    ASSERT_TRUE(outcome.IsSuccess());
    EXPECT_EQ("n", outcome.GetResult().xml.Root().TextOf("Name"));
    EXPECT_EQ("/?list-type=2&prefix=a%20b&versions", network.Requests().at(0).request.target);
}

TEST(XmlAnswers, ErrorUnderStatus200IsAFailure) {
    ScriptedNetwork network(
        {ErrorReply(200, "InternalError", "try again"), ErrorReply(200, "NoSuchUpload", "gone")});

    const auto outcome = RunList();

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(S3Errors::NO_SUCH_UPLOAD, Aws::S3::S3Error(outcome.GetError()).GetErrorType());
    EXPECT_EQ("gone", ToStd(outcome.GetError().GetMessage()));
    EXPECT_THAT(network.Requests(), SizeIs(2));
}

TEST(XmlAnswers, AnythingElseUnderStatus200IsAFailureWithAMessage) {
    for (const char* const body :
         {"", "   ", "<html><body>Welcome</body></html>", "<html><br></html>", "<ListResult>",
          "<ListResult></Listresult>", "<ListResult/><ListResult/>", "plain text", "\xFF\xFE",
          "<!DOCTYPE a [<!ENTITY b \"c\">]><ListResult>&b;</ListResult>"}) {
        ScriptedNetwork network({Reply(200, body)});
        const auto outcome = RunList();
        ASSERT_FALSE(outcome.IsSuccess()) << body;
        EXPECT_EQ(Aws::Client::CoreErrors::UNKNOWN, outcome.GetError().GetErrorType()) << body;
        EXPECT_NE("", ToStd(outcome.GetError().GetMessage())) << body;
        EXPECT_THAT(network.Requests(), SizeIs(1)) << body;
    }
}

TEST(XmlAnswers, EndlessDocumentIsCutOff) {
    TransportStep step = Reply(200, "<ListResult>");
    step.filler = 100000000000u;
    ScriptedNetwork network({step});

    const auto outcome = RunList();

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ("The answer is larger than can be read.", ToStd(outcome.GetError().GetMessage()));
    EXPECT_LE(network.Requests().at(0).offered, 65u * 1024 * 1024);
}

TEST(XmlAnswers, AbsurdContentLengthAllocatesNothing) {
    ScriptedNetwork network(
        {Reply(200, "<ListResult/>", {{"Content-Length", "9223372036854775807"}})});
    EXPECT_TRUE(RunList().IsSuccess());
}

}  // namespace
