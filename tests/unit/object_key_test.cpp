#include "store/ObjectKey.h"

#include <gtest/gtest.h>

namespace {

Aws::String Encoded(Aws::String key) {
    EncodeObjectKey(key);
    return key;
}

Aws::String Decoded(Aws::String key) {
    DecodeObjectKey(key);
    return key;
}

TEST(ObjectKey, EveryAtSignIsSentAsPlus) {
    EXPECT_EQ(Encoded("user@host@domain"), "user+host+domain");
    EXPECT_EQ(Encoded("@"), "+");
    EXPECT_EQ(Encoded("@@"), "++");
}

TEST(ObjectKey, EveryListedPlusComesBackAsAtSign) {
    EXPECT_EQ(Decoded("user+host+domain"), "user@host@domain");
    EXPECT_EQ(Decoded("++"), "@@");
}

TEST(ObjectKey, KeysWithNeitherCharacterStayAsTheyAre) {
    EXPECT_EQ(Encoded("a/b c%40.\xC3\xA4"), "a/b c%40.\xC3\xA4");
    EXPECT_EQ(Decoded("a/b c%2B.\xC3\xA4"), "a/b c%2B.\xC3\xA4");
    EXPECT_EQ(Encoded(""), "");
    EXPECT_EQ(Decoded(""), "");
}

TEST(ObjectKey, APlusOfTheCallersOwnIsKeptOnTheWayOut) {
    EXPECT_EQ(Encoded("a+b@c"), "a+b+c");
}

TEST(ObjectKey, OnlyProviderTypesFiveAndSixSubstitute) {
    for (const int32_t type : {-1, 0, 1, 2, 3, 4, 7, 100}) {
        EXPECT_FALSE(SubstitutesKeys(type)) << type;
    }
    EXPECT_TRUE(SubstitutesKeys(5));
    EXPECT_TRUE(SubstitutesKeys(6));
}

}  // namespace
