#include "tests/service/Listings.h"
#include "tests/support/KeyCorpus.h"

#include <algorithm>
#include <iterator>

#include "store/AwsSdk.h"
#include "store/ObjectKey.h"

namespace {

using Mirqos::Test::IsListedBySdk;
using Mirqos::Test::KeyCorpus;
using Mirqos::Test::ListingTest;
using Mirqos::Test::Sizes;
using Mirqos::Test::StorePointer;
using testing::ElementsAre;
using testing::IsEmpty;

class Listing : public ListingTest {
protected:
    StorePointer StoreOf(const std::string& bucket, std::int32_t providerType = 0) {
        CloudStoreConfigInfo config = Config();
        config.m_pszBucket = bucket.c_str();
        config.m_nProviderType = providerType;
        return NewStore(config);
    }
    /// The keys of the corpus that a listing gives back and a record holds, one byte each.
    static Sizes KeysOfEveryShape() {
        Sizes sizes;
        for (const std::string& key : KeyCorpus()) {
            if (key.size() < sizeof CloudStoreObjInfo::m_szKey && IsListedBySdk(key)) {
                sizes[key] = 1;
            }
        }
        return sizes;
    }
};

TEST_F(Listing, WholeStopsAtAThousandOfManyObjects) {
    const auto store = NewStore(Config());
    const std::string& bucket = FilledBucket(*store);
    const Whole whole = ListWhole(*store, bucket);
    EXPECT_EQ(whole.status, 0);
    EXPECT_TRUE(whole.truncated);
    const Sizes all = ManyObjects();
    EXPECT_EQ(whole.sizes, Sizes(all.begin(), std::next(all.begin(), 1000)));
}

TEST_F(Listing, SegmentsReachEveryObjectOfMany) {
    const std::string& bucket = FilledBucket(*NewStore(Config()));
    const auto store = StoreOf(bucket);
    const Walk walk = WalkPages(*store);
    EXPECT_THAT(walk.pages, ElementsAre(1000, 1000, 500));
    EXPECT_EQ(walk.sizes, ManyObjects());
    EXPECT_EQ(store->GetRequestCount(), 3u);
}

TEST_F(Listing, PrefixesSelectWhatBeginsWithThem) {
    const std::string& bucket = FilledBucket(*NewStore(Config()));
    const auto store = StoreOf(bucket);
    for (const char* prefix : {"", "b", "b/object-1", "c/object-899", "nothing"}) {
        const Sizes expected = Under(prefix, ManyObjects());
        EXPECT_EQ(WalkPages(*store, prefix).sizes, expected) << prefix;
        const Whole whole = ListWhole(*store, bucket, prefix);
        EXPECT_EQ(whole.status, 0);
        EXPECT_EQ(whole.truncated, expected.size() > 1000) << prefix;
        EXPECT_EQ(whole.sizes.size(), std::min<std::size_t>(expected.size(), 1000)) << prefix;
    }
}

TEST_F(Listing, ExactlyAThousandAreNotTruncated) {
    const auto store = NewStore(Config());
    const std::string& bucket = FilledBucket(*store);
    const Whole whole = ListWhole(*store, bucket, "a/");
    EXPECT_EQ(whole.status, 0);
    EXPECT_EQ(whole.sizes, Under("a/", ManyObjects()));
    EXPECT_FALSE(whole.truncated);
}

TEST_F(Listing, OfAnEmptyBucketIsEmpty) {
    const auto store = NewStore(Config());
    const Whole whole = ListWhole(*store, Bucket());
    EXPECT_EQ(whole.status, 0);
    EXPECT_FALSE(whole.truncated);
    EXPECT_THAT(whole.sizes, IsEmpty());
    EXPECT_THAT(WalkPages(*store).pages, ElementsAre(0));
}

TEST_F(Listing, OfAMissingBucketFails) {
    const std::string missing = Mirqos::Test::NewBucketName();
    const auto store = StoreOf(missing);
    const auto status = static_cast<std::int32_t>(Aws::S3::S3Errors::NO_SUCH_BUCKET);
    EXPECT_EQ(ListWhole(*store, missing).status, status);
    CloudStoreListObjectConext listing;
    listing.m_pszBucket = Bucket().c_str();  // which exists, and is not the one that is listed
    EXPECT_EQ(store->ListObjectsSegmented(&listing), status);
    EXPECT_EQ(listing.m_pObjects, nullptr);
}

TEST_F(Listing, PrefixesOfEveryShapeSelectWhatBeginsWithThem) {
    const auto store = NewStore(Config());
    const Sizes written = KeysOfEveryShape();
    WriteAll(*store, written);
    for (const auto& [key, size] : written) {
        EXPECT_EQ(ListWhole(*store, Bucket(), key.c_str()).sizes, Under(key, written)) << key;
    }
}

TEST_F(Listing, GivesKeysBackWithAtSignsOnProviderType5) {
    const auto store = StoreOf(Bucket(), Mirqos::ProviderType::kPlusForAt);
    WriteAll(*store, {{"a@b", 1}, {"c", 2}});
    EXPECT_EQ(ListWhole(*store, Bucket()).sizes, (Sizes{{"a@b", 1}, {"c", 2}}));
    EXPECT_EQ(WalkPages(*store).sizes, (Sizes{{"a@b", 1}, {"c", 2}}));
    EXPECT_EQ(ListWhole(*NewStore(Config()), Bucket()).sizes, (Sizes{{"a+b", 1}, {"c", 2}}));
}

TEST_F(Listing, ADeletedThousandIsGoneAndTheRestStaysUntilItIsDeletedToo) {
    const auto store = NewStore(Config());
    Sizes all;
    for (int i = 0; i < 1100; ++i) {
        all["key " + std::to_string(10000 + i)] = 1;
    }
    WriteAll(*store, all);
    const auto middle = std::next(all.begin(), 1000);
    const Sizes rest(middle, all.end());
    ForgetLog();
    EXPECT_EQ(DeleteMany(*store, Bucket(), Sizes(all.begin(), middle)), 0);
    EXPECT_EQ(Log().CountContaining(
                  "AwsS3Store::DeleteObjectsV2 Success. Count:1000 bucket: " + Bucket() + " key 1"),
              1u);
    EXPECT_EQ(Log().Texts().size(), 50u) << "keys 0 to 20, then 20 a line";
    EXPECT_EQ(ListWhole(*store, Bucket()).sizes, rest);
    EXPECT_EQ(DeleteMany(*store, Bucket(), rest), 0);
    EXPECT_THAT(ListWhole(*store, Bucket()).sizes, IsEmpty());
}

TEST_F(Listing, DeletingWhatIsMissingSucceedsAndInAMissingBucketFails) {
    const auto store = NewStore(Config());
    EXPECT_EQ(DeleteMany(*store, Bucket(), {{"never", 0}}), 0);
    const std::string missing = Mirqos::Test::NewBucketName();
    ForgetLog();
    const auto status = static_cast<std::int32_t>(Aws::S3::S3Errors::NO_SUCH_BUCKET);
    EXPECT_EQ(DeleteMany(*store, missing, {{"a", 0}, {"b", 0}}), status);
    EXPECT_THAT(Log().Texts(), ElementsAre("Failed to delete objects. count:2, bucket:" + missing +
                                               ", EC:" + std::to_string(status) + ".",
                                           testing::_));
}

TEST_F(Listing, OneByOneDeletionSkipsWhatIsMissing) {
    const auto store = StoreOf(Bucket(), Mirqos::ProviderType::kGoogleCloudStorage);
    WriteAll(*store, {{"a@b", 1}, {"kept", 1}, {"z", 1}});
    EXPECT_EQ(DeleteMany(*store, Bucket(), {{"a@b", 1}, {"missing", 1}, {"z", 1}}), 0);
    EXPECT_EQ(ListWhole(*store, Bucket()).sizes, (Sizes{{"kept", 1}}));
}

}  // namespace
