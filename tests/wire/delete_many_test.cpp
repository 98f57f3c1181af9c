#include <algorithm>
#include <sstream>

#include "sdk/core/xml/Xml.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/Pages.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kName[] = "AwsS3Store::DeleteObjectsV2";

class DeleteMany : public WireTest {
protected:
    static std::int32_t DeleteAll(MIRQOSInterface& store, const std::vector<std::string>& keys) {
        std::string packed;
        for (const std::string& key : keys) {
            packed.append(key).push_back('\0');
        }
        CloudStoreDeleteObjectsContextV2 remove;
        remove.m_pszBucket = kBucket;
        remove.m_pKeys = packed.c_str();
        return store.DeleteObjectsV2(&remove);
    }
    static Answer Deleted(const std::vector<std::string>& keys, const std::string& failed = {}) {
        Xml::Writer writer;
        writer.Open("DeleteResult");
        for (const std::string& key : keys) {
            writer.Open("Deleted");
            writer.Leaf("Key", key);
            writer.Close();
        }
        if (!failed.empty()) {
            writer.Open("Error");
            writer.Leaf("Key", failed);
            writer.Leaf("Code", "AccessDenied");
            writer.Close();
        }
        return Answer::Status(200).Body(writer.Take());
    }
    std::unique_ptr<AwsS3Store> StoreOfProvider(std::int32_t provider) {
        Setup setup;
        setup.provider = provider;
        return MakeStore(setup);
    }
    std::vector<std::string> Requests() const {
        std::vector<std::string> texts;
        for (const RecordedRequest& request : m_server.Requests()) {
            texts.push_back(request.method + " " + request.target);
        }
        return texts;
    }
};

TEST_F(DeleteMany, SendsAllKeysInOneRequestWithTheirDigest) {
    m_server.Next(Deleted({"a", "b&c"}));
    const auto store = MakeStore();
    EXPECT_EQ(DeleteAll(*store, {"a", "b&c"}), 0);
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/the-bucket?delete");
    EXPECT_EQ(XmlOf(request),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
              "<Delete xmlns=\"http://s3.amazonaws.com/doc/2006-03-01/\">"
              "<Object><Key>a</Key></Object><Object><Key>b&amp;c</Key></Object></Delete>");
    EXPECT_EQ(request.Value("content-md5"), Md5Of(request.body));
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_THAT(Lines(), ElementsAre("[AwsS3Store::DeleteObjectsV2 Success. Count:2 bucket: "
                                     "the-bucket a b&c]"));
    EXPECT_EQ(store->GetRequestCount(), 0u) << "it is not counted";
}

TEST_F(DeleteMany, KeysOfAMultiObjectDeleteGoWithoutTheSubstitution) {
    m_server.Next(Deleted({"a@b"}));
    m_server.Next(Answer::Status(204));
    const auto store = StoreOfProvider(5);
    EXPECT_EQ(DeleteAll(*store, {"a@b"}), 0);
    EXPECT_THAT(m_server.Requests().at(0).body, testing::HasSubstr("<Key>a@b</Key>"));
    EXPECT_EQ(Delete(*store, "a@b"), 0);
    EXPECT_EQ(m_server.Requests().at(1).target, "/the-bucket/a%2Bb") << "unlike a single delete";
}

TEST_F(DeleteMany, FortyFiveDeletedKeysAreLoggedInThreeLines) {
    const std::vector<std::string> keys = NumberedKeys(45);
    m_server.Next(Deleted(keys));
    const auto store = MakeStore();
    EXPECT_EQ(DeleteAll(*store, keys), 0);
    const auto joined = [&](std::size_t from, std::size_t to) {
        std::string text;
        for (std::size_t i = from; i <= to; ++i) {
            text += " " + keys[i];
        }
        return text;
    };
    EXPECT_THAT(Lines(), ElementsAre("[AwsS3Store::DeleteObjectsV2 Success. Count:45 bucket: "
                                     "the-bucket" +
                                         joined(0, 20) + "]",
                                     "[" + joined(21, 40) + "]", "[" + joined(41, 44) + "]"));
}

TEST_F(DeleteMany, TwentyOneKeysMakeOneLineAndTwentyTwoMakeTwo) {
    const auto store = MakeStore();
    for (const std::size_t count : {1, 20, 21, 22}) {
        m_log.Clear();
        m_server.Next(Deleted(NumberedKeys(count)));
        EXPECT_EQ(DeleteAll(*store, NumberedKeys(count)), 0);
        EXPECT_EQ(Lines().size(), count > 21 ? 2u : 1u) << count;
    }
}

TEST_F(DeleteMany, KeysThatFailedInAnAcceptedRequestAreNotExamined) {
    m_server.Next(Deleted({"a"}, "b"));
    const auto store = MakeStore();
    EXPECT_EQ(DeleteAll(*store, {"a", "b"}), 0);
    EXPECT_THAT(Lines(), ElementsAre("[AwsS3Store::DeleteObjectsV2 Success. Count:1 bucket: "
                                     "the-bucket a]"));
}

TEST_F(DeleteMany, AnAnswerThatListsNothingWritesNothing) {
    m_server.Next(Deleted({}));
    const auto store = MakeStore();
    EXPECT_EQ(DeleteAll(*store, {"a"}), 0);
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(DeleteMany, ARefusalGivesItsStatusAndBothLines) {
    m_server.Next(Answer::S3Error(404, "NoSuchBucket", "Gone"));
    const auto store = MakeStore();
    const int status = StatusOf(Aws::S3::S3Errors::NO_SUCH_BUCKET);
    EXPECT_EQ(DeleteAll(*store, {"a", "b", "c"}), status);
    EXPECT_THAT(Lines(), ElementsAre("Failed to delete objects. count:3, bucket:the-bucket, EC:" +
                                         std::to_string(status) + ".",
                                     "Gone"));
}

TEST_F(DeleteMany, AnEmptyListAsksOrdinaryServicesAndNotGoogle) {
    m_server.Next(Answer::S3Error(400, "MalformedXML", "Empty"));
    const auto ordinary = MakeStore();
    EXPECT_EQ(DeleteAll(*ordinary, {}), 100);
    EXPECT_THAT(OnlyRequest().body, testing::EndsWith(kBundledSdk ? "/\"></Delete>" : ""));
    m_log.Clear();
    const auto google = StoreOfProvider(6);
    EXPECT_EQ(DeleteAll(*google, {}), 0);
    EXPECT_EQ(m_server.Requests().size(), 1u);
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(DeleteMany, GoogleGetsOneHeadAndOneDeleteForEachKeyAndMissingOnesAreSkipped) {
    m_server.On("HEAD", "/the-bucket/missing").Always(Answer::Status(404));
    m_server.On("HEAD", "").Always(Answer::Status(200));
    m_server.On("DELETE", "").Always(Answer::Status(204));
    const auto store = StoreOfProvider(6);
    EXPECT_EQ(DeleteAll(*store, {"a@b", "missing", "c"}), 0);
    EXPECT_THAT(Requests(), ElementsAre("HEAD /the-bucket/a%2Bb", "DELETE /the-bucket/a%2Bb",
                                        "HEAD /the-bucket/missing", "HEAD /the-bucket/c",
                                        "DELETE /the-bucket/c"));
    const std::string name = kName;
    EXPECT_THAT(Lines(), ElementsAre(name + " Checking object avilable a@b.",
                                     name + " Calling DeleteObject for Google Cloud storage a@b.",
                                     "Succeed to delete object a@b in bucket the-bucket.",
                                     name + " Checking object avilable missing.",
                                     "HeadObject [the-bucket missing] failed.",
                                     "The error message:[" + MessageOfNoBody(404) + "], EC:[16]",
                                     name + " object is not available missing. result = 16",
                                     name + " Checking object avilable c.",
                                     name + " Calling DeleteObject for Google Cloud storage c.",
                                     "Succeed to delete object c in bucket the-bucket."));
}

TEST_F(DeleteMany, GoogleSkipsAKeyWhoseCheckIsRefused) {
    m_server.On("HEAD", "").Always(Answer::Status(403));
    const auto store = StoreOfProvider(6);
    EXPECT_EQ(DeleteAll(*store, {"a"}), 0);
    EXPECT_THAT(Requests(), ElementsAre("HEAD /the-bucket/a"));
    EXPECT_EQ(Lines().back(), "AwsS3Store::DeleteObjectsV2 object is not available a. result = 15");
    EXPECT_EQ(store->GetRequestCount(), 1u) << "the check is counted, as every one is";
}

TEST_F(DeleteMany, ASuccessThatHoldsAnErrorDocumentIsAFailure) {
    if (!kBundledSdk) {
        GTEST_SKIP() << "an installed SDK takes it for a success";
    }
    m_server.On("POST", "")
        .Always(Answer::Status(200).Body(
            "<Error><Code>AccessDenied</Code><Message>No</Message></Error>"));
    const auto store = MakeStore();
    EXPECT_NE(DeleteAll(*store, {"a"}), 0);
    EXPECT_EQ(m_log.CountContaining("Failed to delete objects. count:1, bucket:the-bucket, EC:"),
              1u);
}

TEST_F(DeleteMany, TheLineOfASingleDeleteIsAtLevelTwoAndTheOthersAreAtOne) {
    m_server.Next(Answer::Status(204));
    m_server.Next(Deleted({"a"}));
    const auto store = MakeStore();
    m_log.Clear();
    EXPECT_EQ(Delete(*store, "a"), 0);
    EXPECT_EQ(DeleteAll(*store, {"a"}), 0);
    std::vector<int> levels;
    for (const RecordedLine& line : m_log.File().Lines()) {
        levels.push_back(line.level);
    }
    EXPECT_THAT(levels, ElementsAre(2, 1));
}

TEST_F(DeleteMany, GoogleStopsAtTheFirstKeyThatCannotBeDeleted) {
    m_server.On("HEAD", "").Always(Answer::Status(200));
    m_server.On("DELETE", "/the-bucket/two").Always(Answer::S3Error(403, "AccessDenied", "No"));
    m_server.On("DELETE", "").Always(Answer::Status(204));
    const auto store = StoreOfProvider(6);
    EXPECT_EQ(DeleteAll(*store, {"one", "two", "three"}), 15);
    EXPECT_THAT(Requests(), ElementsAre("HEAD /the-bucket/one", "DELETE /the-bucket/one",
                                        "HEAD /the-bucket/two", "DELETE /the-bucket/two"));
}

/// Says of every object that it exists, or that it is missing, and only notes what is deleted.
class DerivedStore : public AwsS3Store {
public:
    explicit DerivedStore(bool objectsExist) : m_objectsExist(objectsExist) {
        CloudStoreConfigInfo config;
        config.m_pszEndPoint = "storage.test";
        config.m_bUseHttps = 0;
        config.m_nProviderType = 6;
        EXPECT_EQ(Init(&config), 0);
    }

    int32_t HeadObject(CloudStoreHeadObjectConext* pContext) override {
        pContext->m_bExists = m_objectsExist;
        return 0;
    }
    int32_t DeleteObject(CloudStoreDeleteObjectContext* pContext) override {
        m_deleted.push_back(std::string(pContext->m_pszBucket) + " " + pContext->m_pszKey);
        return 0;
    }

    const std::vector<std::string>& Deleted() const { return m_deleted; }

private:
    const bool m_objectsExist;
    std::vector<std::string> m_deleted;
};

TEST_F(DeleteMany, GoogleDeletesThroughTheInterfaceSoADerivedStoreSeesEachKey) {
    DerivedStore store(true);
    EXPECT_EQ(DeleteAll(store, {"a@b", "c"}), 0);
    EXPECT_THAT(store.Deleted(), ElementsAre("the-bucket a@b", "the-bucket c"));
    EXPECT_THAT(m_server.Requests(), IsEmpty());
}

TEST_F(DeleteMany, GoogleAsksThroughTheInterfaceSoADerivedStoreAnswers) {
    DerivedStore store(false);
    EXPECT_EQ(DeleteAll(store, {"a"}), 0);
    EXPECT_THAT(store.Deleted(), IsEmpty());
    EXPECT_THAT(m_server.Requests(), IsEmpty());
    EXPECT_THAT(Lines(),
                ElementsAre("AwsS3Store::DeleteObjectsV2 Checking object avilable a.",
                            "AwsS3Store::DeleteObjectsV2 object is not available a. result = 0"));
}

}  // namespace
}  // namespace Mirqos::Test
