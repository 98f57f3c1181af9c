#include <aws/s3/model/DeleteObjectsRequest.h>
#include <gmock/gmock.h>
#include <openssl/evp.h>

#include "sdk/core/crypto/Hash.h"
#include "tests/support/S3Calls.h"
#include "tests/support/ScriptedTransport.h"

namespace {

using Aws::S3::S3Client;
using Aws::S3::S3Errors;
using Mirqos::ToStd;
using testing::HasSubstr;
using testing::SizeIs;
using namespace Mirqos::Test;

/// For its lifetime: OpenSSL refuses every algorithm that nobody has asked for before, as a system
/// restricted to approved ones refuses MD5.
class Restriction {
public:
    Restriction() { EVP_set_default_properties(nullptr, "provider=none"); }
    ~Restriction() { EVP_set_default_properties(nullptr, ""); }
    Restriction(const Restriction&) = delete;
    Restriction& operator=(const Restriction&) = delete;
};

TEST(SdkHashRefused, IsAnErrorOfTheHash) {
    const Restriction restriction;
    EXPECT_THROW(Mirqos::Crypto::Md5(), Mirqos::Crypto::Error);
    EXPECT_THROW(Mirqos::Crypto::Sha256(), Mirqos::Crypto::Error);
    EXPECT_THROW(Mirqos::Crypto::HmacSha256("key", 3, "text", 4), Mirqos::Crypto::Error);
}

TEST(SdkHashRefused, FailsTheCallAndIsNotThrown) {
    ScriptedNetwork network({Reply(200, "<DeleteResult/>")});
    const S3Client client(kCredentials, Configuration());
    Aws::S3::Model::DeleteObjectsRequest request;
    request.WithBucket("bucket");
    {
        const Restriction restriction;
        const auto outcome = client.DeleteObjects(request);
        ASSERT_FALSE(outcome.IsSuccess());
        EXPECT_EQ(S3Errors::INTERNAL_FAILURE, outcome.GetError().GetErrorType());
        EXPECT_FALSE(outcome.GetError().ShouldRetry());
        EXPECT_THAT(ToStd(outcome.GetError().GetMessage()), HasSubstr("OpenSSL"));

        const auto unsignable = client.PutObject(Put(Body("hello")));
        ASSERT_FALSE(unsignable.IsSuccess());
        EXPECT_EQ(S3Errors::INTERNAL_FAILURE, unsignable.GetError().GetErrorType());
        EXPECT_THAT(network.Requests(), SizeIs(0));
    }
    EXPECT_TRUE(client.DeleteObjects(request).IsSuccess());
    EXPECT_THAT(network.Requests(), SizeIs(1));
}

}  // namespace
