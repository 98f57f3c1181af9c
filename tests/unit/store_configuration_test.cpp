#include <aws/core/utils/threading/Semaphore.h>
#include <gmock/gmock.h>
#include <mirqos/mirqos.h>

#include <chrono>
#include <new>
#include <string>
#include <system_error>

#include "exec/ExecutorSeam.h"
#include "store/AwsS3Store.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/LibraryLogRecording.h"
#include "tests/support/RecordingTransport.h"
#include "tests/support/StoreTestAccess.h"
#include "tests/support/UsedSdk.h"

namespace {

using Mirqos::Test::LibraryLogRecording;
using Mirqos::Test::RecordingTransport;
using Mirqos::Test::TransportRecording;
using testing::HasSubstr;

class StoreConfiguration : public testing::Test {
protected:
    RecordingTransport::Sent SentBy(AwsS3Store& store, const char* key = "key") {
        CloudStoreWriteObjectContext write;
        write.m_pszBucket = "bucket-of-tests";
        write.m_pszKey = key;
        EXPECT_EQ(store.WriteObject(&write), 0);
        return m_transports.Requests().back();
    }

    RecordingTransport::Sent SentWith(CloudStoreConfigInfo config) {
        AwsS3Store store;
        EXPECT_EQ(store.Init(&config), 0);
        return SentBy(store);
    }

    /// Newer SDKs name the region in the host of every one of them.
    static constexpr const char* kHostOfDefaultRegion =
        Mirqos::Test::kSdk1_11 ? "bucket-of-tests.s3.us-east-1.amazonaws.com"
                               : "bucket-of-tests.s3.amazonaws.com";

    const MIRQOSEngineStarter m_engine{true, CloudStoreContext()};
    LibraryLogRecording m_log;  // without the start's own line
    TransportRecording m_transports;
};

TEST_F(StoreConfiguration, ANewStoreHasEmptyTextsAndHasSentNothing) {
    AwsS3Store store;
    EXPECT_STREQ(store.GetRegion(), "");
    EXPECT_STREQ(store.GetBucketName(), "");
    EXPECT_STREQ(store.GetAccessKeyId(), "");
    EXPECT_STREQ(store.GetSecretKey(), "");
    EXPECT_EQ(store.GetRequestCount(), 0u);
}

TEST_F(StoreConfiguration, InitWithoutMemoryForItsThreadsThrowsAndMayBeCalledAgain) {
    CloudStoreConfigInfo config;
    config.m_nThreadCount = 2;
    AwsS3Store store;
    {
        const Mirqos::Test::FailingAllocation none(sizeof(Aws::Utils::Threading::Semaphore));
        EXPECT_THROW(store.Init(&config), std::bad_alloc);
    }
    EXPECT_EQ(m_log.CountContaining("is started."), 0u);
    EXPECT_EQ(store.Init(&config), 0);
    SentBy(store);
}

TEST_F(StoreConfiguration, AnInitWithoutMemoryForItsBufferKeepsTheFormerBufferAndItsSize) {
    if (!Mirqos::Test::kBundledSdk) {
        GTEST_SKIP() << "the arrays of an SDK take their memory where no test can refuse it";
    }
    constexpr std::int32_t kLarge = 2 * 1024 * 1024;
    CloudStoreConfigInfo config;
    config.m_nBufferSize = 4096;
    config.m_nProviderType = 6;
    AwsS3Store store;
    ASSERT_EQ(store.Init(&config), 0);
    config.m_nBufferSize = kLarge;
    {
        const Mirqos::Test::FailingAllocation none(kLarge);
        EXPECT_THROW(store.Init(&config), std::bad_alloc);
    }
    EXPECT_EQ(StoreTestAccess::BufferSize(store), 4096);
}

TEST_F(StoreConfiguration, AThreadThatTheSystemRefusesLeavesInitAsALackOfMemory) {
    CloudStoreConfigInfo config;
    config.m_nThreadCount = 2;
    AwsS3Store store;
    Mirqos::TheExecutorSeam().onThreadCreation = [] {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again),
                                "no thread");
    };
    EXPECT_THROW(store.Init(&config), std::bad_alloc);
    Mirqos::TheExecutorSeam().onThreadCreation = nullptr;
    EXPECT_EQ(m_log.CountContaining("AwsS3Store::Init thread count 2 is refused: [no thread"), 1u);
    EXPECT_EQ(store.Init(&config), 0);
    SentBy(store);
}

TEST_F(StoreConfiguration, InitKeepsCopiesOfTheTexts) {
    char region[] = "eu-north-1";
    char bucket[] = "the-bucket";
    char id[] = "ID";
    char secret[] = "SECRET";
    CloudStoreConfigInfo config;
    config.m_pszRegion = region;
    config.m_pszBucket = bucket;
    config.m_pszAccessKeyId = id;
    config.m_pszSecretKey = secret;
    AwsS3Store store;
    ASSERT_EQ(store.Init(&config), 0);
    region[0] = bucket[0] = id[0] = secret[0] = '?';
    EXPECT_STREQ(store.GetRegion(), "eu-north-1");
    EXPECT_STREQ(store.GetBucketName(), "the-bucket");
    EXPECT_STREQ(store.GetAccessKeyId(), "ID");
    EXPECT_STREQ(store.GetSecretKey(), "SECRET");
}

TEST_F(StoreConfiguration, WithEveryTextNullTheDefaultRegionAndVirtualHostsAreUsed) {
    CloudStoreConfigInfo config;
    AwsS3Store store;
    ASSERT_EQ(store.Init(&config), 0);
    EXPECT_STREQ(store.GetRegion(), "");
    EXPECT_STREQ(store.GetBucketName(), "");
    const auto sent = SentBy(store);
    EXPECT_EQ(sent.request.host, kHostOfDefaultRegion);
    EXPECT_EQ(sent.request.target, "/key");
    EXPECT_TRUE(sent.request.https);
    EXPECT_EQ(sent.request.port, 443);
}

TEST_F(StoreConfiguration, ARegionSelectsItsEndpointAndItsSignature) {
    CloudStoreConfigInfo config;
    config.m_pszRegion = "eu-west-3";
    config.m_pszAccessKeyId = "ID";
    config.m_pszSecretKey = "SECRET";
    const auto sent = SentWith(config);
    EXPECT_EQ(sent.request.host, "bucket-of-tests.s3.eu-west-3.amazonaws.com");
    EXPECT_THAT(sent.Header("authorization"), HasSubstr("Credential=ID/"));
    EXPECT_THAT(sent.Header("authorization"), HasSubstr("/eu-west-3/s3/aws4_request"));
}

TEST_F(StoreConfiguration, AnEndpointIsReachedByPath) {
    CloudStoreConfigInfo config;
    config.m_pszEndPoint = "storage.example.net:9000";
    const auto sent = SentWith(config);
    EXPECT_EQ(sent.request.host, "storage.example.net");
    EXPECT_EQ(sent.request.port, 9000);
    EXPECT_EQ(sent.request.target, "/bucket-of-tests/key");
}

TEST_F(StoreConfiguration, AnEmptyEndpointMeansTheProvidersOwn) {
    CloudStoreConfigInfo config;
    config.m_pszEndPoint = "";
    EXPECT_EQ(SentWith(config).request.host, kHostOfDefaultRegion);
}

TEST_F(StoreConfiguration, ZeroSelectsHttpAtTheProvidersOwnHostsToo) {
    CloudStoreConfigInfo config;
    config.m_bUseHttps = 0;
    const auto plain = SentWith(config);
    EXPECT_FALSE(plain.request.https);
    EXPECT_EQ(plain.request.port, 80);
    EXPECT_EQ(plain.request.host, kHostOfDefaultRegion);
}

TEST_F(StoreConfiguration, ZeroSelectsHttpAndAnythingElseHttps) {
    CloudStoreConfigInfo config;
    config.m_pszEndPoint = "storage.example.net";
    config.m_bUseHttps = 0;
    const auto plain = SentWith(config);
    EXPECT_FALSE(plain.request.https);
    EXPECT_EQ(plain.request.port, 80);
    for (const int32_t nonZero : {1, 2, -1}) {
        config.m_bUseHttps = nonZero;
        EXPECT_TRUE(SentWith(config).request.https) << nonZero;
    }
}

TEST_F(StoreConfiguration, PayloadsGoUnsignedOverHttpsAndHashedOverHttp) {
    CloudStoreConfigInfo config;
    config.m_pszAccessKeyId = "ID";
    config.m_pszSecretKey = "SECRET";
    config.m_pszEndPoint = "storage.example.net";
    EXPECT_EQ(SentWith(config).Header("x-amz-content-sha256"), "UNSIGNED-PAYLOAD");
    config.m_bUseHttps = 0;
    EXPECT_EQ(SentWith(config).Header("x-amz-content-sha256"),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST_F(StoreConfiguration, RequestsHaveThreeMinutesToConnectAndFiveToAnswer) {
    const auto sent = SentWith(CloudStoreConfigInfo());
    EXPECT_EQ(sent.limits.connect, std::chrono::minutes(3));
    EXPECT_EQ(sent.limits.stall, std::chrono::minutes(5));
}

TEST_F(StoreConfiguration, ThreadCountZeroMakesNoExecutor) {
    CloudStoreConfigInfo config;
    SentWith(config);
    EXPECT_EQ(m_log.CountContaining("Upload thread"), 0u);
    EXPECT_EQ(m_log.CountContaining("Destruct the Backup Executor!"), 0u);
}

TEST_F(StoreConfiguration, ThreadCountFourMakesOneExecutorWithFourThreadsThatEndWithTheStore) {
    CloudStoreConfigInfo config;
    config.m_nThreadCount = 4;
    SentWith(config);
    EXPECT_EQ(m_log.CountContaining("is started."), 4u);
    EXPECT_EQ(m_log.CountContaining("Destruct the Backup Executor!"), 1u);
    EXPECT_EQ(m_log.CountContaining("is existed."), 4u);
}

TEST_F(StoreConfiguration, ANegativeThreadCountCountsAsZeroAndSaysSo) {
    CloudStoreConfigInfo config;
    config.m_nThreadCount = -3;
    SentWith(config);
    const std::vector<std::string> texts = m_log.Texts();
    EXPECT_EQ(texts.back(), "AwsS3Store::Init thread count -3 counts as 0.");
    EXPECT_EQ(texts.size() - m_log.CountContaining("[AWS_SDK] "), 1u);
    EXPECT_TRUE(texts.size() == 1 || !Mirqos::Test::kBundledSdk) << "which warns of nothing";
}

TEST_F(StoreConfiguration, OnlyProviderTypesFiveAndSixSendPlusForAt) {
    for (const int32_t type : {0, 1, 2, 3, 4, 5, 6, 7}) {
        CloudStoreConfigInfo config;
        config.m_nProviderType = type;
        AwsS3Store store;
        ASSERT_EQ(store.Init(&config), 0);
        const bool substitutes = type == 5 || type == 6;
        const char* const plain = Mirqos::Test::kBundledSdk ? "/a%40b%40c" : "/a@b@c";
        EXPECT_EQ(SentBy(store, "a@b@c").request.target, substitutes ? "/a%2Bb%2Bc" : plain)
            << type;
    }
}

TEST_F(StoreConfiguration, ReleasingABucketListFreesItOnce) {
    AwsS3Store store;
    CloudStoreListBucketContext list;
    list.m_pBucketNames = new char[3]{'a', '\0', '\0'};
    store.ReleaseBucketList(&list);
    EXPECT_EQ(list.m_pBucketNames, nullptr);
    store.ReleaseBucketList(&list);
    EXPECT_EQ(list.m_pBucketNames, nullptr);
    EXPECT_TRUE(m_log.Texts().empty());
}

}  // namespace
