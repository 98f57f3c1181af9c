#include <aws/s3/model/BucketLocationConstraint.h>
#include <aws/s3/model/CreateBucketRequest.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "sdk/core/client/Text.h"
#include "sdk/core/client/WireRequest.h"

namespace {

using namespace Aws::S3::Model;
using BucketLocationConstraintMapper::GetBucketLocationConstraintForName;
using BucketLocationConstraintMapper::GetNameForBucketLocationConstraint;
using Mirqos::ToAws;
using Mirqos::ToStd;

std::string RoundTrip(const std::string& name) {
    return ToStd(
        GetNameForBucketLocationConstraint(GetBucketLocationConstraintForName(ToAws(name))));
}

TEST(BucketLocation, KnownNamesHaveEnumerators) {
    EXPECT_EQ(BucketLocationConstraint::eu_west_1, GetBucketLocationConstraintForName("eu-west-1"));
    EXPECT_EQ(BucketLocationConstraint::EU, GetBucketLocationConstraintForName("EU"));
    EXPECT_EQ("us-gov-west-1",
              ToStd(GetNameForBucketLocationConstraint(BucketLocationConstraint::us_gov_west_1)));
    for (int value = 0; value <= static_cast<int>(BucketLocationConstraint::us_west_2); ++value) {
        const auto constraint = static_cast<BucketLocationConstraint>(value);
        EXPECT_EQ(constraint, GetBucketLocationConstraintForName(
                                  GetNameForBucketLocationConstraint(constraint)))
            << value;
    }
}

TEST(BucketLocation, UnsetAndEmptyStandForEachOther) {
    EXPECT_EQ(BucketLocationConstraint::NOT_SET, GetBucketLocationConstraintForName(""));
    EXPECT_EQ("", ToStd(GetNameForBucketLocationConstraint(BucketLocationConstraint::NOT_SET)));
}

TEST(BucketLocation, OtherTextsSurviveBothDirections) {
    for (const char* const name : {"default", "eu-west-1 ", "EU-WEST-1", "<&>", "mars-1"}) {
        EXPECT_EQ(name, RoundTrip(name));
    }
    EXPECT_EQ(GetBucketLocationConstraintForName("mars-1"),
              GetBucketLocationConstraintForName("mars-1"));
    EXPECT_NE(GetBucketLocationConstraintForName("mars-1"),
              GetBucketLocationConstraintForName("mars-2"));
}

TEST(BucketLocation, ValuesNobodyMadeHaveNoName) {
    EXPECT_EQ("", ToStd(GetNameForBucketLocationConstraint(
                      static_cast<BucketLocationConstraint>(0x7FFFFFFF))));
    EXPECT_EQ("",
              ToStd(GetNameForBucketLocationConstraint(static_cast<BucketLocationConstraint>(-1))));
}

TEST(BucketLocation, TextsOfUnreasonableLengthAreNotKept) {
    EXPECT_EQ(std::string(1024, 'x'), RoundTrip(std::string(1024, 'x')));
    EXPECT_EQ(BucketLocationConstraint::NOT_SET,
              GetBucketLocationConstraintForName(ToAws(std::string(1025, 'x'))));
}

TEST(BucketLocation, ThreadsMayMapAtOnce) {
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (std::size_t i = 0; i < wrong.size(); ++i) {
        threads.emplace_back([&wrong, i] {
            for (int round = 0; round < 100; ++round) {
                const std::string name = "shared-" + std::to_string(round);
                wrong[i] += RoundTrip(name) == name ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::vector<int>(4, 0), wrong);
}

TEST(BucketLocation, CreateBucketSendsTheNameAsXml) {
    CreateBucketRequest request;
    request.WithBucket("bucket").WithCreateBucketConfiguration(
        CreateBucketConfiguration().WithLocationConstraint(
            GetBucketLocationConstraintForName("a<b")));

    EXPECT_EQ(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
        "<CreateBucketConfiguration xmlns=\"http://s3.amazonaws.com/doc/2006-03-01/\">"
        "<LocationConstraint>a&lt;b</LocationConstraint></CreateBucketConfiguration>",
        request.Describe().xml);
}

TEST(BucketLocation, CreateBucketWithoutConfigurationHasNoBody) {
    CreateBucketRequest request;
    request.SetBucket("bucket");

    EXPECT_EQ("", request.Describe().xml);
}

}  // namespace
