#include <string>

#include "store/AwsSdk.h"
#include "tests/service/ServiceTest.h"

namespace {

using Aws::S3::S3Errors;
using Mirqos::Test::NewBucketName;
using Mirqos::Test::ServiceTest;
using Mirqos::Test::SomeBytes;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

class Buckets : public ServiceTest {
protected:
    static std::int32_t Create(MIRQOSInterface& store, const std::string& bucket,
                               const char* location = nullptr) {
        CloudStoreCreateBucketContext create;
        create.m_pszBucket = bucket.c_str();
        create.m_pszRegion = location;
        return store.CreateBucket(&create);
    }

    static bool Exists(MIRQOSInterface& store, const std::string& bucket) {
        CloudStoreHeadBucketConext head;
        head.m_pszBucket = bucket.c_str();
        EXPECT_EQ(store.HeadBucket(&head), 0);
        return head.m_bExists;
    }
};

TEST_F(Buckets, ExistOnceCreatedAndNotBefore) {
    const auto store = NewStore(Config());
    const std::string bucket = NewBucketName();
    EXPECT_FALSE(Exists(*store, bucket));
    EXPECT_THAT(Log().Texts(), ElementsAre(AllOf(StartsWith("AwsS3Store::HeadBucket, Error: "),
                                                 EndsWith(", bucket: " + bucket + " "))));
    ForgetLog();
    EXPECT_EQ(Create(*store, bucket), 0);
    EXPECT_TRUE(Exists(*store, bucket));
    EXPECT_THAT(Log().Texts(),
                ElementsAre("Create bucket:[" + bucket + "] successful!",
                            "AwsS3Store::HeadBucket the bucket exists[" + bucket + "]!"));
}

TEST_F(Buckets, HeadCountsARequestAndCreateDoesNot) {
    const auto store = NewStore(Config());
    EXPECT_EQ(Create(*store, NewBucketName()), 0);
    EXPECT_EQ(store->GetRequestCount(), 0u);
    EXPECT_TRUE(Exists(*store, Bucket()));
    EXPECT_EQ(store->GetRequestCount(), 1u);
}

TEST_F(Buckets, ALocationOfTheServiceIsAccepted) {
    const auto store = NewStore(Config());
    const std::string bucket = NewBucketName();
    // what this kind of server calls its own location
    EXPECT_EQ(Create(*store, bucket, "default"), 0);
    EXPECT_TRUE(Exists(*store, bucket));
}

TEST_F(Buckets, ALocationThatTheServiceDoesNotHaveIsRefused) {
    const auto store = NewStore(Config());
    const std::string bucket = NewBucketName();
    const std::int32_t status = Create(*store, bucket, "eu-central-1");
    EXPECT_EQ(status, static_cast<std::int32_t>(S3Errors::UNKNOWN));
    EXPECT_THAT(Log().Texts(),
                ElementsAre(AllOf(StartsWith("Create bucket:[" + bucket + "] failed! ["),
                                  testing::HasSubstr("InvalidLocationConstraint"),
                                  EndsWith("], EC:[" + std::to_string(status) + "]"))));
    EXPECT_FALSE(Exists(*store, bucket));
}

TEST_F(Buckets, ANameTooShortIsRefused) {
    const auto store = NewStore(Config());
    EXPECT_NE(Create(*store, "ab"), 0);
    EXPECT_EQ(Log().CountContaining("Create bucket:[ab] failed! ["), 1u);
}

TEST_F(Buckets, WithoutANameCreateSendsNothingAndSaysMinusOne) {
    const auto store = NewStore(Config());
    CloudStoreCreateBucketContext create;
    EXPECT_EQ(store->CreateBucket(&create), -1);
    EXPECT_THAT(Log().Texts(), testing::IsEmpty());
}

TEST_F(Buckets, HeadCannotTellARefusedRequestFromAMissingBucket) {
    CloudStoreConfigInfo config = Config();
    config.m_pszSecretKey = "0123456789012345678901234567890123456789";
    const auto store = NewStore(config);
    EXPECT_FALSE(Exists(*store, Bucket()));
}

TEST_F(Buckets, ADeletedObjectIsGoneAndDeletingItAgainSucceeds) {
    const auto store = NewStore(Config());
    ASSERT_EQ(Write(*store, "object", SomeBytes(100)), 0);
    const std::string line = "Succeed to delete object object in bucket " + Bucket() + ".";
    EXPECT_EQ(Delete(*store, "object"), 0);
    EXPECT_EQ(Delete(*store, "object"), 0);
    EXPECT_THAT(Log().Texts(), ElementsAre(line, line));
    EXPECT_EQ(Read(*store, "object", 0, 99).status,
              static_cast<std::int32_t>(S3Errors::NO_SUCH_KEY));
}

TEST_F(Buckets, DeletingInAMissingBucketFailsWithTwoLines) {
    const auto store = NewStore(Config());
    const std::string bucket = NewBucketName();
    const auto status = static_cast<std::int32_t>(S3Errors::NO_SUCH_BUCKET);
    EXPECT_EQ(Delete(*store, "object", bucket), status);
    EXPECT_THAT(Log().Texts(), ElementsAre("Failed to delete object object in bucket " + bucket +
                                               ". EC:" + std::to_string(status) + ".",
                                           testing::_));
}

}  // namespace
