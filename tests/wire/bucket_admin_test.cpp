#include <cstring>

#include "sdk/core/xml/Xml.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/Pages.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

class BucketAdmin : public WireTest {
protected:
    static Answer BucketNames(const std::vector<std::string>& names) {
        Xml::Writer writer;
        writer.Open("ListAllMyBucketsResult");
        writer.Open("Buckets");
        for (const std::string& name : names) {
            writer.Open("Bucket");
            writer.Leaf("Name", name);
            writer.Close();
        }
        return Answer::Status(200).Body(writer.Take());
    }
    static Answer Location(const std::string& name) {
        return Answer::Status(200).Body(
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><LocationConstraint>" + name +
            "</LocationConstraint>");
    }
    std::int32_t Locate(AwsS3Store& store) {
        std::memset(m_location, '#', sizeof m_location);
        return store.GetBucketLocation(kBucket, m_location, sizeof m_location);
    }

    char m_location[32];
};

TEST_F(BucketAdmin, DeletingABucketSendsExactlyThisRequest) {
    m_server.Next(Answer::Status(204));
    const auto store = MakeStore();
    CloudStoreDeleteBucketContext remove;
    remove.m_pszBucket = "old";
    EXPECT_EQ(store->DeleteBucket(&remove), 0);
    EXPECT_EQ(OnlyRequest().method, "DELETE");
    EXPECT_EQ(OnlyRequest().target, "/old");
    EXPECT_THAT(Lines(), ElementsAre("delete bucket:[old] successful!"));
    EXPECT_EQ(store->GetRequestCount(), 0u) << "it is not counted";
}

TEST_F(BucketAdmin, DeletingNoBucketSendsNothing) {
    const auto store = MakeStore();
    CloudStoreDeleteBucketContext remove;
    EXPECT_EQ(store->DeleteBucket(&remove), -1);
    EXPECT_THAT(m_server.Requests(), IsEmpty());
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(BucketAdmin, ARefusedDeleteGivesItsStatusAndItsLine) {
    m_server.Next(Answer::S3Error(409, "BucketNotEmpty", "Full"));
    const auto store = MakeStore();
    CloudStoreDeleteBucketContext remove;
    remove.m_pszBucket = "old";
    EXPECT_EQ(store->DeleteBucket(&remove), 100);
    EXPECT_THAT(Lines(), ElementsAre("delete bucket:[old] failed.[Unable to parse ExceptionName: "
                                     "BucketNotEmpty Message: Full]:[100]."));
}

TEST_F(BucketAdmin, BucketNamesComeAsOnePackedBlock) {
    m_server.Next(BucketNames({"a", "bc"}));
    const auto store = MakeStore();
    CloudStoreListBucketContext list;
    EXPECT_EQ(store->ListBucket(&list), 0);
    ASSERT_NE(list.m_pBucketNames, nullptr);
    EXPECT_EQ(std::string(list.m_pBucketNames, 6), "a\0bc\0\0"s);
    store->ReleaseBucketList(&list);
    EXPECT_EQ(list.m_pBucketNames, nullptr);
    EXPECT_EQ(OnlyRequest().method, "GET");
    EXPECT_EQ(OnlyRequest().target, "/");
    EXPECT_EQ(OnlyRequest().Value("host"), kEndpoint);
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_EQ(store->GetRequestCount(), 0u) << "it is not counted";
}

TEST_F(BucketAdmin, WithoutBucketsThePointerStaysAsItWas) {
    m_server.Next(BucketNames({}));
    const auto store = MakeStore();
    CloudStoreListBucketContext list;
    list.m_pBucketNames = kBucket;
    EXPECT_EQ(store->ListBucket(&list), 0);
    EXPECT_EQ(list.m_pBucketNames, kBucket);
    EXPECT_THAT(Lines(), ElementsAre("There is no bucket."));
}

TEST_F(BucketAdmin, ARefusedListGivesItsStatusAndItsLine) {
    m_server.Next(Answer::S3Error(403, "AccessDenied", "No"));
    const auto store = MakeStore();
    CloudStoreListBucketContext list;
    EXPECT_EQ(store->ListBucket(&list), 15);
    EXPECT_EQ(list.m_pBucketNames, nullptr);
    EXPECT_THAT(Lines(), ElementsAre("list bucket failed:[No]. EC:[15]."));
}

TEST_F(BucketAdmin, ALocationIsHandedOutAsTheServiceNamesIt) {
    const auto store = MakeStore();
    for (const char* name : {"eu-west-1", "EU", "default", "", "mars-north-7"}) {
        m_server.Next(Location(name));
        EXPECT_EQ(Locate(*store), 0);
        EXPECT_STREQ(m_location, name);
    }
    EXPECT_EQ(m_server.Requests().front().target, "/the-bucket?location");
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_EQ(store->GetRequestCount(), 0u) << "it is not counted";
}

constexpr char kWrongRegion[] =
    "The authorization header is malformed; the region 'us-east-1' is wrong; expecting 'eu-west-3'";

TEST_F(BucketAdmin, TheRegionThatTheServiceExpectsIsTheAnswer) {
    m_server.Next(Answer::S3Error(400, "AuthorizationHeaderMalformed", kWrongRegion));
    const auto store = MakeStore();
    EXPECT_EQ(Locate(*store), 0);
    EXPECT_STREQ(m_location, "eu-west-3");
    EXPECT_THAT(Lines(), ElementsAre("GetBucketLocation error(100): AuthorizationHeaderMalformed - "
                                     "Unable to parse ExceptionName: AuthorizationHeaderMalformed "
                                     "Message: "s +
                                     kWrongRegion + "."));
}

TEST_F(BucketAdmin, TheSameMessageUnderAnotherErrorTypeIsAFailure) {
    m_server.Next(Answer::S3Error(403, "AccessDenied", kWrongRegion));
    const auto store = MakeStore();
    EXPECT_EQ(Locate(*store), 15);
    EXPECT_EQ(m_location[0], '#');
}

TEST_F(BucketAdmin, AnUnknownErrorWithAnotherMessageStaysUnknown) {
    const auto store = MakeStore();
    for (const char* message :
         {"Something else", "The authorization header is malformed; the region 'x' is wrong",
          "The authorization header is malformed; the region 'x' is wrong; expecting 'cut"}) {
        m_server.Next(Answer::S3Error(400, "AuthorizationHeaderMalformed", message));
        EXPECT_EQ(Locate(*store), 100) << message;
        EXPECT_EQ(m_location[0], '#');
    }
}

TEST_F(BucketAdmin, ALocationOnALineOfItsOwnIsTheSame) {
    if (kSdk1_11) {
        GTEST_SKIP() << "1.11 keeps the blanks, and writes line ends as references";
    }
    m_server.Next(Location("\n  eu-west-1\n"));
    const auto store = MakeStore();
    EXPECT_EQ(Locate(*store), 0);
    EXPECT_STREQ(m_location, "eu-west-1");
}

TEST_F(BucketAdmin, AnErrorUnderStatus200IsNoLocation) {
    m_server.Next(Answer::S3Error(200, "AccessDenied", "No, in more words than there is room for"));
    const auto store = MakeStore();
    const std::int32_t status = kBundledSdk ? 15 : 100;
    EXPECT_EQ(Locate(*store), status);
    EXPECT_EQ(m_location[0], '#');
    EXPECT_EQ(m_log.CountContaining("GetBucketLocation error(" + std::to_string(status) + "): "),
              1u);
}

TEST_F(BucketAdmin, TooManyBucketsGives110AndLogsTheServicesType) {
    m_server.Next(Answer::S3Error(400, "TooManyBuckets", "Enough"));
    const auto store = MakeStore();
    EXPECT_EQ(Create(*store, "one-more", nullptr), 110);
    EXPECT_THAT(Lines(), ElementsAre("Create bucket:[one-more] failed! [Unable to parse "
                                     "ExceptionName: TooManyBuckets Message: Enough], EC:[100]"));
}

TEST_F(BucketAdmin, ALocationThatDoesNotFitEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    m_server.Next(Location("eu-west-1"));
    const auto store = MakeStore();
    char room[9];
    EXPECT_DEATH(store->GetBucketLocation(kBucket, room, sizeof room), "a text does not fit");
}

TEST_F(BucketAdmin, AnExpectedRegionThatDoesNotFitEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    m_server.Next(Answer::S3Error(400, "AuthorizationHeaderMalformed", kWrongRegion));
    const auto store = MakeStore();
    char room[9];
    EXPECT_DEATH(store->GetBucketLocation(kBucket, room, sizeof room), "a text does not fit");
}

TEST_F(BucketAdmin, TextsThatJustFitAreHandedOut) {
    m_server.Next(Location("eu-west-1"));
    m_server.Next(Answer::S3Error(400, "AuthorizationHeaderMalformed", kWrongRegion));
    const auto store = MakeStore();
    char room[10];
    EXPECT_EQ(store->GetBucketLocation(kBucket, room, sizeof room), 0);
    EXPECT_STREQ(room, "eu-west-1");
    EXPECT_EQ(store->GetBucketLocation(kBucket, room, sizeof room), 0);
    EXPECT_STREQ(room, "eu-west-3");
}

class UnfinishedUploads : public WireTest {
protected:
    /// An installed SDK sorts the query and gives every word in it a value.
    static std::string Target(const char* bundled, const char* installed) {
        return kBundledSdk ? bundled : installed;
    }
    static constexpr char kName[] = "AwsS3Store::ListMultipartUploads";

    std::int32_t List(AwsS3Store& store) {
        m_list.m_pszPrefix = m_prefix;
        return store.ListMultipartUploads(&m_list);
    }
    std::vector<std::string> Found() const {
        std::vector<std::string> found;
        for (const MultiPartInfo& info : m_list.m_lstParts) {
            found.push_back(info.m_szKey + "="s + info.m_szUploadId);
        }
        return found;
    }
    static std::string Enter(const std::string& bucket) {
        return kName + " enter. bucket:["s + bucket + "] prefix:[p].";
    }
    static std::string Leave(const std::string& bucket, std::size_t count) {
        return kName + " leave. bucket:["s + bucket + "] prefix:[p] count:[" +
               std::to_string(count) + "].";
    }

    CloudStoreListPartContext m_list;
    const char* m_prefix = "p";
};

TEST_F(UnfinishedUploads, TwoPagesAreAppendedToOneList) {
    m_server.Next(UploadsPage({{"a", "1"}, {"b", "2"}}, true, "b"));
    m_server.Next(UploadsPage({{"c", "3"}}));
    const auto store = MakeStore();
    m_list.m_pszBucket = "other";
    EXPECT_EQ(List(*store), 0);
    EXPECT_STREQ(m_list.m_szKeyMarker, "b");
    EXPECT_EQ(List(*store), 0);
    EXPECT_STREQ(m_list.m_szKeyMarker, "");
    EXPECT_THAT(Found(), ElementsAre("a=1", "b=2", "c=3"));
    EXPECT_EQ(m_server.Requests().at(0).target,
              Target("/other?uploads&prefix=p", "/other?prefix=p&uploads=uploads"));
    EXPECT_EQ(m_server.Requests().at(1).target,
              Target("/other?uploads&prefix=p&key-marker=b",
                     "/other?key-marker=b&prefix=p&uploads=uploads"));
    EXPECT_THAT(Lines(),
                ElementsAre(Enter("other"), Leave("other", 2), Enter("other"), Leave("other", 3)));
    EXPECT_EQ(store->GetRequestCount(), 2u);
}

TEST_F(UnfinishedUploads, AnEmptyPrefixIsSentAsWell) {
    m_server.Next(UploadsPage({}));
    const auto store = MakeStore();
    m_prefix = "";
    EXPECT_EQ(List(*store), 0);
    EXPECT_EQ(OnlyRequest().target, Target("/the-configured-bucket?uploads&prefix",
                                           "/the-configured-bucket?prefix=&uploads=uploads"));
}

TEST_F(UnfinishedUploads, AFullMarkerIsClearedToItsLastByte) {
    m_server.Next(UploadsPage({}, true, std::string(259, 'm')));
    m_server.Next(UploadsPage({}, true, "n"));
    const auto store = MakeStore();
    EXPECT_EQ(List(*store), 0);
    EXPECT_EQ(m_list.m_szKeyMarker, std::string(259, 'm'));
    EXPECT_EQ(List(*store), 0);
    EXPECT_EQ(std::string(m_list.m_szKeyMarker, 260), "n" + std::string(259, '\0'));
}

TEST_F(UnfinishedUploads, AnAnswerThatIsNotTruncatedHasNoMarker) {
    m_server.Next(UploadsPage({{"a", "1"}}, false, "a"));
    const auto store = MakeStore();
    std::memcpy(m_list.m_szKeyMarker, "here", 5);
    EXPECT_EQ(List(*store), 0);
    EXPECT_STREQ(m_list.m_szKeyMarker, "");
}

TEST_F(UnfinishedUploads, WithoutABucketTheConfiguredOneIsListed) {
    m_server.Next(UploadsPage({}));
    const auto store = MakeStore();
    EXPECT_EQ(List(*store), 0);
    EXPECT_EQ(OnlyRequest().target, Target("/the-configured-bucket?uploads&prefix=p",
                                           "/the-configured-bucket?prefix=p&uploads=uploads"));
    EXPECT_THAT(Lines(), ElementsAre(Enter("(null)"), Leave("(null)", 0)));
}

TEST_F(UnfinishedUploads, ARefusalLeavesMarkerAndListAlone) {
    m_server.Next(Answer::S3Error(404, "NoSuchBucket", "Gone"));
    const auto store = MakeStore();
    m_list.m_pszBucket = kBucket;
    m_list.m_lstParts.emplace_back();
    std::memcpy(m_list.m_szKeyMarker, "here", 5);
    const int status = StatusOf(Aws::S3::S3Errors::NO_SUCH_BUCKET);
    EXPECT_EQ(List(*store), status);
    EXPECT_STREQ(m_list.m_szKeyMarker, "here");
    EXPECT_EQ(m_list.m_lstParts.size(), 1u);
    EXPECT_THAT(Lines(),
                ElementsAre(Enter(kBucket), "list part in bucket:[the-bucket] failed.",
                            "The list error message:[Gone], EC:[" + std::to_string(status) + "]",
                            Leave(kBucket, 1)));
}

TEST_F(UnfinishedUploads, OnlyUploadsThatFitARecordAreHandedOutAndOthersAreNamed) {
    const std::string fits(259, 'k');
    m_server.Next(UploadsPage({{fits, fits},
                               {std::string(260, 'l'), "one"},
                               {std::string(1024, 'm'), "two"},
                               {"short", std::string(260, 'n')},
                               {"last", "3"}}));
    const auto store = MakeStore();
    EXPECT_EQ(List(*store), 0);
    EXPECT_THAT(Found(), ElementsAre(fits + "=" + fits, "last=3"));
    const std::string leftOut = kName + " left out an upload too long to hand over: ["s;
    EXPECT_EQ(m_log.CountContaining(leftOut), 3u);
    EXPECT_EQ(m_log.CountContaining(leftOut + "one] [llll"), 1u);
    EXPECT_EQ(m_log.CountContaining(leftOut + "two] [mmmm"), 1u);
    EXPECT_EQ(Lines().back(), Leave("(null)", 2));
}

TEST_F(UnfinishedUploads, ANextMarkerThatDoesNotFitGives34) {
    m_server.Next(UploadsPage({{"a", "1"}}, true, std::string(260, 'n')));
    const auto store = MakeStore();
    std::memcpy(m_list.m_szKeyMarker, "here", 5);
    EXPECT_EQ(List(*store), 34);
    EXPECT_EQ(std::string(m_list.m_szKeyMarker, 260), std::string(260, '\0'));
    EXPECT_THAT(Found(), ElementsAre("a=1"));
    EXPECT_EQ(m_log.CountContaining(kName + " next key marker too long to hand over: [nnn"s), 1u);
}

TEST_F(UnfinishedUploads, ATruncatedPageWithoutAMarkerEndsTheWalk) {
    m_server.Next(UploadsPage({{"a", "1"}}, true));
    const auto store = MakeStore();
    EXPECT_EQ(List(*store), 0);
    EXPECT_STREQ(m_list.m_szKeyMarker, "");
}

}  // namespace
}  // namespace Mirqos::Test
