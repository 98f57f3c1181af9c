#include <algorithm>
#include <cstring>
#include <utility>

#include "sdk/core/xml/Xml.h"
#include "tests/support/UsedSdk.h"
#include "tests/wire/WireTest.h"

namespace Mirqos::Test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using namespace std::string_literals;

class Tagging : public WireTest {
protected:
    using TagList = std::vector<std::pair<std::string, std::string>>;

    static std::int32_t Put(AwsS3Store& store, const char* tags, const char* key = "k") {
        PutObjectTaggingContext put;
        put.m_pszBucket = kBucket;
        put.m_pszKey = key;
        put.m_pTags = tags;
        return store.PutObjectTagging(&put);
    }

    std::int32_t Get(AwsS3Store& store, const char* key = "k") {
        std::memset(m_get.m_szTags, '#', sizeof m_get.m_szTags);
        m_get.m_pszBucket = kBucket;
        m_get.m_pszKey = key;
        return store.GetObjectTagging(&m_get);
    }
    /// The list up to and with its last entry's NUL; everything behind has to be zero.
    std::string Packed() const {
        const char* const end = m_get.m_szTags + sizeof m_get.m_szTags;
        const char* last = end;
        while (last > m_get.m_szTags && last[-1] == '\0') {
            --last;
        }
        return last == m_get.m_szTags ? std::string() : std::string(m_get.m_szTags, last + 1);
    }

    static Answer TagSet(const TagList& tags) {
        Xml::Writer writer;
        writer.Open("Tagging");
        writer.Open("TagSet");
        for (const auto& [key, value] : tags) {
            writer.Open("Tag");
            writer.Leaf("Key", key);
            writer.Leaf("Value", value);
            writer.Close();
        }
        return Answer::Status(200).Body(writer.Take());
    }

    GetObjectTaggingContext m_get;
};

TEST_F(Tagging, EntriesAreSplitAtTheirFirstColonAndOneWithoutIsKeyAndValueAlike) {
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_EQ(Put(*store, "a:1\0b:x:y\0c\0d:\0\0"), 0);
    const RecordedRequest request = OnlyRequest();
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.target, "/the-bucket/k?tagging");
    EXPECT_EQ(XmlOf(request),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
              "<Tagging xmlns=\"http://s3.amazonaws.com/doc/2006-03-01/\"><TagSet>"
              "<Tag><Key>a</Key><Value>1</Value></Tag><Tag><Key>b</Key><Value>x:y</Value></Tag>"
              "<Tag><Key>c</Key><Value>c</Value></Tag><Tag><Key>d</Key><Value></Value></Tag>"
              "</TagSet></Tagging>");
    EXPECT_EQ(request.Value("content-md5"), kSdk1_7 ? "" : Md5Of(request.body));
    EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
    EXPECT_THAT(Lines(), ElementsAre("Success to PutObjectTagging. Tag Count = 4 [a:1] [b:x:y] "
                                     "[c:c] [d:]"));
    EXPECT_EQ(store->GetRequestCount(), 1u);
}

TEST_F(Tagging, AnEmptyListSetsNoTags) {
    m_server.Next(Answer::Status(200));
    const auto store = MakeStore();
    EXPECT_EQ(Put(*store, ""), 0);
    EXPECT_THAT(XmlOf(OnlyRequest()), HasSubstr("<TagSet></TagSet>"));
    EXPECT_THAT(Lines(), ElementsAre("Success to PutObjectTagging. Tag Count = 0"));
}

TEST_F(Tagging, KeysGoWithoutTheSubstitution) {
    Setup setup;
    setup.provider = 6;
    const auto store = MakeStore(setup);
    m_server.Next(Answer::Status(200));
    EXPECT_EQ(Put(*store, "a:1\0", "x@y"), 0);
    m_server.Next(TagSet({}));
    EXPECT_EQ(Get(*store, "x@y"), 0);
    for (const RecordedRequest& request : m_server.Requests()) {
        EXPECT_EQ(request.target, PathOnWire("/the-bucket/x%40y") + "?tagging");
    }
}

TEST_F(Tagging, ARefusedPutGivesItsStatusAndItsLine) {
    m_server.Next(Answer::S3Error(404, "NoSuchKey", "No key"));
    const auto store = MakeStore();
    const int status = StatusOf(Aws::S3::S3Errors::NO_SUCH_KEY);
    EXPECT_EQ(Put(*store, "a:1\0"), status);
    EXPECT_THAT(Lines(), ElementsAre("Failed to PutObjectTagging. ret[" + std::to_string(status) +
                                     "], Error:[No key]."));
}

TEST_F(Tagging, TagsComeBackPackedWithZerosBehind) {
    m_server.Next(TagSet({{"name", "alpha"}, {"owner", "beta"}}));
    const auto store = MakeStore();
    EXPECT_EQ(Get(*store), 0);
    EXPECT_EQ(Packed(), "name:alpha\0owner:beta\0"s);
    EXPECT_EQ(OnlyRequest().target, "/the-bucket/k?tagging");
    EXPECT_THAT(Lines(), ElementsAre("Success to GetObjectTagging. Tag Count = 2 [name:alpha] "
                                     "[owner:beta]"));
    EXPECT_EQ(store->GetRequestCount(), 1u);
}

TEST_F(Tagging, ARefusedGetLeavesTheListAllZero) {
    m_server.Next(Answer::S3Error(403, "AccessDenied", "No"));
    const auto store = MakeStore();
    EXPECT_EQ(Get(*store), 15);
    EXPECT_EQ(Packed(), "");
    EXPECT_THAT(Lines(), ElementsAre("Failed to GetObjectTagging. ret[15] Error:[No]"));
}

// The room holds 2,600 bytes: the entries, a NUL behind each and one behind the list. Each test
// puts "a:1" and its NUL first, which leaves 2,596.
constexpr std::size_t kLeft = 2600 - 4;

TEST_F(Tagging, ATagSetThatJustFitsIsHandedOutWhole) {
    const std::string value(kLeft - 2 - 2, 'v');  // but for "k:" and both NULs
    m_server.Next(TagSet({{"a", "1"}, {"k", value}}));
    const auto store = MakeStore();
    EXPECT_EQ(Get(*store), 0);
    EXPECT_EQ(Packed(), "a:1\0k:"s + value + "\0"s);
    EXPECT_EQ(Packed().size(), 2599u);
}

TEST_F(Tagging, AValueThatLeavesNoRoomForBothNulsGives34AndKeepsTheTagsBefore) {
    const auto store = MakeStore();
    for (const std::size_t excess : {1, 2, 3, 1000}) {
        const std::string value(kLeft - 2 - 2 + excess, 'v');
        m_server.Next(TagSet({{"a", "1"}, {"k", value}, {"b", "2"}}));
        m_log.Clear();
        EXPECT_EQ(Get(*store), 34) << excess;
        EXPECT_EQ(Packed(), "a:1\0"s) << "the failing entry is erased, later ones are not tried";
        EXPECT_EQ(m_log.CountContaining("GetObjectTagging memcpy_s failed nErr[34] value[vvv"), 1u);
        EXPECT_EQ(m_log.CountContaining("memcpy_s"), 1u);
    }
}

TEST_F(Tagging, AKeyTooLongGives34WithItsOwnLine) {
    const std::string key(kLeft + 1, 'k');
    m_server.Next(TagSet({{"a", "1"}, {key, "v"}}));
    const auto store = MakeStore();
    EXPECT_EQ(Get(*store), 34);
    EXPECT_EQ(Packed(), "a:1\0"s);
    EXPECT_EQ(m_log.CountContaining("GetObjectTagging memcpy_s failed nErr[34] key[kkk"), 1u);
    EXPECT_EQ(m_log.CountContaining("memcpy_s"), 1u);
}

TEST_F(Tagging, AKeyThatLeavesNoRoomForItsColonOrItsNulsGives34WithTheValuesLine) {
    const auto store = MakeStore();
    for (const std::size_t room : {0, 1, 2}) {
        m_server.Next(TagSet({{"a", "1"}, {std::string(kLeft - room, 'k'), ""}}));
        m_log.Clear();
        EXPECT_EQ(Get(*store), 34) << room;
        EXPECT_EQ(Packed(), "a:1\0"s);
        EXPECT_EQ(Lines().back(), "GetObjectTagging memcpy_s failed nErr[34] value[].");
    }
}

TEST_F(Tagging, ManySmallTagsFillTheRoomToItsLastByte) {
    TagList tags;
    std::string packed;
    while (packed.size() + 10 <= 2599) {
        const std::string number = std::to_string(1000 + tags.size());
        tags.emplace_back("k" + number, "val");
        packed += "k" + number + ":val" + "\0"s;
    }
    tags.emplace_back("l", std::string(2599 - packed.size() - 3, 'v'));
    packed += "l:" + tags.back().second + "\0"s;
    m_server.Next(TagSet(tags));
    const auto store = MakeStore();
    EXPECT_EQ(Get(*store), 0);
    EXPECT_EQ(Packed(), packed);
    EXPECT_EQ(packed.size(), 2599u);
}

TEST_F(Tagging, AValueMayHoldColonsAndEmptyTextsOnTheWayBack) {
    m_server.Next(TagSet({{"b", "x:y"}, {"empty", ""}}));
    const auto store = MakeStore();
    EXPECT_EQ(Get(*store), 0);
    EXPECT_EQ(Packed(), "b:x:y\0empty:\0"s);
}

}  // namespace
}  // namespace Mirqos::Test
