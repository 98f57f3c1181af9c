#include "tools/mirqos/StoredKey.h"

#include <gtest/gtest.h>

namespace Mirqos::Tool {
namespace {

TEST(ToolStoredKey, OnlyProviders5And6StoreAtAsPlus) {
    for (const std::int32_t provider : {5, 6}) {
        EXPECT_EQ(StoredKey(provider, "a@b+c@"), "a+b+c+") << provider;
        EXPECT_EQ(ListedKey(provider, "a@b+c+"), "a@b@c@") << provider;
    }
    for (const std::int32_t provider : {0, 1, 2, 3, 4, 7}) {
        EXPECT_EQ(StoredKey(provider, "a@b+c"), "a@b+c") << provider;
        EXPECT_EQ(ListedKey(provider, "a@b+c"), "a@b+c") << provider;
    }
}

TEST(ToolStoredKey, AKeyAndItsListedFormHaveTheSameStoredForm) {
    EXPECT_EQ(StoredKey(6, ListedKey(6, StoredKey(6, "a@b+c"))), StoredKey(6, "a@b+c"));
}

}  // namespace
}  // namespace Mirqos::Tool
