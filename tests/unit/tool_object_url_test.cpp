#include "tools/mirqos/ObjectUrl.h"

#include <gtest/gtest.h>

#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {
namespace {

/// The message of the failure that `parse` ends with; empty when it does not fail as a usage error.
template <typename Parse>
std::string UsageMessage(const Parse& parse) {
    try {
        parse();
    } catch (const Failure& failure) {
        return failure.Code() == ExitCode::Usage ? failure.what() : "";
    }
    return "";
}

TEST(ToolObjectUrl, EverythingBehindTheBucketIsTheKey) {
    const ObjectUrl url = ParseObjectUrl("s3://photos/2024/a b+c%20@d?e#f&g=\"h\"");
    EXPECT_EQ(url.bucket, "photos");
    EXPECT_EQ(url.key, "2024/a b+c%20@d?e#f&g=\"h\"");
}

TEST(ToolObjectUrl, SlashesAndDotsOfTheKeyStay) {
    EXPECT_EQ(ParseObjectUrl("s3://b//x").key, "/x");
    EXPECT_EQ(ParseObjectUrl("s3://b/x/").key, "x/");
    EXPECT_EQ(ParseObjectUrl("s3://b/../x/./y//z").key, "../x/./y//z");
    EXPECT_EQ(ParseObjectUrl("s3://b/s3://c/d").key, "s3://c/d");
}

TEST(ToolObjectUrl, KeysOtherThanAsciiStay) {
    EXPECT_EQ(ParseObjectUrl("s3://b/\xC3\xA4\xE2\x82\xAC").key, "\xC3\xA4\xE2\x82\xAC");
}

TEST(ToolObjectUrl, AKeyHasAtMost1024BytesOfUtf8) {
    EXPECT_EQ(ParseObjectUrl("s3://b/" + std::string(1024, 'k')).key.size(), 1024U);
    EXPECT_THROW(ParseObjectUrl("s3://b/" + std::string(1025, 'k')), Failure);
    EXPECT_THROW(ParseObjectUrl("s3://b/\xFF"), Failure);
}

TEST(ToolObjectUrl, AnObjectNeedsAKeyAndABucketHasNone) {
    EXPECT_NE(UsageMessage([] { ParseObjectUrl("s3://b"); }), "");
    EXPECT_NE(UsageMessage([] { ParseObjectUrl("s3://b/"); }), "");
    EXPECT_EQ(ParseBucketUrl("s3://b").bucket, "b");
    EXPECT_EQ(ParseBucketUrl("s3://b/").bucket, "b");
    EXPECT_NE(UsageMessage([] { ParseBucketUrl("s3://b/k"); }), "");
}

TEST(ToolObjectUrl, APrefixMayBeEmptyButHasTheLimitsOfAKey) {
    EXPECT_EQ(ParsePrefixUrl("s3://b").key, "");
    EXPECT_EQ(ParsePrefixUrl("s3://b/").key, "");
    EXPECT_EQ(ParsePrefixUrl("s3://b/a/").key, "a/");
    EXPECT_NE(UsageMessage([] { ParsePrefixUrl("s3://b/" + std::string(1025, 'k')); }), "");
    EXPECT_NE(UsageMessage([] { ParsePrefixUrl("s3://b/\xFF"); }), "");
}

TEST(ToolObjectUrl, OtherFormsAreUsageErrors) {
    for (const char* const wrong :
         {"", "s3:/b/k", "S3://b/k", "http://b/k", "b/k", "s3://", "s3:///k", "s3://../k",
          "s3://b c/k", "s3://b\xC3\xA4/k", "s3://b%2Fc/k"}) {
        EXPECT_NE(UsageMessage([&] { ParseObjectUrl(wrong); }), "") << wrong;
    }
    EXPECT_NE(UsageMessage([] { ParseObjectUrl("s3://" + std::string(256, 'b') + "/k"); }), "");
}

TEST(ToolObjectUrl, AWrongAddressIsNotRepeatedBecauseItMayHoldASecret) {
    const std::string message =
        UsageMessage([] { ParseObjectUrl("s3://KEYID:topsecret@bucket/key"); });
    EXPECT_NE(message, "");
    EXPECT_EQ(message.find("topsecret"), std::string::npos);
}

TEST(ToolObjectUrl, TheShownAddressCannotSteerTheTerminal) {
    EXPECT_EQ(ParseObjectUrl("s3://b/x\x1b[2Jy").Shown(), "s3://b/x?[2Jy");
    EXPECT_EQ(ParseBucketUrl("s3://b/").Shown(), "s3://b");
}

}  // namespace
}  // namespace Mirqos::Tool
