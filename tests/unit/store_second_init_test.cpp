#include <gtest/gtest.h>
#include <mirqos/mirqos.h>

#include <cstddef>
#include <string>

#include "store/AwsS3Store.h"
#include "tests/support/RecordingOutput.h"
#include "tests/support/RecordingTransport.h"
#include "tests/support/ScriptedServer.h"

namespace {

/// Starts the library and does not stop it: the earlier clients are left running on purpose, until
/// the process ends. The leak checker of this program is told so.
class StoreSecondInit : public testing::Test {
protected:
    StoreSecondInit() { EXPECT_EQ(InitCloudStoreContext(nullptr), 0); }
};

TEST_F(StoreSecondInit, TheEarlierClientStaysAliveAndTextsThatAreNullKeepTheirValue) {
    // Not given back: the threads of the earlier client may log until the process ends.
    static auto* const log = new Mirqos::Test::LogRecording;
    Mirqos::Test::TransportRecording transports;
    {
        AwsS3Store store;
        CloudStoreConfigInfo first;
        first.m_pszRegion = "eu-west-1";
        first.m_pszBucket = "first";
        first.m_pszEndPoint = "first.example.net";
        first.m_nThreadCount = 2;
        ASSERT_EQ(store.Init(&first), 0);
        CloudStoreConfigInfo second;
        second.m_pszBucket = "second";
        second.m_nThreadCount = 3;
        ASSERT_EQ(store.Init(&second), 0);

        EXPECT_EQ(log->CountContaining("Destruct the Backup Executor!"), 0u);
        EXPECT_STREQ(store.GetRegion(), "eu-west-1");
        EXPECT_STREQ(store.GetBucketName(), "second");
        CloudStoreDeleteObjectContext remove;
        remove.m_pszBucket = "b";
        remove.m_pszKey = "k";
        EXPECT_EQ(store.DeleteObject(&remove), 0);
        EXPECT_EQ(transports.Requests().back().request.host, "first.example.net");
    }
    // The store's end takes the second client with its threads along, and only that one.
    EXPECT_EQ(log->CountContaining("Destruct the Backup Executor!"), 1u);
    EXPECT_EQ(log->CountContaining("is existed."), 3u);
}

TEST_F(StoreSecondInit, TheSchemeAndTheProviderAreTheSecondOnes) {
    Mirqos::Test::TransportRecording transports;
    AwsS3Store store;
    CloudStoreConfigInfo config;
    config.m_pszEndPoint = "storage.example.net";
    const auto lastSent = [&] {
        CloudStoreDeleteObjectContext remove;
        remove.m_pszBucket = "b";
        remove.m_pszKey = "a@b";
        EXPECT_EQ(store.DeleteObject(&remove), 0);
        return transports.Requests().back().request;
    };
    ASSERT_EQ(store.Init(&config), 0);
    EXPECT_TRUE(lastSent().https);
    config.m_bUseHttps = 0;
    config.m_nProviderType = 5;
    ASSERT_EQ(store.Init(&config), 0);
    EXPECT_FALSE(lastSent().https);
    EXPECT_EQ(lastSent().target, "/b/a%2Bb");
    config.m_bUseHttps = 1;
    config.m_nProviderType = 0;
    ASSERT_EQ(store.Init(&config), 0);
    EXPECT_TRUE(lastSent().https);
    EXPECT_NE(lastSent().target, "/b/a%2Bb");
}

TEST_F(StoreSecondInit, TheWorkBufferIsTheSecondOne) {
    constexpr std::size_t size = 16 * 1024 * 1024;
    Mirqos::Test::ScriptedServer server;
    const std::string endpoint = server.Endpoint();
    AwsS3Store store;
    CloudStoreConfigInfo config;
    config.m_pszEndPoint = endpoint.c_str();
    config.m_bUseHttps = 0;
    config.m_nBufferSize = 1;
    ASSERT_EQ(store.Init(&config), 0);
    config.m_nBufferSize = size;
    ASSERT_EQ(store.Init(&config), 0);

    const std::string body(size, 'b');
    server.Next(Mirqos::Test::Answer::Status(200).Body(body));
    std::string delivered(size, '\0');
    CloudStoreReadObjectContext read;
    read.m_pszBucket = "b";
    read.m_pszKey = "k";
    read.m_pBuf = reinterpret_cast<unsigned char*>(delivered.data());
    read.m_nReadLen = size;
    read.m_nRangeEnd = size - 1;
    EXPECT_EQ(store.ReadObject(&read), 0);
    EXPECT_EQ(read.m_nReadSize, size);
    EXPECT_TRUE(delivered == body);
}

}  // namespace
