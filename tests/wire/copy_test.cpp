#include "tests/support/UsedSdk.h"
#include "tests/wire/CopyTest.h"
#include "tests/wire/Pages.h"

namespace Mirqos::Test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kMiB = 1024 * 1024;

TEST_F(Copy, OrdinaryServicesCopyInOneRequestWithoutASizeLookUp) {
    m_server.Next(Copied());
    const auto store = MakeStore();
    EXPECT_EQ(store->CopyObject(&m_copy), 0);
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.target, "/target-bucket/t");
    EXPECT_EQ(request.Value("x-amz-copy-source"), "source-bucket/a%20folder/s%2B1");
    EXPECT_EQ(request.body, "");
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_FALSE(m_copy.m_bSourceMissing);
    EXPECT_EQ(m_copy.m_nPartSize, 0u);
    EXPECT_EQ(m_copy.m_nSrcSize, 0u);
    EXPECT_THAT(Lines(), ElementsAre("Copy from " + Ends("a folder/s+1", "t") + " success."));
    EXPECT_EQ(store->GetRequestCount(), 1u);
}

TEST_F(Copy, KeysTakeTheSubstitutionAtBothEndsAndLinesShowThemAsGiven) {
    m_server.Next(Copied());
    const auto store = StoreOfProvider(5);
    m_copy.m_pszSrcKey = "s@1";
    m_copy.m_pszDstKey = "t@1";
    EXPECT_EQ(store->CopyObject(&m_copy), 0);
    EXPECT_EQ(OnlyRequest().target, "/target-bucket/t%2B1");
    EXPECT_EQ(OnlyRequest().Value("x-amz-copy-source"), "source-bucket/s%2B1");
    EXPECT_THAT(Lines(), ElementsAre("Copy from " + Ends("s@1", "t@1") + " success."));
}

TEST_F(Copy, WithoutASourceBucketNothingIsSentBecauseTheKeyWouldNameOne) {
    const auto store = MakeStore();
    m_copy.m_pszSrcBucket = "";
    EXPECT_EQ(store->CopyObject(&m_copy), StatusOf(Aws::S3::S3Errors::MISSING_PARAMETER));
    EXPECT_THAT(m_server.Requests(), IsEmpty());
}

TEST_F(Copy, AMissingSourceIsAFailureUnlessTheCallerForgivesIt) {
    const int missing = StatusOf(Aws::S3::S3Errors::NO_SUCH_KEY);
    for (const bool forgive : {false, true}) {
        m_log.Clear();
        m_server.Next(Answer::S3Error(404, "NoSuchKey", "No key"));
        m_copy.m_bIgnoreMissingSource = forgive;
        const auto store = MakeStore();
        EXPECT_EQ(store->CopyObject(&m_copy), forgive ? 0 : missing);
        EXPECT_EQ(m_copy.m_bSourceMissing, forgive);
        EXPECT_THAT(Lines(),
                    ElementsAre("Copy from " + Ends("a folder/s+1", "t") + " failed.",
                                "[No key],EC:[" + std::to_string(forgive ? 0 : missing) + "]"));
    }
}

TEST_F(Copy, AnErrorUnderStatus200IsAFailure) {
    if (!kNoticesEmbeddedErrors) {
        GTEST_SKIP() << "1.7 takes it for a success";
    }
    m_server.Next(Answer::S3Error(200, "AccessDenied", "No"));
    m_copy.m_bIgnoreMissingSource = true;
    const auto store = MakeStore();
    EXPECT_EQ(store->CopyObject(&m_copy), 15);
    EXPECT_FALSE(m_copy.m_bSourceMissing);
}

TEST_F(Copy, GoogleLooksTheSizeUpInTheConfiguredBucketAndCopiesSmallObjectsInOneRequest) {
    m_server.Next(ListingPage({"small", "small.x"}));  // sizes are the lengths of the keys
    m_server.Next(Copied());
    const auto store = StoreOfProvider(6);
    m_copy.m_pszSrcKey = "small";
    EXPECT_EQ(store->CopyObject(&m_copy), 0);
    EXPECT_EQ(m_copy.m_nSrcSize, 5u);
    EXPECT_EQ(m_server.Requests().at(0).target, "/the-configured-bucket?list-type=2&prefix=small");
    EXPECT_EQ(m_copy.m_nPartSize, 8 * kMiB);
}

TEST_F(Copy, AFailedLookUpIsTheResultAlsoWhenTheCopySucceeds) {
    m_server.Next(Answer::S3Error(403, "AccessDenied", "No listing"));
    m_server.Next(Copied());
    const auto store = StoreOfProvider(6);
    EXPECT_EQ(store->CopyObject(&m_copy), 15);
    EXPECT_THAT(Lines(), Contains("[AwsS3Store::GetObjectSize]Failed to list object with prefix a "
                                  "folder/s+1 in bucket the-configured-bucket. EC:15."));
    EXPECT_THAT(Lines(), Contains("Copy from " + Ends("a folder/s+1", "t") + " success."));
}

TEST_F(Copy, AKeyWithAPlusIsNeverFoundWhereListedKeysAreDecoded) {
    m_server.Next(ListingPage({"s+1"}));
    m_server.Next(Copied());
    const auto store = StoreOfProvider(6);
    m_copy.m_pszSrcKey = "s@1";
    EXPECT_EQ(store->CopyObject(&m_copy), 0);
    EXPECT_EQ(m_copy.m_nSrcSize, 0u);
    EXPECT_THAT(Lines(), Contains("[AwsS3Store::GetObjectSize]Object s+1 does not exist in bucket "
                                  "the-configured-bucket"));
}

TEST_F(Copy, ExactlyOnePartIsCopiedInOneRequest) {
    m_server.Next(Copied());
    const auto store = StoreOfProvider(6);
    m_copy.m_nSrcSize = 8 * kMiB;
    EXPECT_EQ(store->CopyObject(&m_copy), 0);
    EXPECT_EQ(OnlyRequest().method, "PUT");
    EXPECT_EQ(m_copy.m_nPartSize, 8 * kMiB);
}

}  // namespace
}  // namespace Mirqos::Test
