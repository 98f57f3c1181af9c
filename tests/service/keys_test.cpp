#include <string>
#include <vector>

#include "store/AwsSdk.h"
#include "store/ObjectKey.h"
#include "tests/service/KeyShapes.h"
#include "tests/service/ServiceTest.h"

namespace {

using Mirqos::Test::Bytes;
using Mirqos::Test::KeyShapes;
using Mirqos::Test::ReadAttempt;
using Mirqos::Test::ServiceTest;
using Mirqos::Test::SomeBytes;
using Mirqos::Test::StorePointer;

constexpr auto kNoSuchKey = static_cast<std::int32_t>(Aws::S3::S3Errors::NO_SUCH_KEY);

class Keys : public ServiceTest {
protected:
    StorePointer StoreOfProvider(std::int32_t providerType) {
        CloudStoreConfigInfo config = Config();
        config.m_nProviderType = providerType;
        return NewStore(config);
    }
};

/// Writes every key first, so that two keys that fell together on the way would show.
TEST_F(Keys, OfEveryShapeAreKeptApartAndExact) {
    const auto store = StoreOfProvider(0);
    const std::vector<std::string> keys = KeyShapes();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(Write(*store, keys[i], SomeBytes(100, i)), 0) << keys[i];
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const ReadAttempt read = Read(*store, keys[i], 0, 99);
        EXPECT_EQ(read.status, 0) << keys[i];
        EXPECT_EQ(read.Delivered(), SomeBytes(100, i)) << keys[i];
    }
    for (const std::string& key : keys) {
        EXPECT_EQ(Delete(*store, key), 0) << key;
        EXPECT_EQ(Read(*store, key, 0, 99).status, kNoSuchKey) << key;
    }
}

TEST_F(Keys, WithAtSignsAreStoredWithPlusSignsOnProviderType5) {
    const auto substituting = StoreOfProvider(Mirqos::ProviderType::kPlusForAt);
    const auto plain = StoreOfProvider(0);
    const Bytes bytes = SomeBytes(100);
    ASSERT_EQ(Write(*substituting, "a@b@/c", bytes), 0);
    EXPECT_EQ(Read(*substituting, "a@b@/c", 0, 99).Delivered(), bytes);
    EXPECT_EQ(Read(*plain, "a+b+/c", 0, 99).Delivered(), bytes);
    EXPECT_EQ(Read(*plain, "a@b@/c", 0, 99).status, kNoSuchKey);
    EXPECT_EQ(Delete(*substituting, "a@b@/c"), 0);
    EXPECT_EQ(Read(*plain, "a+b+/c", 0, 99).status, kNoSuchKey);
}

TEST_F(Keys, OfEveryShapeComeBackOnProviderType5) {
    const auto store = StoreOfProvider(Mirqos::ProviderType::kPlusForAt);
    std::size_t seed = 0;
    for (const std::string& key : KeyShapes()) {
        const Bytes bytes = SomeBytes(100, ++seed);
        EXPECT_EQ(Write(*store, key, bytes), 0) << key;
        EXPECT_EQ(Read(*store, key, 0, 99).Delivered(), bytes) << key;
    }
}

TEST_F(Keys, AFailureIsLoggedWithTheKeyAsTheCallerGaveIt) {
    const auto store = StoreOfProvider(Mirqos::ProviderType::kPlusForAt);
    EXPECT_EQ(Read(*store, "not@there", 0, 99).status, kNoSuchKey);
    EXPECT_EQ(Log().CountContaining("read object:[not@there] failed."), 1u);
}

}  // namespace
