#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "tests/service/ServiceTest.h"

namespace {

using Mirqos::Test::Bytes;
using Mirqos::Test::ServiceTest;
using Mirqos::Test::SomeBytes;

constexpr std::size_t kPart = 8 * 1024 * 1024;

class MultiPart : public ServiceTest {
protected:
    Mirqos::Test::StorePointer ThreadedStore() {
        CloudStoreConfigInfo config = Config();
        config.m_nThreadCount = 4;
        return NewStore(config);
    }
    std::string Open(MIRQOSInterface& store, const char* key) {
        CloudStoreInitMultiPartUploadContext init;
        init.m_pszBucket = Bucket().c_str();
        init.m_pszKey = key;
        CloudStoreInitMultiPartUploadOutcome outcome;
        EXPECT_EQ(store.InitMultiPartUpload(&init, &outcome), 0);
        return outcome.m_szUploadId;
    }
    CloudStoreMultiPartUploadContext Part(const std::string& upload, const char* key, int number,
                                          const unsigned char* bytes, std::size_t size, bool last) {
        CloudStoreMultiPartUploadContext part;
        part.m_pszUploadId = upload.c_str();
        part.m_pszKey = key;
        part.m_pszBucket = Bucket().c_str();
        part.m_nPartNumber = static_cast<std::uint64_t>(number);
        part.m_pBuf = bytes;
        part.m_nBufLen = static_cast<std::int32_t>(size);
        part.m_bLastPart = last;
        return part;
    }
    CloudStoreFinishMultiPartUploadContext Finish(const std::string& upload, const char* key,
                                                  int parts) {
        CloudStoreFinishMultiPartUploadContext finish;
        finish.m_pszUploadId = upload.c_str();
        finish.m_pszBucket = Bucket().c_str();
        finish.m_pszKey = key;
        finish.m_nPartCount = parts;
        return finish;
    }
    /// Reads the object back in ranges of one part each, straight into place.
    Bytes ReadBack(MIRQOSInterface& store, const char* key, std::size_t size) {
        Bytes back(size);
        CloudStoreReadObjectContext read;
        for (std::size_t first = 0; first < size; first += kPart) {
            const std::size_t length = std::min(kPart, size - first);
            read.m_pszKey = key;
            read.m_pszBucket = Bucket().c_str();
            read.m_pBuf = back.data() + first;
            read.m_nReadLen = length;
            read.m_nReadSize = 0;
            read.m_nRangeStart = first;
            read.m_nRangeEnd = first + length - 1;
            EXPECT_EQ(store.ReadObjectAsync(&read), 0);
        }
        EXPECT_EQ(store.WaitForReadObjectAsync(&read), 0);
        return back;
    }
};

TEST_F(MultiPart, ALargeObjectGoesUpInPartsAndComesBackInRanges) {
    const auto store = ThreadedStore();
    const Bytes bytes = SomeBytes(16 * kPart - 12345);
    const std::string upload = Open(*store, "large");
    int number = 0;
    for (std::size_t first = 0; first < bytes.size(); first += kPart) {
        const std::size_t length = std::min(kPart, bytes.size() - first);
        auto part = Part(upload, "large", ++number, bytes.data() + first, length,
                         first + length == bytes.size());
        ASSERT_EQ(store->DoMultiPartUploadAsync(&part), 0);
    }
    auto finish = Finish(upload, "large", number);
    ASSERT_EQ(store->FinishMultiPartUploadAsync(&finish), 0);
    EXPECT_TRUE(ReadBack(*store, "large", bytes.size()) == bytes);
}

TEST_F(MultiPart, SentAndCopiedPartsJoinInTheOrderOfTheirNumbers) {
    const auto store = ThreadedStore();
    const Bytes source = SomeBytes(6 * 1024 * 1024, 1);
    const Bytes tail = SomeBytes(1000, 2);
    ASSERT_EQ(Write(*store, "the source", source), 0);
    const std::string upload = Open(*store, "joined");
    auto last = Part(upload, "joined", 2, tail.data(), tail.size(), true);
    EXPECT_EQ(store->MultiPartUpload(&last), 0);
    const std::string copySource = Bucket() + "/the source";
    CloudStoreMultiPartCopyContext copy;
    copy.m_pszUploadId = upload.c_str();
    copy.m_pszKey = "joined";
    copy.m_pszBucket = Bucket().c_str();
    copy.m_pszCopySource = copySource.c_str();
    copy.m_nRangeStart = 100;
    copy.m_nRangeEnd = source.size() - 1;
    copy.m_nPartNumber = 1;
    EXPECT_EQ(store->MultiPartCopy(&copy), 0);
    auto finish = Finish(upload, "joined", 2);
    EXPECT_EQ(store->FinishMultiPartUpload(&finish), 0);
    Bytes expected(source.begin() + 100, source.end());
    expected.insert(expected.end(), tail.begin(), tail.end());
    EXPECT_TRUE(ReadBack(*store, "joined", expected.size()) == expected);
}

TEST_F(MultiPart, AnAbortedUploadLeavesNoObject) {
    const auto store = ThreadedStore();
    const Bytes bytes = SomeBytes(1000);
    const std::string upload = Open(*store, "aborted");
    auto part = Part(upload, "aborted", 1, bytes.data(), bytes.size(), true);
    EXPECT_EQ(store->DoMultiPartUploadAsync(&part), 0);
    auto finish = Finish(upload, "aborted", 2);
    EXPECT_NE(store->FinishMultiPartUploadAsync(&finish), 0) << "part 2 was never sent";
    CloudStoreAbortMultiPartUploadContext abort;
    abort.m_pszUploadId = upload.c_str();
    abort.m_pszBucket = Bucket().c_str();
    abort.m_pszKey = "aborted";
    EXPECT_EQ(store->AbortMultiPartUpload(&abort), 0);
    CloudStoreHeadObjectConext head;
    head.m_pszBucket = Bucket().c_str();
    head.m_pszKey = "aborted";
    EXPECT_NE(store->HeadObject(&head), 0);
    EXPECT_FALSE(head.m_bExists);
}

}  // namespace
