// A host as others write them: it includes the public headers and links the library's import
// library, nothing else of it.

#include <gtest/gtest.h>
#include <mirqos/mirqos.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/service/S3Server.h"

namespace {

TEST(Host, WritesAndReadsThroughTheLibraryItself) {
    const std::string bucket = Mirqos::Test::NewBucketName();
    constexpr std::size_t size = 3 * 1024 * 1024 + 7;

    CloudStoreContext context;
    const MIRQOSEngineStarter engine(true, context);
    MIRQOSInterface* store = CreateCloudStoreInterface(&context);
    ASSERT_NE(store, nullptr);
    CloudStoreConfigInfo config = Mirqos::Test::ConfigFor(bucket);
    config.m_nBufferSize = size;
    config.m_nThreadCount = 2;
    ASSERT_EQ(store->Init(&config), 0);
    EXPECT_EQ(store->GetBucketName(), bucket);

    CloudStoreCreateBucketContext create;
    create.m_pszBucket = bucket.c_str();
    ASSERT_EQ(store->CreateBucket(&create), 0);
    CloudStoreHeadBucketConext head;
    head.m_pszBucket = bucket.c_str();
    EXPECT_EQ(store->HeadBucket(&head), 0);
    EXPECT_TRUE(head.m_bExists);

    std::vector<unsigned char> bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<unsigned char>(i * 7919 >> 5);
    }
    CloudStoreWriteObjectContext write;
    write.m_pszBucket = bucket.c_str();
    write.m_pszKey = "from the host/a+b@c";
    write.m_pBuf = bytes.data();
    write.m_nBufLen = bytes.size();
    ASSERT_EQ(store->WriteObject(&write), 0);

    std::vector<unsigned char> back(size);
    CloudStoreReadObjectContext read;
    read.m_pszBucket = bucket.c_str();
    read.m_pszKey = write.m_pszKey;
    read.m_pBuf = back.data();
    read.m_nReadLen = size;
    read.m_nRangeStart = 0;
    read.m_nRangeEnd = size - 1;
    ASSERT_EQ(store->ReadObject(&read), 0);
    EXPECT_EQ(read.m_nReadSize, size);
    EXPECT_TRUE(back == bytes);

    CloudStoreDeleteObjectContext remove;
    remove.m_pszBucket = bucket.c_str();
    remove.m_pszKey = write.m_pszKey;
    EXPECT_EQ(store->DeleteObject(&remove), 0);
    EXPECT_NE(store->ReadObject(&read), 0);
    EXPECT_EQ(store->GetRequestCount(), 4u);
    ReleaseCloudStoreInterface(store);
}

}  // namespace
