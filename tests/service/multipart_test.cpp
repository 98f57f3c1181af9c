#include <string>

#include "tests/service/LargeObjectTest.h"

namespace {

using Mirqos::Test::Bytes;
using Mirqos::Test::SomeBytes;

constexpr std::size_t kPart = 8 * 1024 * 1024;

using MultiPart = Mirqos::Test::LargeObjectTest;

TEST_F(MultiPart, ALargeObjectGoesUpInPartsAndComesBackInRanges) {
    const auto store = ThreadedStore();
    const Bytes bytes = SomeBytes(16 * kPart - 12345);
    const std::string upload = Open(*store, "large");
    const int number = SubmitAll(*store, upload, "large", bytes, kPart);
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
    EXPECT_THAT(OpenUploads(), testing::ElementsAre(upload));
    EXPECT_EQ(Abort(*store, upload, "aborted"), 0);
    EXPECT_THAT(OpenUploads(), testing::IsEmpty());
    EXPECT_FALSE(Exists("aborted"));
}

TEST_F(MultiPart, AnAbortWithoutAnIdLeavesTheObject) {
    const auto store = ThreadedStore();
    const Bytes bytes = SomeBytes(1000);
    ASSERT_EQ(Write(*store, "kept", bytes), 0);
    EXPECT_NE(Abort(*store, "", "kept"), 0);
    EXPECT_TRUE(ReadBack(*store, "kept", bytes.size()) == bytes);
}

TEST_F(MultiPart, TwoUploadsOfOneKeyDoNotMix) {
    const auto store = ThreadedStore();
    const Bytes one = SomeBytes(5 * kMiB + 1000, 1);
    const Bytes two = SomeBytes(5 * kMiB + 2000, 2);
    const std::string first = Open(*store, "key");
    const std::string second = Open(*store, "key");
    for (const int number : {2, 1}) {
        for (const auto& [upload, bytes] : {std::pair(&first, &one), std::pair(&second, &two)}) {
            const bool last = number == 2;
            auto part = Part(*upload, "key", number, bytes->data() + (last ? 5 * kMiB : 0),
                             last ? bytes->size() - 5 * kMiB : 5 * kMiB, number == 1);
            EXPECT_EQ(store->DoMultiPartUploadAsync(&part), 0);
        }
    }
    auto finish = Finish(first, "key", 2);
    EXPECT_EQ(store->FinishMultiPartUploadAsync(&finish), 0);
    EXPECT_TRUE(ReadBack(*store, "key", one.size()) == one);
    finish = Finish(second, "key", 2);
    EXPECT_EQ(store->FinishMultiPartUploadAsync(&finish), 0);
    EXPECT_TRUE(ReadBack(*store, "key", two.size()) == two);
    EXPECT_THAT(OpenUploads(), testing::IsEmpty());
}

}  // namespace
