#include <new>

#include "log/ModuleLog.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/Pages.h"
#include "tests/wire/WireTest.h"

namespace {

bool g_refuseArrays = false;

}  // namespace

// The results of a listing are the only arrays that are asked for without an exception.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    if (g_refuseArrays) {
        return nullptr;
    }
    try {
        return operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

namespace Mirqos::Test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The bucket that every store here is configured with.
constexpr char kOwnBucket[] = "the-configured-bucket";
constexpr char kWhole[] = "AwsS3Store::ListObjects";
constexpr char kSegment[] = "AwsS3Store::ListObjectsSegmented";

/// Releases what a listing handed out.
struct Listing : CloudStoreListObjectConext {
    explicit Listing(AwsS3Store& aStore) : store(aStore) {}
    ~Listing() { store.ReleaseObjectData(this); }
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;

    std::vector<std::string> Keys() const {
        std::vector<std::string> keys;
        for (std::uint64_t i = 0; i < m_nObjectCount; ++i) {
            EXPECT_EQ(m_pObjects[i].m_nSize, std::string(m_pObjects[i].m_szKey).size());
            keys.emplace_back(m_pObjects[i].m_szKey);
        }
        return keys;
    }

    AwsS3Store& store;
};

/// Lets the traces through the module log for its lifetime.
struct LevelRaised {
    LevelRaised() { g_ModuleLog.m_nLevel = 3; }
    ~LevelRaised() { g_ModuleLog.m_nLevel = former; }
    LevelRaised(const LevelRaised&) = delete;
    LevelRaised& operator=(const LevelRaised&) = delete;

    const int former = g_ModuleLog.m_nLevel;
};

class ListingWire : public WireTest {
protected:
    ~ListingWire() override { g_refuseArrays = false; }

    static std::string Complete(const char* operation, int status, const std::string& bucket,
                                std::size_t count, bool truncated, const std::string& prefix = {}) {
        return std::string(operation) + " complete with " + std::to_string(status) + ". bucket:[" +
               bucket + "] prefix:[" + prefix + "] count:[" + std::to_string(count) +
               "], Truncated:[" + (truncated ? "1" : "0") + "].";
    }
    static std::string TruncatedNote(std::size_t count, const std::string& token) {
        return "[AwsS3Store::ListObjects]Truncated! There are " + std::to_string(count) +
               " objects returned by ListObjectsV2. NextContinuationToken:" + token + ".";
    }
    std::vector<std::string> Targets() const {
        std::vector<std::string> targets;
        for (const RecordedRequest& request : m_server.Requests()) {
            targets.push_back(request.target);
        }
        return targets;
    }
};

TEST_F(ListingWire, SendsExactlyThisRequest) {
    m_server.Next(ListingPage({"a", "bc"}));
    const auto store = MakeStore();
    Listing listing(*store);
    listing.m_pszBucket = "other-bucket";
    listing.m_pszPrefix = "folder/a b+c&d=e";
    EXPECT_EQ(store->ListObjects(&listing), 0);
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.target, "/other-bucket?list-type=2&prefix=folder%2Fa%20b%2Bc%26d%3De");
    EXPECT_EQ(request.body, "");
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_EQ(UnknownHeaders(request), "");
    EXPECT_THAT(listing.Keys(), ElementsAre("a", "bc"));
    EXPECT_FALSE(listing.m_bTruncated);
    EXPECT_THAT(Lines(),
                ElementsAre(Complete(kWhole, 0, "other-bucket", 2, false, "folder/a b+c&d=e")));
    EXPECT_EQ(store->GetRequestCount(), 1u);
}

TEST_F(ListingWire, WithoutABucketTheConfiguredOneIsListed) {
    m_server.Next(ListingPage({}));
    const auto store = MakeStore();
    Listing listing(*store);
    EXPECT_EQ(store->ListObjects(&listing), 0);
    EXPECT_EQ(OnlyRequest().target, "/the-configured-bucket?list-type=2");
}

TEST_F(ListingWire, AnEmptyBucketGivesNoBlock) {
    m_server.Next(ListingPage({}));
    const auto store = MakeStore();
    Listing listing(*store);
    g_refuseArrays = true;
    EXPECT_EQ(store->ListObjects(&listing), 0);
    EXPECT_EQ(listing.m_pObjects, nullptr);
    EXPECT_EQ(listing.m_nObjectCount, 0u);
    EXPECT_FALSE(listing.m_bTruncated);
}

TEST_F(ListingWire, StopsAtAThousandAfterThePageThatFillsIt) {
    m_server.Next(ListingPage(NumberedKeys(1000), "t1"));
    const auto store = MakeStore();
    Listing listing(*store);
    EXPECT_EQ(store->ListObjects(&listing), 0);
    EXPECT_EQ(listing.Keys(), NumberedKeys(1000));
    EXPECT_TRUE(listing.m_bTruncated);
    EXPECT_STREQ(listing.m_szContinuationToken, "") << "a whole listing reports no token";
    EXPECT_EQ(store->GetRequestCount(), 1u);
    EXPECT_THAT(Lines(), ElementsAre(TruncatedNote(1000, "t1"),
                                     Complete(kWhole, 0, kOwnBucket, 1000, true)));
}

TEST_F(ListingWire, TakesOnlyWhatFitsOfThePageThatExceedsAThousand) {
    m_server.Next(ListingPage(NumberedKeys(600), "t 1/+"));
    m_server.Next(ListingPage(NumberedKeys(600, 600), "t2"));
    const auto store = MakeStore();
    Listing listing(*store);
    EXPECT_EQ(store->ListObjects(&listing), 0);
    EXPECT_EQ(listing.Keys(), NumberedKeys(1000));
    EXPECT_TRUE(listing.m_bTruncated);
    EXPECT_EQ(store->GetRequestCount(), 2u);
    EXPECT_THAT(
        Targets(),
        ElementsAre("/the-configured-bucket?list-type=2",
                    kBundledSdk
                        ? "/the-configured-bucket?list-type=2&continuation-token=t%201%2F%2B"
                        : "/the-configured-bucket?continuation-token=t%201%2F%2B&list-type=2"));
    EXPECT_THAT(Lines(), ElementsAre(TruncatedNote(600, "t 1/+"),
                                     Complete(kWhole, 0, kOwnBucket, 1000, true)));
}

TEST_F(ListingWire, ExactlyAThousandInTheLastPageAreNotTruncated) {
    m_server.Next(ListingPage(NumberedKeys(1000)));
    const auto store = MakeStore();
    Listing listing(*store);
    EXPECT_EQ(store->ListObjects(&listing), 0);
    EXPECT_EQ(listing.m_nObjectCount, 1000u);
    EXPECT_FALSE(listing.m_bTruncated);
}

TEST_F(ListingWire, HoweverAPageSaysThatMoreFollowsTheListingGoesOn) {
    for (const char* const yes : {"true", "True", "TRUE", "1", "\n true \n"}) {
        m_server.Next(Answer::Status(200).Body(
            "<ListBucketResult><IsTruncated>" + std::string(yes) +
            "</IsTruncated><NextContinuationToken>t</NextContinuationToken><Contents><Key>a</Key>"
            "<Size> 12 </Size></Contents></ListBucketResult>"));
        m_server.Next(ListingPage({"b"}));
        const auto store = MakeStore();
        CloudStoreListObjectConext list;
        list.m_pszBucket = kBucket;
        EXPECT_EQ(store->ListObjects(&list), 0);
        ASSERT_EQ(list.m_nObjectCount, 2u) << yes;
        EXPECT_EQ(list.m_pObjects[0].m_nSize, 12u);
        store->ReleaseObjectData(&list);
    }
}

TEST_F(ListingWire, AFailingSecondPageDropsTheFirst) {
    m_server.Next(ListingPage(NumberedKeys(3), "t1"));
    m_server.Next(Answer::S3Error(403, "AccessDenied", "No more"));
    const auto store = MakeStore();
    Listing listing(*store);
    const int status = StatusOf(Aws::S3::S3Errors::ACCESS_DENIED);
    EXPECT_EQ(store->ListObjects(&listing), status);
    EXPECT_EQ(listing.m_pObjects, nullptr);
    EXPECT_EQ(listing.m_nObjectCount, 0u);
    EXPECT_THAT(
        Lines(),
        ElementsAre(
            TruncatedNote(3, "t1"),
            "[AwsS3Store::ListObjects]ListObjectsV2 in bucket:[the-configured-bucket] failed.",
            "[AwsS3Store::ListObjects]The error message:[No more], EC:[" + std::to_string(status) +
                "]",
            Complete(kWhole, status, kOwnBucket, 0, false)));
    EXPECT_EQ(store->GetRequestCount(), 2u);
}

TEST_F(ListingWire, ARefusedFirstPageGivesItsStatusAndNothingElse) {
    m_server.Next(Answer::S3Error(404, "NoSuchBucket", "Gone"));
    const auto store = MakeStore();
    Listing listing(*store);
    CloudStoreObjInfo leftOver;
    listing.m_pObjects = &leftOver;
    listing.m_nObjectCount = 7;
    listing.m_bTruncated = true;
    const int status = StatusOf(Aws::S3::S3Errors::NO_SUCH_BUCKET);
    EXPECT_EQ(store->ListObjects(&listing), status);
    EXPECT_EQ(listing.m_pObjects, nullptr);
    EXPECT_EQ(listing.m_nObjectCount, 0u);
    EXPECT_FALSE(listing.m_bTruncated);
    EXPECT_THAT(
        Lines(),
        ElementsAre(
            "[AwsS3Store::ListObjects]ListObjectsV2 in bucket:[the-configured-bucket] failed.",
            "[AwsS3Store::ListObjects]The error message:[Gone], EC:[" + std::to_string(status) +
                "]",
            Complete(kWhole, status, kOwnBucket, 0, false)));
}

TEST_F(ListingWire, PagesThatAddUpToAThousandAreTruncatedOnlyIfTheLastSaysSo) {
    for (const bool more : {false, true}) {
        m_server.Next(ListingPage(NumberedKeys(400), "t1"));
        m_server.Next(ListingPage({}, "t2"));
        m_server.Next(ListingPage(NumberedKeys(600, 400), more ? "t3" : ""));
        const auto store = MakeStore();
        Listing listing(*store);
        m_log.Clear();
        EXPECT_EQ(store->ListObjects(&listing), 0);
        EXPECT_EQ(listing.Keys(), NumberedKeys(1000));
        EXPECT_EQ(listing.m_bTruncated, more);
        EXPECT_EQ(store->GetRequestCount(), 3u);
        EXPECT_EQ(m_log.CountContaining(TruncatedNote(0, "t2")), 1u) << "an empty page is passed";
        EXPECT_EQ(m_log.CountContaining(TruncatedNote(600, "t3")), more ? 1u : 0u);
    }
}

TEST_F(ListingWire, APageBeyondAThousandIsCutWhetherMoreFollowsOrNot) {
    m_server.Next(ListingPage(NumberedKeys(1001)));
    const auto store = MakeStore();
    Listing listing(*store);
    EXPECT_EQ(store->ListObjects(&listing), 0);
    EXPECT_EQ(listing.Keys(), NumberedKeys(1000));
    EXPECT_TRUE(listing.m_bTruncated);
    EXPECT_THAT(Lines(), ElementsAre(Complete(kWhole, 0, kOwnBucket, 1000, true)));
}

TEST_F(ListingWire, ASegmentIsHandedOutWholeWhateverItsSize) {
    m_server.Next(ListingPage(NumberedKeys(1500)));
    const auto store = MakeStore();
    Listing listing(*store);
    listing.m_pszBucket = "x";
    EXPECT_EQ(store->ListObjectsSegmented(&listing), 0);
    EXPECT_EQ(listing.Keys(), NumberedKeys(1500));
    EXPECT_FALSE(listing.m_bTruncated);
}

TEST_F(ListingWire, TracesAreAtLevelThreeNotesAtTwoAndResultsAtOne) {
    const LevelRaised raised;
    m_log.File().SetLevel(3);
    m_server.Next(ListingPage(NumberedKeys(1), "t1"));
    m_server.Next(ListingPage({}));
    m_server.Next(ListingPage({}));
    Setup setup;
    setup.provider = 2;
    const auto store = MakeStore(setup);
    m_log.Clear();
    Listing listing(*store);
    listing.m_pszBucket = "b";
    EXPECT_EQ(store->ListObjects(&listing), 0);
    EXPECT_EQ(store->ReleaseObjectData(&listing), 0);
    EXPECT_EQ(store->ListObjectsSegmented(&listing), 0);
    std::vector<std::string> lines;
    for (const RecordedLine& line : m_log.File().Lines()) {
        if (line.text.find("AwsS3Store::") != std::string::npos) {
            lines.push_back(std::to_string(line.level) + " " + line.text);
        }
    }
    EXPECT_THAT(
        lines,
        ElementsAre(
            "1 AwsS3Store::ListObjects EndPoint[storage.test:9000] ",
            "3 AwsS3Store::ListObjects enter. bucket:[b] prefix:[].", "2 " + TruncatedNote(1, "t1"),
            "1 " + Complete(kWhole, 0, "b", 1, false),
            "3 AwsS3Store::ReleaseObjectData enter. bucket:[b] prefix:[(null)] count:[1].",
            "3 AwsS3Store::ReleaseObjectData leave.",
            "1 AwsS3Store::ListObjectsSegmented EndPoint[storage.test:9000] ",
            "3 AwsS3Store::ListObjectsSegmented enter. bucket:[the-configured-bucket] prefix:[].",
            "1 " + Complete(kSegment, 0, kOwnBucket, 0, false)));
}

TEST_F(ListingWire, AnErrorOfTypeZeroOnTheFirstPageHandsOutNothing) {
    const auto store = MakeStore();
    for (const bool segmented : {false, true}) {
        m_server.Next(Answer::S3Error(400, "IncompleteSignature", "Half"));
        Listing listing(*store);
        listing.m_pszBucket = "b";
        std::copy_n("before", 7, listing.m_szContinuationToken);
        if (segmented) {
            // a success would end the caller's walk as if there were no more
            EXPECT_EQ(store->ListObjectsSegmented(&listing), StatusOf(Aws::S3::S3Errors::UNKNOWN));
        } else {
            EXPECT_EQ(store->ListObjects(&listing), 0);
        }
        EXPECT_EQ(listing.m_pObjects, nullptr);
        EXPECT_STREQ(listing.m_szContinuationToken, "before");
    }
}

TEST_F(ListingWire, AnEmptyPageThatNamesItselfAsTheNextEndsTheListing) {
    const std::string note =
        "[AwsS3Store::ListObjects]The listing of bucket:[b] does not go on: an empty page names "
        "itself as the next.";
    const auto store = MakeStore();
    Listing listing(*store);
    listing.m_pszBucket = "b";
    m_server.Next(ListingPage(NumberedKeys(3), "t1"));
    m_server.Next(ListingPage({}, "t1"));
    EXPECT_EQ(store->ListObjects(&listing), 0);
    EXPECT_EQ(listing.Keys(), NumberedKeys(3));
    EXPECT_TRUE(listing.m_bTruncated) << "there may be more";
    EXPECT_EQ(m_log.CountContaining(note), 1u);

    m_server.Next(Answer::Status(200).Body(
        "<ListBucketResult><IsTruncated>true</IsTruncated></ListBucketResult>"));
    Listing without(*store);
    without.m_pszBucket = "b";
    EXPECT_EQ(store->ListObjects(&without), 0);
    EXPECT_EQ(without.m_pObjects, nullptr);
    EXPECT_TRUE(without.m_bTruncated);
    EXPECT_EQ(m_log.CountContaining(note), 2u);
}

TEST_F(ListingWire, AnErrorOfTypeZeroHandsOutWhatWasGathered) {
    m_server.Next(ListingPage(NumberedKeys(3), "t1"));
    m_server.Next(Answer::S3Error(400, "IncompleteSignature", "Half"));
    const auto store = MakeStore();
    Listing listing(*store);
    ASSERT_EQ(StatusOf(Aws::S3::S3Errors::INCOMPLETE_SIGNATURE), 0);
    EXPECT_EQ(store->ListObjects(&listing), 0);
    EXPECT_EQ(listing.Keys(), NumberedKeys(3));
    EXPECT_FALSE(listing.m_bTruncated);
    EXPECT_THAT(Lines(),
                testing::Contains("[AwsS3Store::ListObjects]The error message:[Half], EC:[0]"));
}

TEST_F(ListingWire, ARefusedBlockGives14) {
    m_server.Next(ListingPage(NumberedKeys(3)));
    m_server.Next(ListingPage(NumberedKeys(3), "next"));
    const auto store = MakeStore();
    Listing listing(*store);
    g_refuseArrays = true;
    EXPECT_EQ(store->ListObjects(&listing), 14);
    EXPECT_EQ(listing.m_pObjects, nullptr);
    EXPECT_EQ(listing.m_nObjectCount, 0u);
    const std::string size = std::to_string(3 * sizeof(CloudStoreObjInfo));
    EXPECT_THAT(
        Lines(),
        ElementsAre("[AwsS3Store::ListObjects]Failed to allocated memory. size: " + size + ".",
                    Complete(kWhole, 14, kOwnBucket, 0, false)));
    m_log.Clear();
    Listing segment(*store);
    segment.m_pszBucket = "any";
    std::copy_n("before", 7, segment.m_szContinuationToken);
    EXPECT_EQ(store->ListObjectsSegmented(&segment), 14);
    EXPECT_STREQ(segment.m_szContinuationToken, "before");
    EXPECT_FALSE(segment.m_bTruncated);
    EXPECT_THAT(Lines(), ElementsAre("[AwsS3Store::ListObjectsSegmented]Failed to allocated "
                                     "memory. size: " +
                                         size + ".",
                                     Complete(kSegment, 14, kOwnBucket, 0, true)));
}

TEST_F(ListingWire, ListedPlusBecomesAtOnProviderTypesFiveAndSix) {
    for (const std::int32_t provider : {0, 2, 5, 6}) {
        Setup setup;
        setup.provider = provider;
        const auto store = MakeStore(setup);
        for (const bool segmented : {false, true}) {
            m_server.Next(ListingPage({"a+b+c"}));
            Listing listing(*store);
            listing.m_pszBucket = kBucket;
            EXPECT_EQ(
                segmented ? store->ListObjectsSegmented(&listing) : store->ListObjects(&listing),
                0);
            EXPECT_THAT(listing.Keys(), ElementsAre(provider >= 5 ? "a@b@c" : "a+b+c"));
        }
    }
}

TEST_F(ListingWire, TheMarkedProviderIsAskedForUrlEncodedKeysAndTheyStayEncoded) {
    Setup setup;
    setup.provider = 2;
    setup.endpoint = "ACCOUNT.R2.CloudFlareStorage.com";
    const auto store = MakeStore(setup);
    m_server.Next(ListingPage({"a%2Bb%0A"}));
    m_server.Next(ListingPage({}));
    m_server.Next(ListingPage({}));
    Listing listing(*store);
    EXPECT_EQ(store->ListObjects(&listing), 0);
    EXPECT_THAT(listing.Keys(), ElementsAre("a%2Bb%0A"));
    EXPECT_THAT(Lines(),
                ElementsAre("AwsS3Store::ListObjects EndPoint[ACCOUNT.R2.CloudFlareStorage.com] ",
                            HasSubstr("complete with 0.")));
    Listing unchecked(*store);
    unchecked.m_bCheckProviderMarker = false;
    unchecked.m_pszBucket = kBucket;
    m_log.Clear();
    EXPECT_EQ(store->ListObjects(&unchecked), 0);
    EXPECT_EQ(m_log.CountContaining("EndPoint["), 0u);
    EXPECT_EQ(store->ListObjectsSegmented(&unchecked), 0) << "which asks all the same";
    const char* const encoded = kBundledSdk
                                    ? "/the-configured-bucket?list-type=2&encoding-type=url"
                                    : "/the-configured-bucket?encoding-type=url&list-type=2";
    EXPECT_THAT(Targets(), ElementsAre(encoded, "/the-bucket?list-type=2", encoded));
}

TEST_F(ListingWire, OtherEndpointsAndProviderTypesAreAskedForPlainKeys) {
    struct Case {
        std::int32_t provider;
        const char* endpoint;
        bool noted;
    };
    for (const Case& c :
         {Case{2, "cloudflar", true}, Case{2, "storage.test:9000", true},
          Case{0, "x.cloudflarestorage.com", false}, Case{5, "x.cloudflarestorage.com", false}}) {
        Setup setup;
        setup.provider = c.provider;
        setup.endpoint = c.endpoint;
        const auto store = MakeStore(setup);
        m_server.Next(ListingPage({}));
        m_log.Clear();
        Listing listing(*store);
        EXPECT_EQ(store->ListObjects(&listing), 0);
        EXPECT_EQ(m_server.Requests().back().target, "/the-configured-bucket?list-type=2")
            << c.endpoint;
        EXPECT_EQ(m_log.CountContaining(std::string("EndPoint[") + c.endpoint + "] "),
                  c.noted ? 1u : 0u);
    }
}

TEST_F(ListingWire, WithoutAnEndpointTheMarkerIsNotLookedFor) {
    Setup setup = In(Style::virtualHost);
    setup.provider = 2;
    const auto store = MakeStore(setup);
    m_server.Next(ListingPage({}));
    Listing listing(*store);
    EXPECT_EQ(store->ListObjects(&listing), 0);
    EXPECT_EQ(m_log.CountContaining("EndPoint["), 0u);
}

TEST_F(ListingWire, SegmentsWalkTheConfiguredBucketWhateverTheFieldSays) {
    const auto store = MakeStore();
    m_server.Next(ListingPage(NumberedKeys(600), "token-2"));
    m_server.Next(ListingPage(NumberedKeys(2, 600)));
    Listing first(*store);
    first.m_pszBucket = "never-read";
    first.m_pszPrefix = "p";
    EXPECT_EQ(store->ListObjectsSegmented(&first), 0);
    EXPECT_EQ(first.Keys(), NumberedKeys(600));
    EXPECT_TRUE(first.m_bTruncated);
    EXPECT_STREQ(first.m_szContinuationToken, "token-2");
    store->ReleaseObjectData(&first);
    EXPECT_TRUE(first.m_bTruncated) << "a release leaves the walk alone";
    EXPECT_STREQ(first.m_szContinuationToken, "token-2");
    EXPECT_EQ(store->ListObjectsSegmented(&first), 0);
    EXPECT_EQ(first.Keys(), NumberedKeys(2, 600));
    EXPECT_FALSE(first.m_bTruncated);
    EXPECT_STREQ(first.m_szContinuationToken, "");
    EXPECT_THAT(
        Targets(),
        ElementsAre(
            "/the-configured-bucket?list-type=2&prefix=p",
            kBundledSdk
                ? "/the-configured-bucket?list-type=2&prefix=p&continuation-token=token-2"
                : "/the-configured-bucket?continuation-token=token-2&list-type=2&prefix=p"));
    EXPECT_THAT(Lines(), ElementsAre(Complete(kSegment, 0, kOwnBucket, 600, true, "p"),
                                     Complete(kSegment, 0, kOwnBucket, 2, false, "p")));
    EXPECT_EQ(store->GetRequestCount(), 2u);
}

TEST_F(ListingWire, WhatAnEarlierListingLeftIsClearedThoughNothingTakesItsPlace) {
    const auto store = MakeStore();
    const int refused = StatusOf(Aws::S3::S3Errors::NO_SUCH_BUCKET);
    for (const bool segmented : {false, true}) {
        for (const int status : {refused, 0}) {
            m_server.Next(status == 0 ? ListingPage({})
                                      : Answer::S3Error(404, "NoSuchBucket", "Gone"));
            CloudStoreObjInfo leftOver;
            CloudStoreListObjectConext listing;
            listing.m_pszBucket = kOwnBucket;
            listing.m_pObjects = &leftOver;
            listing.m_nObjectCount = 7;
            listing.m_bTruncated = true;
            EXPECT_EQ(
                segmented ? store->ListObjectsSegmented(&listing) : store->ListObjects(&listing),
                status);
            EXPECT_EQ(listing.m_pObjects, nullptr);
            EXPECT_EQ(listing.m_nObjectCount, 0u);
            EXPECT_FALSE(listing.m_bTruncated);
            EXPECT_EQ(Lines().back(),
                      Complete(segmented ? kSegment : kWhole, status, kOwnBucket, 0, false));
        }
    }
}

TEST_F(ListingWire, ASegmentWithoutABucketNamesNoneAndSendsNothing) {
    const auto store = MakeStore();
    Listing listing(*store);
    EXPECT_EQ(store->ListObjectsSegmented(&listing),
              StatusOf(Aws::S3::S3Errors::MISSING_PARAMETER));
    EXPECT_THAT(m_server.Requests(), IsEmpty());
    EXPECT_EQ(store->GetRequestCount(), 1u);
    EXPECT_EQ(Lines().back(),
              Complete(kSegment, StatusOf(Aws::S3::S3Errors::MISSING_PARAMETER), "", 0, false));
}

TEST_F(ListingWire, AFailedSegmentKeepsItsToken) {
    const auto store = MakeStore();
    m_server.Next(Answer::S3Error(404, "NoSuchBucket", "Gone"));
    Listing listing(*store);
    listing.m_pszBucket = "x";
    std::copy_n("before", 7, listing.m_szContinuationToken);
    const int status = StatusOf(Aws::S3::S3Errors::NO_SUCH_BUCKET);
    EXPECT_EQ(store->ListObjectsSegmented(&listing), status);
    EXPECT_STREQ(listing.m_szContinuationToken, "before");
    EXPECT_THAT(Lines(),
                ElementsAre("[AwsS3Store::ListObjectsSegmented]ListObjectsV2 in "
                            "bucket:[the-configured-bucket] failed.",
                            "[AwsS3Store::ListObjectsSegmented]The error message:[Gone], EC:[" +
                                std::to_string(status) + "]",
                            Complete(kSegment, status, kOwnBucket, 0, false)));
}

TEST_F(ListingWire, AnEmptyTruncatedSegmentStillHandsOnItsToken) {
    const auto store = MakeStore();
    m_server.Next(ListingPage({}, "on"));
    Listing listing(*store);
    listing.m_pszBucket = "x";
    EXPECT_EQ(store->ListObjectsSegmented(&listing), 0);
    EXPECT_EQ(listing.m_pObjects, nullptr);
    EXPECT_TRUE(listing.m_bTruncated);
    EXPECT_STREQ(listing.m_szContinuationToken, "on");
}

TEST_F(ListingWire, ReleasingNothingSucceeds) {
    const auto store = MakeStore();
    CloudStoreListObjectConext listing;
    EXPECT_EQ(store->ReleaseObjectData(&listing), 0);
    EXPECT_EQ(listing.m_pObjects, nullptr);
    EXPECT_THAT(Lines(), IsEmpty()) << "its traces are above the module's threshold";
}

TEST_F(ListingWire, KeysAndTokensThatJustFitAreHandedOut) {
    const auto store = MakeStore();
    const std::string key(1023, 'k');
    const std::string token(259, 't');
    m_server.Next(ListingPage({key}, token));
    Listing listing(*store);
    listing.m_pszBucket = "x";
    EXPECT_EQ(store->ListObjectsSegmented(&listing), 0);
    EXPECT_THAT(listing.Keys(), ElementsAre(key));
    EXPECT_EQ(listing.m_szContinuationToken, token);
}

TEST_F(ListingWire, AnswersThatAreNoListingFail) {
    const auto store = MakeStore();
    std::vector<const char*> bodies{"<ListBucketResult><Contents>"};
    if (kBundledSdk) {  // of others, an installed SDK makes an empty listing
        bodies.insert(bodies.end(), {"", "<html><body>hello</body></html>", "<Other/>"});
    }
    for (const char* body : bodies) {
        m_server.Next(Answer::Status(200).Body(body));
        Listing listing(*store);
        EXPECT_NE(store->ListObjects(&listing), 0) << body;
        EXPECT_EQ(listing.m_pObjects, nullptr);
    }
}

using ListingDeathTest = ListingWire;

TEST_F(ListingDeathTest, AKeyThatDoesNotFitEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    m_server.Next(ListingPage({std::string(1024, 'k')}));
    const auto store = MakeStore();
    CloudStoreListObjectConext listing;
    EXPECT_DEATH(store->ListObjects(&listing), "a text does not fit");
}

TEST_F(ListingDeathTest, ATokenThatDoesNotFitEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    m_server.Next(ListingPage({}, std::string(260, 't')));
    const auto store = MakeStore();
    CloudStoreListObjectConext listing;
    listing.m_pszBucket = "x";
    EXPECT_DEATH(store->ListObjectsSegmented(&listing), "a text does not fit");
}

}  // namespace
}  // namespace Mirqos::Test
