#include <aws/core/auth/AWSCredentials.h>
#include <aws/core/client/AsyncCallerContext.h>
#include <aws/core/utils/Outcome.h>
#include <aws/core/utils/StringUtils.h>
#include <aws/core/utils/memory/stl/AWSString.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

#include "sdk/core/util/UrlEncode.h"

namespace {

using Aws::Utils::StringUtils;

Aws::String Replaced(Aws::String text, const char* search, const char* replace) {
    StringUtils::Replace(text, search, replace);
    return text;
}

TEST(SdkStrings, StringIsDistinctExactlyWithItsOwnAllocator) {
    constexpr bool standardAllocator = std::is_same_v<Aws::Allocator<char>, std::allocator<char>>;
    EXPECT_EQ((std::is_same_v<Aws::String, std::string>), standardAllocator);
}

TEST(SdkStrings, EveryOccurrenceIsReplaced) {
    EXPECT_EQ(Replaced("a@b@c", "@", "+"), "a+b+c");
    EXPECT_EQ(Replaced("@@", "@", "+"), "++");
    EXPECT_EQ(Replaced("none", "@", "+"), "none");
    EXPECT_EQ(Replaced("", "@", "+"), "");
    EXPECT_EQ(Replaced("aXXbXX", "XX", "Y"), "aYbY");
    EXPECT_EQ(Replaced("a.b", ".", ""), "ab");
}

TEST(SdkStrings, WhatWasPutInIsNotSearchedAgain) {
    EXPECT_EQ(Replaced("aa", "a", "aa"), "aaaa");
    EXPECT_EQ(Replaced("abb", "ab", "a"), "ab");
}

TEST(SdkStrings, NothingToSearchForChangesNothing) {
    EXPECT_EQ(Replaced("text", "", "x"), "text");
    EXPECT_EQ(Replaced("text", nullptr, "x"), "text");
    EXPECT_EQ(Replaced("text", "t", nullptr), "ex");
}

TEST(SdkStrings, TextWithNulIsReplacedToItsEnd) {
    const Aws::String text("a@\0b@", 5);
    EXPECT_EQ(Replaced(text, "@", "+"), Aws::String("a+\0b+", 5));
}

TEST(SdkUrlEncode, UnreservedCharactersStay) {
    const std::string unreserved =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    EXPECT_EQ(Mirqos::EncodePath(unreserved), unreserved);
    EXPECT_EQ(Mirqos::EncodeQuery(unreserved), unreserved);
}

TEST(SdkUrlEncode, EveryOtherByteIsEncodedInUpperCase) {
    const std::string unreserved =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    for (int byte = 0; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        if (unreserved.find(one) != std::string::npos) {
            continue;
        }
        constexpr char digits[] = "0123456789ABCDEF";
        const std::string encoded{'%', digits[byte / 16], digits[byte % 16]};
        EXPECT_EQ(Mirqos::EncodeQuery(one), encoded);
        EXPECT_EQ(Mirqos::EncodePath(one), one == "/" ? one : encoded);
    }
}

TEST(SdkUrlEncode, NothingIsMergedOrDropped) {
    EXPECT_EQ(Mirqos::EncodePath("//a/../b/./c//"), "//a/../b/./c//");
    EXPECT_EQ(Mirqos::EncodePath("a b+c%20"), "a%20b%2Bc%2520");
    EXPECT_EQ(Mirqos::EncodeQuery("a/b=c&d"), "a%2Fb%3Dc%26d");
    EXPECT_EQ(Mirqos::EncodePath("\xC3\xA4"), "%C3%A4");
}

TEST(SdkOutcome, HoldsAResultOrAnError) {
    using Result = std::unique_ptr<int>;
    Aws::Utils::Outcome<Result, std::string> good(std::make_unique<int>(5));
    EXPECT_TRUE(good.IsSuccess());
    EXPECT_EQ(*good.GetResult(), 5);
    EXPECT_EQ(good.GetError(), "");
    Aws::Utils::Outcome<Result, std::string> moved(std::move(good));
    EXPECT_TRUE(moved.IsSuccess());
    const Result taken = moved.GetResultWithOwnership();
    EXPECT_EQ(*taken, 5);
    const Aws::Utils::Outcome<Result, std::string> bad(std::string("why"));
    EXPECT_FALSE(bad.IsSuccess());
    EXPECT_EQ(bad.GetError(), "why");
    EXPECT_FALSE((Aws::Utils::Outcome<Result, std::string>().IsSuccess()));
}

TEST(SdkOutcome, CopyIsIndependent) {
    Aws::Utils::Outcome<std::string, int> first(std::string("a"));
    Aws::Utils::Outcome<std::string, int> second = first;
    second.GetResult() = "b";
    EXPECT_EQ(first.GetResult(), "a");
    first = second;
    EXPECT_EQ(first.GetResult(), "b");
}

TEST(SdkOutcome, ErrorOfAnotherTypeIsConverted) {
    Aws::Utils::Outcome<int, short> failed(static_cast<short>(3));
    const Aws::Utils::Outcome<int, long> converted(std::move(failed));
    EXPECT_FALSE(converted.IsSuccess());
    EXPECT_EQ(converted.GetError(), 3L);
}

TEST(SdkCredentials, KeepWhatTheyWereGiven) {
    Aws::Auth::AWSCredentials credentials;
    EXPECT_EQ(credentials.GetAWSAccessKeyId(), "");
    credentials.SetAWSAccessKeyId("id");
    credentials.SetAWSSecretKey("secret");
    credentials.SetSessionToken("token");
    EXPECT_EQ(credentials.GetAWSAccessKeyId(), "id");
    EXPECT_EQ(credentials.GetAWSSecretKey(), "secret");
    EXPECT_EQ(credentials.GetSessionToken(), "token");
}

TEST(SdkAsyncCallerContext, CarriesTheCallersName) {
    Aws::Client::AsyncCallerContext context;
    EXPECT_EQ(context.GetUUID(), "");
    context.SetUUID("call");
    EXPECT_EQ(context.GetUUID(), "call");
}

}  // namespace
