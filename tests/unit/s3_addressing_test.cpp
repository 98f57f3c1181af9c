#include "sdk/s3/src/Addressing.h"

#include <aws/core/client/ClientConfiguration.h>
#include <aws/s3/S3Client.h>
#include <aws/s3/model/GetObjectRequest.h>
#include <aws/s3/model/HeadBucketRequest.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/ScriptedTransport.h"

namespace {

using Mirqos::S3::Addressing;
using Mirqos::S3::IsDnsCompatible;
using namespace Mirqos::Test;

/// "SCHEME HOST PORT PATH" of a request.
std::string Place(const Addressing& addressing, const char* bucket, const char* key = nullptr) {
    std::optional<std::string> keyText;
    if (key != nullptr) {
        keyText = key;
    }
    const Mirqos::Client::Destination found = addressing.Locate(std::string(bucket), keyText);
    return std::string(found.https ? "https " : "http ") + found.host + ' ' +
           std::to_string(found.port) + ' ' + found.path;
}

TEST(S3Addressing, BucketGoesIntoTheRegionsHost) {
    EXPECT_EQ("https bucket.s3.eu-west-1.amazonaws.com 443 /key",
              Place(Addressing("", "eu-west-1", true, true), "bucket", "key"));
    EXPECT_EQ("http bucket.s3.us-west-2.amazonaws.com 80 /",
              Place(Addressing("", "us-west-2", false, true), "bucket"));
}

TEST(S3Addressing, HomeRegionHasTheShortHost) {
    EXPECT_EQ("https bucket.s3.amazonaws.com 443 /key",
              Place(Addressing("", "us-east-1", true, true), "bucket", "key"));
    EXPECT_EQ("https bucket.s3.amazonaws.com 443 /key",
              Place(Addressing("", "", true, true), "bucket", "key"));
}

TEST(S3Addressing, ChinaHasItsOwnDomain) {
    EXPECT_EQ("https bucket.s3.cn-north-1.amazonaws.com.cn 443 /key",
              Place(Addressing("", "cn-north-1", true, true), "bucket", "key"));
}

TEST(S3Addressing, PathStyleKeepsTheBucketInThePath) {
    const Addressing addressing("127.0.0.1:9000", "us-east-1", false, false);
    EXPECT_EQ("http 127.0.0.1 9000 /bucket/a/b", Place(addressing, "bucket", "a/b"));
    EXPECT_EQ("http 127.0.0.1 9000 /bucket", Place(addressing, "bucket"));
}

TEST(S3Addressing, NamesThatAreNoHostNameStayInThePath) {
    const Addressing addressing("", "us-east-1", true, true);
    EXPECT_EQ("https s3.amazonaws.com 443 /My_Bucket/k", Place(addressing, "My_Bucket", "k"));
    EXPECT_EQ("https s3.amazonaws.com 443 /a%2Fb%3F/k", Place(addressing, "a/b?", "k"));
}

TEST(S3Addressing, DottedNamesStayInThePathUnderTlsOnly) {
    EXPECT_EQ("https s3.amazonaws.com 443 /a.bucket/k",
              Place(Addressing("", "us-east-1", true, true), "a.bucket", "k"));
    EXPECT_EQ("http a.bucket.s3.amazonaws.com 80 /k",
              Place(Addressing("", "us-east-1", false, true), "a.bucket", "k"));
}

TEST(S3Addressing, AnAddressTakesNoBucketInFront) {
    EXPECT_EQ("http 10.0.0.1 80 /bucket/k",
              Place(Addressing("10.0.0.1", "us-east-1", false, true), "bucket", "k"));
    EXPECT_EQ("http ::1 9000 /bucket/k",
              Place(Addressing("[::1]:9000", "us-east-1", false, true), "bucket", "k"));
}

TEST(S3Addressing, EndpointMayBringSchemePortAndPath) {
    EXPECT_EQ("http gate.example 8080 /s3/v1/bucket/k",
              Place(Addressing("http://gate.example:8080/s3/v1/", "", true, false), "bucket", "k"));
    EXPECT_EQ("https gate.example 443 /bucket/k",
              Place(Addressing("HTTPS://gate.example", "", false, false), "bucket", "k"));
    EXPECT_EQ("https bucket.gate.example 444 /pre/k",
              Place(Addressing("gate.example:444/pre", "", true, true), "bucket", "k"));
}

TEST(S3Addressing, BadEndpointsAreNamedAsSuch) {
    for (const char* const endpoint :
         {"host:", "host:0", "host:65536", "host:123456", "host:80x", "host:-1", ":80", "http://",
          "/path", "[::1", "[::1]x", "[]:80", "::1"}) {
        EXPECT_FALSE(Addressing(endpoint, "", true, false).Problem().empty()) << endpoint;
    }
    for (const char* const endpoint : {"host", "host:1", "host:65535", "[::1]", "http://h/"}) {
        EXPECT_TRUE(Addressing(endpoint, "", true, false).Problem().empty()) << endpoint;
    }
}

TEST(S3Addressing, BadEndpointFailsTheCallBeforeItIsSent) {
    ScriptedNetwork network({Reply(200)});
    Aws::Client::ClientConfiguration configuration;
    configuration.endpointOverride = "host:port";
    const Aws::S3::S3Client client(Aws::Auth::AWSCredentials("k", "s"), configuration);

    const auto outcome =
        client.HeadBucket(Aws::S3::Model::HeadBucketRequest().WithBucket("bucket"));

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(Aws::S3::S3Errors::INVALID_PARAMETER_VALUE, outcome.GetError().GetErrorType());
    EXPECT_TRUE(network.Requests().empty());
}

TEST(S3Addressing, DnsCompatibleNames) {
    for (const char* const name : {"abc", "a-b", "a.b", "0a1", "1-2.3-x"}) {
        EXPECT_TRUE(IsDnsCompatible(name)) << name;
    }
    EXPECT_TRUE(IsDnsCompatible(std::string(63, 'a')));
    EXPECT_FALSE(IsDnsCompatible(std::string(64, 'a')));
    for (const char* const name : {"", "ab", "Abc", "a_b", "-ab", "ab-", ".ab", "ab.", "a..b",
                                   "a.-b", "a-.b", "1.2.3.4", "a b",
                                   "\xC3\xA4"
                                   "bc"}) {
        EXPECT_FALSE(IsDnsCompatible(name)) << name;
    }
}

struct KeyCase {
    const char* key;
    const char* path;
};

class S3Keys : public testing::TestWithParam<KeyCase> {};

TEST_P(S3Keys, StayExactOnTheWire) {
    ScriptedNetwork network({Reply(200)});
    Aws::Client::ClientConfiguration configuration;
    configuration.endpointOverride = "127.0.0.1:9000";
    configuration.scheme = Aws::Http::Scheme::HTTP;
    const Aws::S3::S3Client client(Aws::Auth::AWSCredentials("k", "s"), configuration,
                                   Aws::Client::AWSAuthV4Signer::PayloadSigningPolicy::Never,
                                   false);

    Aws::S3::Model::GetObjectRequest request;
    request.WithBucket("bucket").WithKey(GetParam().key);
    ASSERT_TRUE(client.GetObject(request).IsSuccess());

    ASSERT_EQ(1u, network.Requests().size());
    EXPECT_EQ(std::string("/bucket/") + GetParam().path, network.Requests()[0].request.target);
    EXPECT_EQ("127.0.0.1:9000", network.Requests()[0].Header("Host"));
}

INSTANTIATE_TEST_SUITE_P(Awkward, S3Keys,
                         testing::Values(KeyCase{"a b", "a%20b"}, KeyCase{"a+b", "a%2Bb"},
                                         KeyCase{"a@b", "a%40b"}, KeyCase{"100%", "100%25"},
                                         KeyCase{"%2F", "%252F"}, KeyCase{"a//b", "a//b"},
                                         KeyCase{"/a", "/a"}, KeyCase{"a/", "a/"},
                                         KeyCase{"./a/../b", "./a/../b"}, KeyCase{"..", ".."},
                                         KeyCase{"a?b=c#d&e", "a%3Fb%3Dc%23d%26e"},
                                         KeyCase{"\xC3\xBC\xE2\x82\xAC", "%C3%BC%E2%82%AC"},
                                         KeyCase{"\xFF\x01", "%FF%01"},
                                         KeyCase{"a\\b:c", "a%5Cb%3Ac"}, KeyCase{"-._~", "-._~"}));

TEST(S3Keys, LongestKeyStaysWhole) {
    const std::string key(1024, '/');
    const Addressing addressing("", "us-east-1", true, true);

    EXPECT_EQ('/' + key, addressing.Locate(std::string("bucket"), key).path);
}

}  // namespace
