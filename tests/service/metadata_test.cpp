#include <cstring>
#include <string>

#include "store/AwsSdk.h"
#include "store/ObjectKey.h"
#include "tests/service/ServiceTest.h"

namespace {

using Aws::S3::S3Errors;
using Mirqos::Test::NewBucketName;
using Mirqos::Test::ServiceTest;
using Mirqos::Test::SomeBytes;
using Mirqos::Test::StorePointer;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

constexpr std::int32_t StatusOf(S3Errors error) {
    return static_cast<std::int32_t>(error);
}

class Metadata : public ServiceTest {
protected:
    StorePointer StoreOfProvider(std::int32_t providerType) {
        CloudStoreConfigInfo config = Config();
        config.m_nProviderType = providerType;
        return NewStore(config);
    }
    bool Finds(MIRQOSInterface& store, const std::string& prefix) {
        CloudStoreSearchObjectConext search;
        search.m_pszBucket = Bucket().c_str();
        search.m_pszKey = prefix.c_str();
        EXPECT_EQ(store.SearchObject(&search), 0);
        return search.m_bExists;
    }
};

TEST_F(Metadata, AnObjectExistsFromItsWriteToItsDeletion) {
    const auto store = NewStore(Config());
    bool exists = true;
    EXPECT_EQ(Head(*store, "a folder/object", exists), StatusOf(S3Errors::RESOURCE_NOT_FOUND));
    EXPECT_FALSE(exists);
    EXPECT_EQ(Log().CountContaining("HeadObject [" + Bucket() + " a folder/object] failed."), 1u);
    ForgetLog();
    ASSERT_EQ(Write(*store, "a folder/object", SomeBytes(10)), 0);
    EXPECT_EQ(Head(*store, "a folder/object", exists), 0);
    EXPECT_TRUE(exists);
    EXPECT_THAT(Log().Texts(), IsEmpty());
    ASSERT_EQ(Delete(*store, "a folder/object"), 0);
    EXPECT_NE(Head(*store, "a folder/object", exists), 0);
    EXPECT_FALSE(exists);
}

TEST_F(Metadata, HeadAndSearchSubstituteAsTheWriteDidOnProviderType5) {
    const auto store = StoreOfProvider(Mirqos::ProviderType::kPlusForAt);
    ASSERT_EQ(Write(*store, "a@b/c", SomeBytes(10)), 0);
    bool exists = false;
    EXPECT_EQ(Head(*store, "a@b/c", exists), 0);
    EXPECT_TRUE(exists);
    EXPECT_TRUE(Finds(*store, "a@"));
    EXPECT_FALSE(Finds(*StoreOfProvider(0), "a@"));
}

TEST_F(Metadata, SearchAnswersByPrefix) {
    const auto store = NewStore(Config());
    EXPECT_FALSE(Finds(*store, "")) << "nothing is in the bucket yet";
    ASSERT_EQ(Write(*store, "folder/one", SomeBytes(10)), 0);
    EXPECT_TRUE(Finds(*store, ""));
    EXPECT_TRUE(Finds(*store, "fold"));
    EXPECT_TRUE(Finds(*store, "folder/one"));
    EXPECT_FALSE(Finds(*store, "folder/one/"));
    EXPECT_FALSE(Finds(*store, "Folder"));
}

TEST_F(Metadata, SearchInAMissingBucketFails) {
    const auto store = NewStore(Config());
    const std::string missing = NewBucketName();
    CloudStoreSearchObjectConext search;
    search.m_pszBucket = missing.c_str();
    search.m_pszKey = "";
    EXPECT_EQ(store->SearchObject(&search), StatusOf(S3Errors::NO_SUCH_BUCKET));
    EXPECT_EQ(Log().CountContaining("search object in bucket:[" + missing + "] failed."), 1u);
}

class Tags : public Metadata {
protected:
    Tags() : m_store(NewStore(Config())) { EXPECT_EQ(Write(*m_store, "object", {}), 0); }
    /// `tags` without the NUL that ends the list.
    std::int32_t Put(const std::string& tags, const char* key = "object") {
        PutObjectTaggingContext put;
        put.m_pszBucket = Bucket().c_str();
        put.m_pszKey = key;
        put.m_pTags = tags.c_str();
        return m_store->PutObjectTagging(&put);
    }
    /// The list as it lies in the record, without the zeros behind its last entry's NUL.
    std::string Get(std::int32_t expected = 0, const char* key = "object") {
        GetObjectTaggingContext get;
        std::memset(get.m_szTags, '#', sizeof get.m_szTags);
        get.m_pszBucket = Bucket().c_str();
        get.m_pszKey = key;
        EXPECT_EQ(m_store->GetObjectTagging(&get), expected);
        const std::string all(get.m_szTags, sizeof get.m_szTags);
        const auto last = all.find_last_not_of('\0');
        return last == std::string::npos ? std::string() : all.substr(0, last + 2);
    }

    const StorePointer m_store;
};

TEST_F(Tags, ComeBackAsTheyWerePut) {
    EXPECT_EQ(Get(), "");
    ForgetLog();
    EXPECT_EQ(Put("name:alpha\0owner:beta\0"s), 0);
    EXPECT_EQ(Get(), "name:alpha\0owner:beta\0"s);
    EXPECT_THAT(Log().Texts(),
                ElementsAre("Success to PutObjectTagging. Tag Count = 2 [name:alpha] [owner:beta]",
                            "Success to GetObjectTagging. Tag Count = 2 [name:alpha] "
                            "[owner:beta]"));
}

TEST_F(Tags, ReplaceTheFormerOnesAndAnEmptyListRemovesAll) {
    EXPECT_EQ(Put("a:1\0b:2\0"s), 0);
    EXPECT_EQ(Put("c:3\0"s), 0);
    EXPECT_EQ(Get(), "c:3\0"s);
    EXPECT_EQ(Put(""), 0);
    EXPECT_EQ(Get(), "");
}

TEST_F(Tags, MayHoldColonsSpacesMarkupAndTextBeyondAscii) {
    const std::string tags =
        "a:x:y\0b:<&> \"q\"\0c:f\xC3\xBCr K\xC3\xB6ln\0d:\xE6\x97\xA5\xE6\x9C\xAC\0e:\0"
        "\xD0\xBA\xD0\xBB:\xF0\x9F\x97\x84\0"s;
    EXPECT_EQ(Put(tags), 0);
    EXPECT_EQ(Get(), tags);
}

TEST_F(Tags, WithoutAColonAreKeyAndValueAlike) {
    EXPECT_EQ(Put("c\0"s), 0);
    EXPECT_EQ(Get(), "c:c\0"s);
}

TEST_F(Tags, ThatDoNotFitTheRecordGive34) {
    std::string tags;
    for (char name = 'a'; name <= 'j'; ++name) {  // ten are the most that the service takes
        tags += name + std::string(127, 'k') + ":" + std::string(200, 'v') + "\0"s;
    }
    EXPECT_EQ(Put(tags), 0);
    EXPECT_EQ(Get(34), tags.substr(0, 2600 / (tags.size() / 10) * (tags.size() / 10)));
    EXPECT_EQ(Log().CountContaining("GetObjectTagging memcpy_s failed nErr[34] value[vvv"), 1u);
}

TEST_F(Tags, OfAMissingObjectAreRefused) {
    ForgetLog();
    const std::int32_t status = StatusOf(S3Errors::NO_SUCH_KEY);
    EXPECT_EQ(Put("a:1\0"s, "missing"), status);
    EXPECT_EQ(Get(status, "missing"), "");
    const std::string code = std::to_string(status);
    EXPECT_EQ(Log().CountContaining("Failed to PutObjectTagging. ret[" + code + "], Error:["), 1u);
    EXPECT_EQ(Log().CountContaining("Failed to GetObjectTagging. ret[" + code + "] Error:["), 1u);
}

class Lifecycle : public ServiceTest {
protected:
    static std::int32_t Put(MIRQOSInterface& store, const std::string& bucket, const char* id,
                            const char* prefix, std::int32_t days) {
        LifecycleConfigContext rule;
        rule.m_pszBucket = bucket.c_str();
        rule.m_pszRuleId = id;
        rule.m_pszPrefix = prefix;
        rule.m_nDays = days;
        return store.PutBucketLifecycleConfiguration(&rule);
    }
};

TEST_F(Lifecycle, ARuleIsAccepted) {
    const auto store = NewStore(Config());
    EXPECT_EQ(Put(*store, Bucket(), "clean-up", "folder/", 7), 0);
    EXPECT_THAT(Log().Texts(),
                ElementsAre("AwsS3Store::PutBucketLifecycleConfiguration success. Bucket[" +
                            Bucket() + "] Prefix[folder/] ID[clean-up] Days[7]"));
    EXPECT_EQ(store->GetRequestCount(), 1u);
}

TEST_F(Lifecycle, ARuleForAMissingBucketIsRefused) {
    const auto store = NewStore(Config());
    const std::int32_t status = StatusOf(S3Errors::NO_SUCH_BUCKET);
    EXPECT_EQ(Put(*store, NewBucketName(), "id", "", 7), status);
    EXPECT_EQ(Log().CountContaining("Failed to PutBucketLifecycleConfiguration. ret[" +
                                    std::to_string(status) + "] Error:["),
              1u);
}

}  // namespace
