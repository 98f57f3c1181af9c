#include <algorithm>
#include <cctype>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/KeyCorpus.h"
#include "tests/wire/AsyncReadTest.h"
#include "tests/wire/UploadOfKey.h"

namespace Mirqos::Test {
namespace {

using testing::ElementsAre;

struct KeyCase {
    std::string key;
    std::string wire;
};

std::string Repeat(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

// The wire's side is written out by hand: only letters, digits, "-", ".", "_", "~" and "/" stand as
// they are, everything else is the bytes' hexadecimal digits.
std::vector<KeyCase> KeyCases() {
    std::vector<KeyCase> cases{
        {"plain.txt", "plain.txt"},
        {"-._~", "-._~"},
        {"with space", "with%20space"},
        {" leading and trailing ", "%20leading%20and%20trailing%20"},
        {"a+b", "a%2Bb"},
        {"user@host", "user%40host"},
        {"@@", "%40%40"},
        {"50%", "50%25"},
        {"%41%2F", "%2541%252F"},
        {"folder/file", "folder/file"},
        {"/leading", "/leading"},
        {"//two leading", "//two%20leading"},
        {"double//slash", "double//slash"},
        {"trailing/", "trailing/"},
        {"trailing//", "trailing//"},
        {"/", "/"},
        {".", "."},
        {"..", ".."},
        {"./a", "./a"},
        {"a/./b", "a/./b"},
        {"a/../b", "a/../b"},
        {"../../up", "../../up"},
        {"a/..", "a/.."},
        {"a/.", "a/."},
        {"...", "..."},
        {"what?not#this", "what%3Fnot%23this"},
        {"a=b&c;d,e:f!g*h'i(j)k$l", "a%3Db%26c%3Bd%2Ce%3Af%21g%2Ah%27i%28j%29k%24l"},
        {"\"<>[]{}|\\^`", "%22%3C%3E%5B%5D%7B%7D%7C%5C%5E%60"},
        {"tab\tnew\nline\r\x7F\x01", "tab%09new%0Aline%0D%7F%01"},
        {"gr\xC3\xBC\xC3\x9F", "gr%C3%BC%C3%9F"},
        {"\xE6\x97\xA5\xE6\x9C\xAC/\xF0\x9F\x97\x84", "%E6%97%A5%E6%9C%AC/%F0%9F%97%84"},
        {"not UTF-8 \xFF\xFE", "not%20UTF-8%20%FF%FE"},
        {"http://host/path?x", "http%3A//host/path%3Fx"},
        {Repeat("k", 1024), Repeat("k", 1024)},
        {Repeat("a/", 512), Repeat("a/", 512)},
        {Repeat("\xC3\xA9", 512), Repeat("%C3%A9", 512)},
        {Repeat(" ", 1024), Repeat("%20", 1024)},
    };
    cases.erase(std::remove_if(cases.begin(), cases.end(),
                               [](const KeyCase& one) { return !IsKeptBySdk(one.key); }),
                cases.end());
    return cases;
}

class Keys : public WireTest, public testing::WithParamInterface<Style> {
protected:
    std::string Target(const std::string& wire) const {
        return (GetParam() == Style::path ? "/the-bucket/" : "/") + PathOnWire(wire);
    }
};

INSTANTIATE_TEST_SUITE_P(Styles, Keys, testing::Values(Style::path, Style::virtualHost),
                         [](const auto& info) {
                             return info.param == Style::path ? "Path" : "VirtualHost";
                         });

TEST_P(Keys, GoOnTheWireExactlyAndSignedForWrites) {
    m_server.On("PUT", "/").Always(Answer::Status(200));
    const auto store = MakeStore(In(GetParam()));
    for (const KeyCase& one : KeyCases()) {
        ASSERT_EQ(Write(*store, one.key, "v"), 0) << one.key;
        const RecordedRequest request = m_server.Requests().back();
        EXPECT_EQ(request.target, Target(one.wire)) << one.key;
        EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "") << one.key;
    }
    EXPECT_EQ(m_server.Requests().size(), KeyCases().size());
}

TEST_P(Keys, GoOnTheWireExactlyAndSignedForReads) {
    m_server.On("GET", "/").Always(Answer::Status(206).Body("v"));
    const auto store = MakeStore(In(GetParam()));
    for (const KeyCase& one : KeyCases()) {
        ASSERT_EQ(Read(*store, one.key).Delivered(), "v") << one.key;
        const RecordedRequest request = m_server.Requests().back();
        EXPECT_EQ(request.target, Target(one.wire)) << one.key;
        EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "") << one.key;
    }
    EXPECT_EQ(m_server.Requests().size(), KeyCases().size());
}

TEST_P(Keys, GoOnTheWireExactlyAndSignedForDeletions) {
    m_server.On("DELETE", "/").Always(Answer::Status(204));
    const auto store = MakeStore(In(GetParam()));
    for (const KeyCase& one : KeyCases()) {
        ASSERT_EQ(Delete(*store, one.key), 0) << one.key;
        const RecordedRequest request = m_server.Requests().back();
        EXPECT_EQ(request.target, Target(one.wire)) << one.key;
        EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "") << one.key;
    }
    EXPECT_EQ(m_server.Requests().size(), KeyCases().size());
}

TEST_P(Keys, AnEmptyKeyIsRefusedAndNeverBecomesARequestOnTheBucket) {
    const auto store = MakeStore(In(GetParam()));
    EXPECT_EQ(Write(*store, "", "v"), StatusOf(Aws::S3::S3Errors::MISSING_PARAMETER));
    EXPECT_EQ(Read(*store, "").status, StatusOf(Aws::S3::S3Errors::MISSING_PARAMETER));
    EXPECT_EQ(Delete(*store, ""), StatusOf(Aws::S3::S3Errors::MISSING_PARAMETER));
    EXPECT_TRUE(m_server.Requests().empty());
}

TEST_P(Keys, InAnEmptyBucketAreRefusedAndNeverBecomeABucket) {
    const auto store = MakeStore(In(GetParam()));
    const std::int32_t refused = StatusOf(Aws::S3::S3Errors::MISSING_PARAMETER);
    EXPECT_EQ(Write(*store, "k", "v", ""), refused);
    EXPECT_EQ(Read(*store, "k", 0, 100, "").status, refused);
    CloudStoreDeleteObjectContext remove;
    remove.m_pszBucket = "";
    remove.m_pszKey = "k";
    EXPECT_EQ(store->DeleteObject(&remove), refused);
    CloudStoreDeleteObjectsContextV2 removeMany;
    removeMany.m_pszBucket = "";
    removeMany.m_pKeys = "k\0";
    EXPECT_EQ(store->DeleteObjectsV2(&removeMany), refused);
    CloudStoreDeleteBucketContext removeBucket;
    removeBucket.m_pszBucket = "";
    EXPECT_EQ(store->DeleteBucket(&removeBucket), refused);
    EXPECT_TRUE(m_server.Requests().empty());
}

/// The text that stands percent-encoded in `wire`, where nothing but letters, digits, "-", ".",
/// "_",
/// "~" and "/" may stand as it is; nothing for any other text. So each key has one form on the
/// wire.
std::optional<std::string> Decoded(const std::string& wire) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string key;
    for (std::size_t i = 0; i < wire.size(); ++i) {
        if (wire[i] != '%') {
            const auto c = static_cast<unsigned char>(wire[i]);
            if (c >= 0x80 ||
                (std::isalnum(c) == 0 && std::string("-._~/").find(wire[i]) == wire.npos)) {
                return std::nullopt;
            }
            key += wire[i];
            continue;
        }
        const std::string hexadecimal = wire.substr(i + 1, 2);
        if (hexadecimal.size() != 2 || hexadecimal.find_first_not_of(digits) != wire.npos) {
            return std::nullopt;
        }
        key += static_cast<char>(std::stoi(hexadecimal, nullptr, 16));
        i += 2;
    }
    return key;
}

const std::vector<std::string>& EveryKey() {
    static const std::vector<std::string> keys = [] {
        std::vector<std::string> all = KeyCorpus();
        const std::vector<std::string> improper = ImproperKeys();
        all.insert(all.end(), improper.begin(), improper.end());
        return all;
    }();
    return keys;
}

/// Every operation that names an object, with every key, for the provider types that send keys as
/// they are and those that do not.
class Corpus : public AsyncRead, public testing::WithParamInterface<std::int32_t> {
protected:
    std::string Sent(const std::string& key) const {
        return GetParam() == 5 || GetParam() == 6 ? WithPlusForAt(key) : key;
    }
    std::unique_ptr<AwsS3Store> MakeProviderStore() {
        Setup setup;
        setup.provider = GetParam();
        return MakeStore(setup);
    }
    /// For each key in order, `each` requests named it, and those with a source named `sourceOf`
    /// it.
    template <class SourceOf>
    void ExpectNamed(const std::vector<std::string>& keys, std::size_t each, SourceOf&& sourceOf) {
        const std::vector<RecordedRequest> requests = m_server.Requests();
        ASSERT_EQ(requests.size(), each * keys.size());
        for (std::size_t i = 0; i < requests.size(); ++i) {
            const RecordedRequest& request = requests[i];
            const std::string& key = keys[i / each];
            SCOPED_TRACE(testing::PrintToString(key));
            EXPECT_EQ(Decoded(CanonicalPath(request.Path())), "/the-bucket/" + Sent(key));
            EXPECT_EQ(SignatureProblem(request, kKeyId, kSecret, kRegion), "");
            if (const std::string* const source = request.Header("x-amz-copy-source")) {
                EXPECT_EQ(Decoded(*source), "source-bucket/" + sourceOf(key));
            }
        }
    }
    void ExpectNamed(const std::vector<std::string>& keys, std::size_t each) {
        ExpectNamed(keys, each, [](const std::string& key) { return key; });
    }
};

INSTANTIATE_TEST_SUITE_P(Types, Corpus, testing::Values(0, 5, 6),
                         [](const auto& info) { return "Type" + std::to_string(info.param); });

TEST_P(Corpus, IsNamedExactlyByEveryOperationOnAnObject) {
    m_server.On("PUT", "/").Always(Answer::Status(200));
    m_server.On("HEAD", "/").Always(Answer::Status(200));
    m_server.On("GET", "/").Always(Answer::Status(206).Body("v"));
    m_server.On("DELETE", "/").Always(Answer::Status(204));
    const auto store = MakeProviderStore();
    for (const std::string& key : EveryKey()) {
        ASSERT_EQ(Write(*store, key, "v"), 0) << testing::PrintToString(key);
        ASSERT_EQ(Read(*store, key).Delivered(), "v") << testing::PrintToString(key);
        CloudStoreHeadObjectConext head;
        head.m_pszBucket = kBucket;
        head.m_pszKey = key.c_str();
        ASSERT_EQ(store->HeadObject(&head), 0) << testing::PrintToString(key);
        ASSERT_EQ(Delete(*store, key), 0) << testing::PrintToString(key);
    }
    ExpectNamed(EveryKey(), 4);
}

TEST_P(Corpus, IsNamedExactlyByAsynchronousReads) {
    m_server.On("GET", "/").Always(Answer::Status(206).Body("0123456789"));
    const auto store = MakeProviderStore();
    for (const std::string& key : EveryKey()) {
        OneRead read(0, 10, key.c_str());
        ASSERT_EQ(store->ReadObjectAsync(&read.context), 0);
        ASSERT_EQ(store->WaitForReadObjectAsync(&read.context), 0) << testing::PrintToString(key);
    }
    ExpectNamed(EveryKey(), 1);
}

TEST_P(Corpus, IsNamedExactlyBothAsTheSourceAndTheTargetOfACopy) {
    m_server.On("PUT", "/")
        .Always(
            Answer::Status(200).Body("<CopyObjectResult><ETag>\"e\"</ETag></CopyObjectResult>"));
    const auto store = MakeProviderStore();
    for (const std::string& key : EveryKey()) {
        CloudStoreCopyObjectContext copy;
        copy.m_pszSrcBucket = "source-bucket";
        copy.m_pszDstBucket = kBucket;
        copy.m_pszSrcKey = key.c_str();
        copy.m_pszDstKey = key.c_str();
        copy.m_nSrcSize = 1;
        ASSERT_EQ(store->CopyObject(&copy), 0) << testing::PrintToString(key);
    }
    ExpectNamed(EveryKey(), 1, [this](const std::string& key) { return Sent(key); });
}

/// The source of a copied part is passed on as the caller gave it. Some of the steps wait for each
/// other's packets under Wine, so each type has an eighth of the keys.
TEST_P(Corpus, IsNamedExactlyByEveryStepOfAnUpload) {
    const auto store = MakeProviderStore();
    std::vector<std::string> keys;
    for (std::size_t i = static_cast<std::size_t>(GetParam()); i < EveryKey().size(); i += 8) {
        keys.push_back(EveryKey()[i]);
    }
    for (const std::string& key : keys) {
        m_server.Next(UploadOfKey::Opened());
        m_server.Next(Answer::Status(200).Header("ETag", "\"e\""));
        m_server.Next(
            Answer::Status(200).Body("<CopyPartResult><ETag>\"e\"</ETag></CopyPartResult>"));
        m_server.Next(Answer::Status(204));
        m_server.Next(Answer::Status(200).Body("<CompleteMultipartUploadResult/>"));
        SCOPED_TRACE(testing::PrintToString(key));
        const UploadOfKey upload(*store, key);
        ASSERT_EQ(upload.Open(), 0);
        ASSERT_EQ(upload.SendPart(), 0);
        ASSERT_EQ(upload.CopySecondPart("source-bucket/" + key), 0);
        ASSERT_EQ(upload.Abort(), 0);
        ASSERT_EQ(upload.Finish(2), 0);
    }
    ExpectNamed(keys, 5);
}

class Provider : public WireTest, public testing::WithParamInterface<std::int32_t> {
protected:
    bool Substitutes() const { return GetParam() == 5 || GetParam() == 6; }
    std::unique_ptr<AwsS3Store> MakeProviderStore() {
        Setup setup;
        setup.provider = GetParam();
        return MakeStore(setup);
    }
};

INSTANTIATE_TEST_SUITE_P(Types, Provider, testing::Values(0, 1, 2, 3, 4, 5, 6, 7),
                         [](const auto& info) { return "Type" + std::to_string(info.param); });

TEST_P(Provider, AnAtSignGoesAsAPlusSignForTypesFiveAndSixOnly) {
    m_server.On("PUT", "/").Always(Answer::Status(200));
    m_server.On("GET", "/").Always(Answer::Status(206).Body("v"));
    m_server.On("DELETE", "/").Always(Answer::Status(204));
    const auto store = MakeProviderStore();
    EXPECT_EQ(Write(*store, "@a+b@@", "v"), 0);
    EXPECT_EQ(Read(*store, "@a+b@@").status, 0);
    EXPECT_EQ(Delete(*store, "@a+b@@"), 0);
    const auto requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 3u);
    for (const RecordedRequest& request : requests) {
        EXPECT_EQ(request.target, PathOnWire(Substitutes() ? "/the-bucket/%2Ba%2Bb%2B%2B"
                                                           : "/the-bucket/%40a%2Bb%40%40"));
    }
    EXPECT_THAT(Lines(), ElementsAre("Succeed to delete object @a+b@@ in bucket the-bucket."));
}

TEST_P(Provider, LogLinesShowTheKeyAsGiven) {
    m_server.On("", "/").Always(Answer::S3Error(403, "AccessDenied", "no"));
    const auto store = MakeProviderStore();
    ExpectWriteFailed(Write(*store, "a@b", "v"), Aws::S3::S3Errors::ACCESS_DENIED, "a@b",
                      testing::Eq("no"));
    m_log.Clear();
    ExpectReadFailed(Read(*store, "a@b"), Aws::S3::S3Errors::ACCESS_DENIED, "a@b",
                     testing::Eq("no"), "AccessDenied");
    m_log.Clear();
    const std::int32_t status = Delete(*store, "a@b");
    EXPECT_THAT(Lines(), ElementsAre("Failed to delete object a@b in bucket the-bucket. EC:" +
                                         std::to_string(status) + ".",
                                     "no"));
}

}  // namespace
}  // namespace Mirqos::Test
