#include <string>

#include "tests/support/KeyCorpus.h"
#include "tests/wire/AsyncReadTest.h"
#include "tests/wire/UploadOfKey.h"

namespace Mirqos::Test {
namespace {

using testing::Contains;
using testing::ElementsAre;

const std::int32_t kRefused = StatusOf(Aws::S3::S3Errors::MISSING_PARAMETER);

/// Keys that the SDK would turn into other ones, or into none, on the way. They end in a refusal
/// where they name an object in a request's path.
class RefusedKeys : public AsyncRead, public testing::WithParamInterface<std::int32_t> {
protected:
    std::unique_ptr<AwsS3Store> MakeProviderStore() {
        Setup setup;
        setup.provider = GetParam();
        return MakeStore(setup);
    }
    static std::int32_t Copy(MIRQOSInterface& store, const std::string& source,
                             const std::string& target) {
        CloudStoreCopyObjectContext copy;
        copy.m_pszSrcBucket = "source-bucket";
        copy.m_pszDstBucket = kBucket;
        copy.m_pszSrcKey = source.c_str();
        copy.m_pszDstKey = target.c_str();
        copy.m_nSrcSize = 1;
        return store.CopyObject(&copy);
    }
    UploadOfKey OpenOne(MIRQOSInterface& store) {
        m_server.Next(UploadOfKey::Opened());
        UploadOfKey upload(store, "upload");
        EXPECT_EQ(upload.Open(), 0);
        return upload;
    }
};

INSTANTIATE_TEST_SUITE_P(Types, RefusedKeys, testing::Values(0, 5, 6),
                         [](const auto& info) { return "Type" + std::to_string(info.param); });

TEST_P(RefusedKeys, BecomeNoRequestOfAnyOperationOnAnObject) {
    const auto store = MakeProviderStore();
    for (const std::string& key : KeysNotKeptBySdk()) {
        SCOPED_TRACE(testing::PrintToString(key));
        EXPECT_EQ(Write(*store, key, "v"), kRefused);
        EXPECT_EQ(Read(*store, key).status, kRefused);
        OneRead read(0, 10, key.c_str());
        EXPECT_EQ(store->ReadObjectAsync(&read.context), 0);
        EXPECT_EQ(store->WaitForReadObjectAsync(&read.context), kRefused);
        EXPECT_TRUE(read.Untouched());
        CloudStoreHeadObjectConext head;
        head.m_pszBucket = kBucket;
        head.m_pszKey = key.c_str();
        EXPECT_EQ(store->HeadObject(&head), kRefused);
        EXPECT_FALSE(head.m_bExists);
        EXPECT_EQ(Delete(*store, key), kRefused);
        EXPECT_EQ(Copy(*store, "source", key), kRefused);
        PutObjectTaggingContext put;
        put.m_pszBucket = kBucket;
        put.m_pszKey = key.c_str();
        put.m_pTags = "a:b\0";
        EXPECT_EQ(store->PutObjectTagging(&put), kRefused);
        GetObjectTaggingContext get;
        get.m_pszBucket = kBucket;
        get.m_pszKey = key.c_str();
        EXPECT_EQ(store->GetObjectTagging(&get), kRefused);
        EXPECT_EQ(UploadOfKey(*store, key).Open(), kRefused);
        EXPECT_EQ(UploadOfKey(*store, key).Abort(), kRefused);
    }
    EXPECT_TRUE(m_server.Requests().empty());
}

TEST_P(RefusedKeys, BecomeNoRequestOfAnOpenUpload) {
    const auto store = MakeProviderStore();
    for (const std::string& key : KeysNotKeptBySdk()) {
        SCOPED_TRACE(testing::PrintToString(key));
        const UploadOfKey refused(*store, key);
        OpenOne(*store);
        EXPECT_EQ(refused.SendPart(), kRefused);
        EXPECT_EQ(refused.CopySecondPart("source-bucket/source"), kRefused);
        EXPECT_EQ(refused.Finish(1), kRefused);
        const UploadOfKey upload = OpenOne(*store);
        EXPECT_EQ(refused.HandPartOver(), 0);
        EXPECT_EQ(upload.FinishHandedOver(1), kRefused);
    }
    EXPECT_EQ(m_server.Requests().size(), 2 * KeysNotKeptBySdk().size()) << "the openings";
}

/// A header names the source: it loses its empty parts too, but no dots.
TEST_P(RefusedKeys, AreSourcesOfCopiesWhereTheirDotsAlonePreventAPath) {
    m_server.On("PUT", "/")
        .Always(
            Answer::Status(200).Body("<CopyObjectResult><ETag>\"e\"</ETag></CopyObjectResult>"));
    const auto store = MakeProviderStore();
    const UploadOfKey upload = OpenOne(*store);
    std::size_t sent = 1;
    for (const std::string& key : KeysNotKeptBySdk()) {
        SCOPED_TRACE(testing::PrintToString(key));
        const std::string source = "source-bucket/" + key;
        const bool isSent = source.find("//") == source.npos;
        EXPECT_EQ(Copy(*store, key, "target"), isSent ? 0 : kRefused);
        EXPECT_EQ(upload.CopySecondPart(source), isSent ? 0 : kRefused);
        sent += isSent ? 2 : 0;
        ASSERT_EQ(m_server.Requests().size(), sent);
        if (isSent) {
            EXPECT_EQ(*m_server.Requests().back().Header("x-amz-copy-source"), source);
        }
    }
    EXPECT_GT(sent, 1u);
}

/// A reader of the request's document would take the carriage return for a line feed.
TEST_P(RefusedKeys, WithCarriageReturnsRefuseADeletionWithOneRequest) {
    m_server.On("POST", "/").Always(Answer::Status(200).Body("<DeleteResult/>"));
    m_server.On("HEAD", "/").Always(Answer::Status(200));
    m_server.On("DELETE", "/").Always(Answer::Status(204));
    const auto store = MakeProviderStore();
    m_log.Clear();
    CloudStoreDeleteObjectsContextV2 remove;
    remove.m_pszBucket = kBucket;
    remove.m_pKeys = "a\0b\rc\0d\0";
    const bool oneByOne = GetParam() == 6;  // in no document
    EXPECT_EQ(store->DeleteObjectsV2(&remove), oneByOne ? 0 : kRefused);
    EXPECT_EQ(m_server.Requests().size(), oneByOne ? 6u : 0u);
    if (!oneByOne) {
        EXPECT_THAT(Lines(), ElementsAre("The SDK cannot send the key [b\rc] as it stands.",
                                         "Failed to delete objects. count:3, bucket:the-bucket, "
                                         "EC:" +
                                             std::to_string(kRefused) + ".",
                                         "A key cannot be sent."));
    }
}

TEST_P(RefusedKeys, AreNamedInTheLog) {
    const auto store = MakeProviderStore();
    m_log.Clear();
    EXPECT_EQ(Delete(*store, ".."), kRefused);
    EXPECT_THAT(Lines(), ElementsAre("The SDK cannot send the key [..] as it stands.",
                                     "Failed to delete object .. in bucket the-bucket. EC:" +
                                         std::to_string(kRefused) + ".",
                                     "Missing required field [Key]"));
    m_log.Clear();
    EXPECT_EQ(Copy(*store, "a//b", "target"), kRefused);
    EXPECT_THAT(Lines(),
                Contains("The SDK cannot send the key [source-bucket/a//b] as it stands."));
}

}  // namespace
}  // namespace Mirqos::Test
