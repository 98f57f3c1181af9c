#include <gtest/gtest.h>
#include <mirqos/mirqos.h>

#include "store/AwsS3Store.h"
#include "tests/support/RecordingOutput.h"
#include "tests/support/RecordingTransport.h"

namespace {

// The earlier client is left running on purpose; the leak checker of this program is told so.
TEST(StoreSecondInit, TheEarlierClientStaysAliveAndTextsThatAreNullKeepTheirValue) {
    // Nothing is given back nor stopped: the earlier client and its threads, which may log, go on
    // until the process ends.
    ASSERT_EQ(InitCloudStoreContext(nullptr), 0);
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

}  // namespace
