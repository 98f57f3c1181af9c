#include "tests/wire/Pages.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Metadata : public WireTest {
protected:
    static std::int32_t HeadKey(AwsS3Store& store, const char* key, bool& exists) {
        CloudStoreHeadObjectConext head;
        head.m_pszBucket = kBucket;
        head.m_pszKey = key;
        head.m_bExists = exists;
        const std::int32_t status = store.HeadObject(&head);
        exists = head.m_bExists;
        return status;
    }
    static std::int32_t Search(AwsS3Store& store, const char* prefix, bool& exists) {
        CloudStoreSearchObjectConext search;
        search.m_pszBucket = kBucket;
        search.m_pszKey = prefix;
        search.m_bExists = exists;
        const std::int32_t status = store.SearchObject(&search);
        exists = search.m_bExists;
        return status;
    }
    std::unique_ptr<AwsS3Store> StoreOfProvider(std::int32_t provider) {
        Setup setup;
        setup.provider = provider;
        return MakeStore(setup);
    }
};

TEST_F(Metadata, HeadObjectSendsExactlyThisRequestAndWritesNoLine) {
    m_server.Next(Answer::Status(200).Header("ETag", "\"1\"").Body("0123456789"));
    const auto store = MakeStore();
    bool exists = false;
    EXPECT_EQ(HeadKey(*store, "a folder/file", exists), 0);
    EXPECT_TRUE(exists);
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "HEAD");
    EXPECT_EQ(request.target, "/the-bucket/a%20folder/file");
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_EQ(UnknownHeaders(request), "");
    EXPECT_EQ(store->GetRequestCount(), 1u);
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(Metadata, HeadObjectOfAMissingKeyFailsAndClearsTheAnswer) {
    m_server.Next(Answer::Status(404));
    const auto store = StoreOfProvider(5);
    bool exists = true;
    const int status = StatusOf(Aws::S3::S3Errors::RESOURCE_NOT_FOUND);
    ASSERT_EQ(status, 16);
    EXPECT_EQ(HeadKey(*store, "a@b", exists), status);
    EXPECT_FALSE(exists);
    EXPECT_EQ(OnlyRequest().target, "/the-bucket/a%2Bb");
    EXPECT_THAT(Lines(), ElementsAre("HeadObject [the-bucket a@b] failed.",
                                     "The error message:[" + MessageOfNoBody(404) + "], EC:[16]"));
}

TEST_F(Metadata, HeadObjectRefusedGivesAccessDenied) {
    m_server.Next(Answer::Status(403));
    const auto store = MakeStore();
    bool exists = true;
    EXPECT_EQ(HeadKey(*store, "k", exists), 15);
    EXPECT_FALSE(exists);
}

TEST_F(Metadata, SearchFindsAKeyThatStartsWithThePrefix) {
    m_server.Next(ListingPage({"a+b/c"}, "more"));
    const auto store = StoreOfProvider(6);
    bool exists = false;
    EXPECT_EQ(Search(*store, "a@b", exists), 0);
    EXPECT_TRUE(exists);
    EXPECT_EQ(OnlyRequest().target, "/the-bucket?list-type=2&prefix=a%2Bb");
    EXPECT_EQ(store->GetRequestCount(), 1u);
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(Metadata, SearchWithAnEmptyPrefixAsksForAnything) {
    m_server.Next(ListingPage({"x"}));
    const auto store = MakeStore();
    bool exists = false;
    EXPECT_EQ(Search(*store, "", exists), 0);
    EXPECT_TRUE(exists);
}

TEST_F(Metadata, SearchThatFindsNothingSucceedsQuietly) {
    m_server.Next(ListingPage({}));
    const auto store = MakeStore();
    bool exists = true;
    EXPECT_EQ(Search(*store, "p", exists), 0);
    EXPECT_FALSE(exists);
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(Metadata, SearchDoesNotGoOnBeyondAPageWithoutKeys) {
    m_server.Next(ListingPage({}, "more"));
    m_server.Next(ListingPage({"p"}));
    const auto store = MakeStore();
    bool exists = true;
    EXPECT_EQ(Search(*store, "p", exists), 0);
    EXPECT_FALSE(exists);
    EXPECT_EQ(m_server.Requests().size(), 1u);
    EXPECT_EQ(store->GetRequestCount(), 1u);
}

TEST_F(Metadata, ARefusedSearchGivesItsStatusAndBothLines) {
    m_server.Next(Answer::S3Error(404, "NoSuchBucket", "Gone"));
    const auto store = MakeStore();
    bool exists = true;
    const int status = StatusOf(Aws::S3::S3Errors::NO_SUCH_BUCKET);
    EXPECT_EQ(Search(*store, "p", exists), status);
    EXPECT_FALSE(exists);
    EXPECT_THAT(Lines(), ElementsAre("search object in bucket:[the-bucket] failed.",
                                     "The search error message:[Gone], EC:[" +
                                         std::to_string(status) + "]"));
}

class Lifecycle : public WireTest {
protected:
    LifecycleConfigContext Rule(const char* id, const char* prefix, std::int32_t days) {
        LifecycleConfigContext rule;
        rule.m_pszBucket = kBucket;
        rule.m_pszRuleId = id;
        rule.m_pszPrefix = prefix;
        rule.m_nDays = days;
        return rule;
    }
    static std::string Document(const std::string& rule) {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><LifecycleConfiguration "
               "xmlns=\"http://s3.amazonaws.com/doc/2006-03-01/\"><Rule>" +
               rule + "</Rule></LifecycleConfiguration>";
    }
};

TEST_F(Lifecycle, SendsOneRuleThatOnlyAbortsUploads) {
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    LifecycleConfigContext rule = Rule("clean<up>", "folder/", 7);
    EXPECT_EQ(store->PutBucketLifecycleConfiguration(&rule), 0);
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.target, "/the-bucket?lifecycle");
    EXPECT_EQ(XmlOf(request),
              Document("<ID>clean&lt;up&gt;</ID><Filter><Prefix>folder/</Prefix></Filter>"
                       "<Status>Enabled</Status><AbortIncompleteMultipartUpload>"
                       "<DaysAfterInitiation>7</DaysAfterInitiation>"
                       "</AbortIncompleteMultipartUpload>"));
    EXPECT_EQ(request.Value("content-md5"), Md5Of(request.body));
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_THAT(Lines(), ElementsAre("AwsS3Store::PutBucketLifecycleConfiguration success. "
                                     "Bucket[the-bucket] Prefix[folder/] ID[clean<up>] Days[7]"));
    EXPECT_EQ(store->GetRequestCount(), 1u);
}

TEST_F(Lifecycle, ANullIdIsSentEmptyAndANullPrefixLeavesTheFilterEmpty) {
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    LifecycleConfigContext rule = Rule(nullptr, nullptr, 1);
    EXPECT_EQ(store->PutBucketLifecycleConfiguration(&rule), 0);
    EXPECT_EQ(XmlOf(OnlyRequest()),
              Document("<ID></ID><Filter></Filter><Status>Enabled</Status>"
                       "<AbortIncompleteMultipartUpload><DaysAfterInitiation>1"
                       "</DaysAfterInitiation></AbortIncompleteMultipartUpload>"));
    EXPECT_THAT(Lines(), ElementsAre("AwsS3Store::PutBucketLifecycleConfiguration success. "
                                     "Bucket[the-bucket] Prefix[(null)] ID[(null)] Days[1]"));
}

TEST_F(Lifecycle, ARefusalGivesItsStatusAndItsLine) {
    m_server.Next(Answer::S3Error(400, "MalformedXML", "Bad rule"));
    const auto store = MakeStore();
    LifecycleConfigContext rule = Rule("id", "", 0);
    EXPECT_EQ(store->PutBucketLifecycleConfiguration(&rule), 100);
    EXPECT_THAT(Lines(),
                ElementsAre("Failed to PutBucketLifecycleConfiguration. ret[100] Error:[Unable to "
                            "parse ExceptionName: MalformedXML Message: Bad rule]."));
}

}  // namespace
}  // namespace Mirqos::Test
