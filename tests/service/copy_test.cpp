#include <algorithm>
#include <string>

#include "store/AwsSdk.h"
#include "tests/service/ServiceTest.h"
#include "tests/support/FaultyFiles.h"

namespace {

using Mirqos::Test::Bytes;
using Mirqos::Test::FaultyFiles;
using Mirqos::Test::ServiceTest;
using Mirqos::Test::SomeBytes;

constexpr std::size_t kMiB = 1024 * 1024;

class Copy : public ServiceTest {
protected:
    Mirqos::Test::StorePointer StoreOfProvider(std::int32_t provider) {
        CloudStoreConfigInfo config = Config(4 * kMiB);
        config.m_pszBucket = Bucket().c_str();
        config.m_nProviderType = provider;
        return NewStore(config);
    }
    CloudStoreCopyObjectContext CopyOf(const char* source, const char* target) {
        CloudStoreCopyObjectContext copy;
        copy.m_pszSrcBucket = copy.m_pszDstBucket = Bucket().c_str();
        copy.m_pszSrcKey = source;
        copy.m_pszDstKey = target;
        copy.m_bIgnoreMissingSource = false;
        return copy;
    }
    Bytes WholeOf(MIRQOSInterface& store, const char* key, std::size_t size) {
        Bytes whole;
        for (std::size_t first = 0; first < size; first += kMiB) {
            const auto piece = Read(store, key, first, std::min(first + kMiB, size) - 1);
            EXPECT_EQ(piece.status, 0);
            const Bytes delivered = piece.Delivered();
            whole.insert(whole.end(), delivered.begin(), delivered.end());
        }
        return whole;
    }
};

TEST_F(Copy, TheServiceCopiesAnObjectOfAnOddKey) {
    const auto store = StoreOfProvider(0);
    const Bytes bytes = SomeBytes(100000);
    ASSERT_EQ(Write(*store, "a folder/s+1 %41", bytes), 0);
    auto copy = CopyOf("a folder/s+1 %41", "t @2");
    EXPECT_EQ(store->CopyObject(&copy), 0);
    EXPECT_TRUE(WholeOf(*store, "t @2", bytes.size()) == bytes);
}

TEST_F(Copy, TwentyMebibytesGoThroughATemporaryFileAndEightDoNot) {
    const auto store = StoreOfProvider(6);
    for (const std::size_t size : {20 * kMiB, 8 * kMiB}) {
        FaultyFiles files;
        const Bytes bytes = SomeBytes(size);
        ASSERT_EQ(Write(*store, "source", bytes), 0);
        auto copy = CopyOf("source", "target");
        EXPECT_EQ(store->CopyObject(&copy), 0);
        EXPECT_EQ(copy.m_nSrcSize, size);
        EXPECT_EQ(copy.m_nPartSize, 8 * kMiB);
        EXPECT_EQ(files.Name().empty(), size == 8 * kMiB);
        EXPECT_FALSE(files.LeftBehind());
        EXPECT_TRUE(WholeOf(*store, "target", size) == bytes);
    }
}

TEST_F(Copy, AMissingSourceIsAFailureOrForgiven) {
    const auto store = StoreOfProvider(0);
    auto copy = CopyOf("missing", "target");
    EXPECT_EQ(store->CopyObject(&copy), static_cast<std::int32_t>(Aws::S3::S3Errors::NO_SUCH_KEY));
    copy.m_bIgnoreMissingSource = true;
    EXPECT_EQ(store->CopyObject(&copy), 0);
    EXPECT_TRUE(copy.m_bSourceMissing);
}

TEST_F(Copy, AMissingLargeSourceIsAFailureOrForgivenAndLeavesNothing) {
    const auto store = StoreOfProvider(6);
    FaultyFiles files;
    auto copy = CopyOf("missing", "target");
    copy.m_nSrcSize = 20 * kMiB;
    EXPECT_EQ(store->CopyObject(&copy),
              static_cast<std::int32_t>(Aws::S3::S3Errors::RESOURCE_NOT_FOUND));
    copy.m_bIgnoreMissingSource = true;
    EXPECT_EQ(store->CopyObject(&copy), 0);
    EXPECT_TRUE(copy.m_bSourceMissing);
    EXPECT_TRUE(files.Name().empty()) << "nothing was fetched";
    CloudStoreListPartContext list;
    list.m_pszBucket = Bucket().c_str();
    list.m_pszPrefix = "";
    EXPECT_EQ(store->ListMultipartUploads(&list), 0);
    EXPECT_TRUE(list.m_lstParts.empty());
}

TEST_F(Copy, AFileThatCannotBeReadOnlyLeavesAnUploadOpenBeforeTheFirstPart) {
    const auto store = StoreOfProvider(6);
    ASSERT_EQ(Write(*store, "source", SomeBytes(20 * kMiB)), 0);
    for (const int turn : {1, 2}) {
        FaultyFiles files;
        files.Fail(FaultyFiles::Call::read, 79, turn);
        auto copy = CopyOf("source", "target");
        EXPECT_EQ(store->CopyObject(&copy), 79);
        EXPECT_FALSE(files.LeftBehind());
        EXPECT_EQ(files.OpenFiles(), 0);
    }
    CloudStoreListPartContext list;
    list.m_pszBucket = Bucket().c_str();
    list.m_pszPrefix = "";
    EXPECT_EQ(store->ListMultipartUploads(&list), 0);
    EXPECT_EQ(list.m_lstParts.size(), 1u) << "that of the first copy";
    CloudStoreHeadObjectConext head;
    head.m_pszBucket = Bucket().c_str();
    head.m_pszKey = "target";
    EXPECT_NE(store->HeadObject(&head), 0);
}

}  // namespace
