#include <boost/property_tree/json_parser.hpp>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>

#include "tests/service/Listings.h"
#include "tests/service/posix/AwsCli.h"
#include "tests/support/KeyCorpus.h"

namespace {

using boost::property_tree::ptree;
using Mirqos::Test::AwsCli;
using Mirqos::Test::ListingTest;
using Mirqos::Test::Sizes;
using namespace std::string_literals;

/// Another client looks at what the library listed, set and removed, and makes what it cannot make.
class OtherClientAdmin : public ListingTest {
protected:
    /// What `aws s3api ARGUMENTS --bucket BUCKET` prints.
    ptree Ask(const std::string& arguments) const {
        std::istringstream printed(m_client.Run(arguments + " --output json --bucket " + Bucket()));
        ptree document;
        if (!printed.str().empty()) {
            boost::property_tree::read_json(printed, document);
        }
        return document;
    }

    const AwsCli m_client;
};

TEST_F(OtherClientAdmin, ListsTheSameManyObjectsOfTheSameSizes) {
    CloudStoreConfigInfo config = Config();
    WriteAll(*NewStore(config), ManyObjects());
    const Sizes theirs = m_client.List(Bucket());
    EXPECT_EQ(theirs.size(), 2500u);
    EXPECT_EQ(WalkPages(*NewStore(config)).sizes, theirs);
}

TEST_F(OtherClientAdmin, ListsTheSameKeysOfEveryShape) {
    const auto store = NewStore(Config());
    Sizes written;
    Sizes deletable;
    for (const std::string& key : Mirqos::Test::KeyCorpus()) {
        if (key.size() < sizeof CloudStoreObjInfo::m_szKey && Mirqos::Test::IsListedBySdk(key)) {
            written[key] = written.size();
            if (Mirqos::Test::FitsXml(key)) {
                deletable.insert(*written.find(key));
            }
        }
    }
    WriteAll(*store, written);
    EXPECT_EQ(m_client.List(Bucket()), written);
    EXPECT_EQ(ListWhole(*store, Bucket()).sizes, written);
    EXPECT_EQ(WalkPages(*store).sizes, written);
    EXPECT_EQ(DeleteMany(*store, Bucket(), deletable), 0);
    for (const auto& [key, size] : deletable) {
        written.erase(key);
    }
    EXPECT_EQ(m_client.List(Bucket()), written);
}

TEST_F(OtherClientAdmin, SeesTheTagsThatWereSetAndSetsThoseThatAreRead) {
    const auto store = NewStore(Config());
    ASSERT_EQ(Write(*store, "object", {}), 0);
    PutObjectTaggingContext put;
    put.m_pszBucket = Bucket().c_str();
    put.m_pszKey = "object";
    put.m_pTags = "a:x:y\0f\xC3\xBCr:\xE6\x97\xA5\xE6\x9C\xAC\0";
    ASSERT_EQ(store->PutObjectTagging(&put), 0);
    std::set<std::pair<std::string, std::string>> tags;
    const ptree seen = Ask("get-object-tagging --key object");
    for (const auto& [place, tag] : seen.get_child("TagSet")) {
        tags.emplace(tag.get<std::string>("Key"), tag.get<std::string>("Value"));
    }
    EXPECT_EQ(tags, (std::set<std::pair<std::string, std::string>>{
                        {"a", "x:y"}, {"f\xC3\xBCr", "\xE6\x97\xA5\xE6\x9C\xAC"}}));

    Ask("put-object-tagging --key object --tagging " +
        AwsCli::Quoted("{\"TagSet\":[{\"Key\":\"one\",\"Value\":\"1\"},"
                       "{\"Key\":\"k\xC3\xB6ln\",\"Value\":\"\xF0\x9F\x97\x84\"}]}"));
    GetObjectTaggingContext get;
    get.m_pszBucket = Bucket().c_str();
    get.m_pszKey = "object";
    ASSERT_EQ(store->GetObjectTagging(&get), 0);
    const std::string list(get.m_szTags, 30);
    EXPECT_NE(list.find("one:1\0"s), std::string::npos);
    EXPECT_NE(list.find("k\xC3\xB6ln:\xF0\x9F\x97\x84\0"s), std::string::npos);
}

TEST_F(OtherClientAdmin, SeesTheLifecycleRuleAloneAndComplete) {
    const auto store = NewStore(Config());
    LifecycleConfigContext rule;
    rule.m_pszBucket = Bucket().c_str();
    for (const auto& [id, prefix, days] :
         {std::tuple("first", "old/", 1), {"clean-up", "new/", 7}}) {
        rule.m_pszRuleId = id;
        rule.m_pszPrefix = prefix;
        rule.m_nDays = days;
        ASSERT_EQ(store->PutBucketLifecycleConfiguration(&rule), 0);
    }
    const ptree configuration = Ask("get-bucket-lifecycle-configuration");
    const ptree& rules = configuration.get_child("Rules");
    ASSERT_EQ(rules.size(), 1u) << "the second replaced the first";
    const ptree& found = rules.front().second;
    EXPECT_EQ(found.get<std::string>("ID"), "clean-up");
    EXPECT_EQ(found.get<std::string>("Status"), "Enabled");
    EXPECT_EQ(found.get<std::string>("Filter.Prefix"), "new/");
    EXPECT_EQ(found.get<int>("AbortIncompleteMultipartUpload.DaysAfterInitiation"), 7);
    EXPECT_EQ(found.count("Expiration") + found.count("Transitions"), 0u);
}

TEST_F(OtherClientAdmin, StartsUploadsThatAreListed) {
    const auto store = NewStore(Config());
    std::set<std::pair<std::string, std::string>> started;
    for (const std::string& key : {"p/one"s, "p/two"s, "p/two"s, "q/a b+c&<>"s, "q/f\xC3\xBCr"s,
                                   std::string(259, 'k'), std::string(260, 'l')}) {
        const ptree upload = Ask("create-multipart-upload --key " + AwsCli::Quoted(key));
        if (key.size() < sizeof MultiPartInfo::m_szKey) {
            started.emplace(key, upload.get<std::string>("UploadId"));
        }
    }
    const auto listed = [&](const char* prefix) {
        CloudStoreListPartContext list;
        list.m_pszPrefix = prefix;
        EXPECT_EQ(store->ListMultipartUploads(&list), 0);
        EXPECT_STREQ(list.m_szKeyMarker, "");
        std::set<std::pair<std::string, std::string>> uploads;
        for (const MultiPartInfo& info : list.m_lstParts) {
            uploads.emplace(info.m_szKey, info.m_szUploadId);
        }
        EXPECT_EQ(uploads.size(), list.m_lstParts.size());
        return uploads;
    };
    EXPECT_EQ(started.size(), 6u);
    EXPECT_EQ(listed(""), started);
    EXPECT_EQ(Log().CountContaining("left out an upload too long to hand over: ["), 1u);
    EXPECT_EQ(listed("p/").size(), 3u);
    EXPECT_EQ(listed("none").size(), 0u);
}

}  // namespace
