#include <set>
#include <string>

#include "store/ObjectKey.h"
#include "tests/service/posix/AwsCli.h"
#include "tests/support/KeyCorpus.h"
#include "tests/support/UsedSdk.h"

namespace {

using Mirqos::Test::AwsCli;
using Mirqos::Test::Bytes;
using Mirqos::Test::KeyCorpus;
using Mirqos::Test::ReadAttempt;
using Mirqos::Test::ServiceTest;
using Mirqos::Test::SomeBytes;

/// Another client looks at what the library wrote, and the other way round.
class OtherClient : public ServiceTest {
protected:
    std::set<std::string> List() const {
        std::set<std::string> keys;
        for (const auto& [key, size] : m_client.List(Bucket())) {
            EXPECT_EQ(size, 10u) << key;
            keys.insert(key);
        }
        return keys;
    }

    const AwsCli m_client;
};

TEST_F(OtherClient, ReadsWhatTheLibraryWrote) {
    const auto store = NewStore(Config());
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{5} << 20}) {
        const Bytes bytes = SomeBytes(size);
        ASSERT_EQ(Write(*store, "object", bytes), 0);
        EXPECT_TRUE(m_client.Fetch(Bucket(), "object") == bytes) << size;
    }
}

TEST_F(OtherClient, WritesWhatTheLibraryReads) {
    const auto store = NewStore(Config());
    const Bytes bytes = SomeBytes(100'000);
    const std::string key = Mirqos::Test::kBundledSdk ? "a @ b+c//d" : "a @ b+c/d";
    m_client.Send(Bucket(), key, bytes);
    const ReadAttempt read = Read(*store, key, 0, bytes.size() - 1);
    EXPECT_EQ(read.status, 0);
    EXPECT_TRUE(read.Delivered() == bytes);
}

TEST_F(OtherClient, ListsEveryKeyAsTheLibraryWasGivenIt) {
    const auto store = NewStore(Config());
    std::set<std::string> written;
    for (const std::string& key : KeyCorpus()) {
        EXPECT_EQ(Write(*store, key, SomeBytes(10)), 0) << key;
        written.insert(key);
    }
    EXPECT_EQ(List(), written);
}

TEST_F(OtherClient, ListsPlusSignsForAtSignsOnProviderType5) {
    CloudStoreConfigInfo config = Config();
    config.m_nProviderType = Mirqos::ProviderType::kPlusForAt;
    const auto store = NewStore(config);
    std::set<std::string> expected;
    for (const std::string& key : KeyCorpus()) {
        EXPECT_EQ(Write(*store, key, SomeBytes(10)), 0) << key;
        expected.insert(Mirqos::Test::WithPlusForAt(key));
    }
    EXPECT_EQ(List(), expected);
}

}  // namespace
