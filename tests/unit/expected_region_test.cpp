#include "store/ExpectedRegion.h"

#include <gtest/gtest.h>

#include "store/ProviderMarker.h"

namespace {

using Mirqos::ExpectedRegion;
using Mirqos::HasProviderMarker;

const std::string kMessage =
    "The authorization header is malformed; the region 'us-east-1' is wrong; expecting 'eu-west-3'";

TEST(ExpectedRegion, IsTheTextInQuotesBehindExpecting) {
    EXPECT_EQ(ExpectedRegion(kMessage), "eu-west-3");
    EXPECT_EQ(ExpectedRegion("Before. " + kMessage + " and after, 'quoted'."), "eu-west-3");
    EXPECT_EQ(ExpectedRegion("The authorization header is malformed; the region '' is wrong; "
                             "expecting 'x'"),
              "x");
}

TEST(ExpectedRegion, EveryCutMessageGivesNone) {
    for (std::size_t length = 0; length < kMessage.size(); ++length) {
        EXPECT_EQ(ExpectedRegion(kMessage.substr(0, length)), "") << length;
    }
}

TEST(ExpectedRegion, HasAtLeastOneCharacter) {
    const std::string start = kMessage.substr(0, kMessage.size() - 10);
    EXPECT_EQ(ExpectedRegion(start + "'"), "") << "nothing follows the quote";
    EXPECT_EQ(ExpectedRegion(start + "''"), "'") << "the first character is never the end";
    EXPECT_EQ(ExpectedRegion(start + "'more'"), "'more");
}

TEST(ExpectedRegion, PartsInTheWrongOrderGiveNone) {
    EXPECT_EQ(ExpectedRegion(" is wrong; expecting 'x'. The authorization header is malformed; the "
                             "region 'y'"),
              "");
}

TEST(ProviderMarker, IsFoundAnywhereInAnyLetterCase) {
    EXPECT_TRUE(HasProviderMarker("cloudflare"));
    EXPECT_TRUE(HasProviderMarker("HTTPS://ACC.R2.CLOUDFLARESTORAGE.COM:443"));
    EXPECT_TRUE(HasProviderMarker("ccloudflare"));
}

TEST(ProviderMarker, IsNotFoundInShorterOrOtherEndpoints) {
    EXPECT_FALSE(HasProviderMarker(""));
    EXPECT_FALSE(HasProviderMarker("cloudflar"));
    EXPECT_FALSE(HasProviderMarker("storage.googleapis.com"));
    EXPECT_FALSE(HasProviderMarker("cloud-flare.example"));
}

}  // namespace
