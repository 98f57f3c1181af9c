#include <string>

#include "store/AwsSdk.h"
#include "tests/service/Listings.h"
#include "tests/support/KeyCorpus.h"

namespace Mirqos::Test {
namespace {

constexpr auto kRefused = static_cast<std::int32_t>(Aws::S3::S3Errors::MISSING_PARAMETER);
constexpr auto kNoSuchKey = static_cast<std::int32_t>(Aws::S3::S3Errors::NO_SUCH_KEY);

/// Keys that the SDK would turn into those of other objects, on a server that has these.
class RefusedKeys : public ListingTest {
protected:
    RefusedKeys() { WriteAll(*m_store, m_others); }
    ~RefusedKeys() override { EXPECT_EQ(ListWhole(*m_store, Bucket()).sizes, m_others); }

    std::int32_t Copy(const std::string& source, const std::string& target) {
        CloudStoreCopyObjectContext copy;
        copy.m_pszSrcBucket = Bucket().c_str();
        copy.m_pszDstBucket = Bucket().c_str();
        copy.m_pszSrcKey = source.c_str();
        copy.m_pszDstKey = target.c_str();
        copy.m_bIgnoreMissingSource = false;
        return m_store->CopyObject(&copy);
    }
    std::int32_t Open(const std::string& key) {
        CloudStoreInitMultiPartUploadContext init;
        init.m_pszBucket = Bucket().c_str();
        init.m_pszKey = key.c_str();
        CloudStoreInitMultiPartUploadOutcome outcome;
        return m_store->InitMultiPartUpload(&init, &outcome);
    }

    const StorePointer m_store = NewStore(Config());
    const Sizes m_others{{"a", 1},       {"b", 2},         {"a/b", 3},     {"a/b/", 4},
                         {"a/b/c/d", 5}, {"trailing/", 6}, {"leading", 7}, {"a\nb", 8}};
};

TEST_F(RefusedKeys, TouchNoOtherObject) {
    for (const std::string& key : KeysNotKeptBySdk()) {
        SCOPED_TRACE(testing::PrintToString(key));
        EXPECT_EQ(Write(*m_store, key, SomeBytes(10)), kRefused);
        const ReadAttempt read = Read(*m_store, key, 0, 0);
        EXPECT_EQ(read.status, kRefused);
        EXPECT_TRUE(read.LeftAlone());
        bool exists = true;
        EXPECT_EQ(Head(*m_store, key, exists), kRefused);
        EXPECT_FALSE(exists);
        EXPECT_EQ(Delete(*m_store, key), kRefused);
        EXPECT_EQ(Copy("a", key), kRefused);
        EXPECT_EQ(Open(key), kRefused);
    }
}

/// A header keeps dots: a source with them alone is sought, and missing.
TEST_F(RefusedKeys, AreNoSourcesOfOtherObjects) {
    for (const std::string& key : KeysNotKeptBySdk()) {
        const bool isSought = ("/" + key).find("//") == std::string::npos;
        EXPECT_EQ(Copy(key, "target"), isSought ? kNoSuchKey : kRefused)
            << testing::PrintToString(key);
    }
}

TEST_F(RefusedKeys, DeleteNoneOfManyObjects) {
    EXPECT_EQ(DeleteMany(*m_store, Bucket(), {{"a", 1}, {"a\rb", 8}}), kRefused);
    EXPECT_EQ(DeleteMany(*m_store, Bucket(), {{"a//b", 3}, {"..", 0}}), 0)
        << "which a document can name";
}

}  // namespace
}  // namespace Mirqos::Test
