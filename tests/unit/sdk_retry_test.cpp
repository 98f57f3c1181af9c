#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/client/DefaultRetryStrategy.h>
#include <aws/core/utils/threading/Executor.h>
#include <gtest/gtest.h>

#include <cstring>
#include <future>
#include <limits>

#include "sdk/core/client/DefaultRegion.h"

namespace {

using Aws::Client::AWSError;
using Aws::Client::ClientConfiguration;
using Aws::Client::CoreErrors;
using Aws::Client::DefaultRetryStrategy;

const AWSError<CoreErrors> kRetryable(CoreErrors::SLOW_DOWN, true);
const AWSError<CoreErrors> kFinal(CoreErrors::ACCESS_DENIED, false);

TEST(SdkRetry, TenRetriesOfWhatIsRetryable) {
    const DefaultRetryStrategy strategy;
    for (long retries = 0; retries < 10; ++retries) {
        EXPECT_TRUE(strategy.ShouldRetry(kRetryable, retries)) << retries;
        EXPECT_FALSE(strategy.ShouldRetry(kFinal, retries)) << retries;
    }
    EXPECT_FALSE(strategy.ShouldRetry(kRetryable, 10));
}

TEST(SdkRetry, DelayIsNothingThenDoubles) {
    const DefaultRetryStrategy strategy;
    const long expected[] = {0, 50, 100, 200, 400, 800, 1600, 3200, 6400, 12800};
    for (long retries = 0; retries < 10; ++retries) {
        EXPECT_EQ(strategy.CalculateDelayBeforeNextRetry(kRetryable, retries), expected[retries]);
    }
}

TEST(SdkRetry, DelayNeverOverflows) {
    const DefaultRetryStrategy strategy(1000, 25);
    EXPECT_EQ(strategy.CalculateDelayBeforeNextRetry(kRetryable, 999),
              std::numeric_limits<long>::max());
}

TEST(SdkRetry, OwnNumbersAreUsed) {
    const DefaultRetryStrategy strategy(1, 10);
    EXPECT_TRUE(strategy.ShouldRetry(kRetryable, 0));
    EXPECT_FALSE(strategy.ShouldRetry(kRetryable, 1));
    EXPECT_EQ(strategy.CalculateDelayBeforeNextRetry(kRetryable, 1), 20);
}

TEST(SdkError, NumbersAreTheServicesOwn) {
    EXPECT_EQ(static_cast<int>(CoreErrors::INCOMPLETE_SIGNATURE), 0);
    EXPECT_EQ(static_cast<int>(CoreErrors::ACCESS_DENIED), 15);
    EXPECT_EQ(static_cast<int>(CoreErrors::RESOURCE_NOT_FOUND), 16);
    EXPECT_EQ(static_cast<int>(CoreErrors::REQUEST_TIMEOUT), 24);
    EXPECT_EQ(static_cast<int>(CoreErrors::NETWORK_CONNECTION), 99);
    EXPECT_EQ(static_cast<int>(CoreErrors::UNKNOWN), 100);
    EXPECT_EQ(static_cast<int>(CoreErrors::SERVICE_EXTENSION_START_RANGE), 128);
}

TEST(SdkError, ConversionKeepsEverything) {
    enum class Other { first = 128, second };
    AWSError<CoreErrors> core(static_cast<CoreErrors>(129), "Name", "Message", true);
    core.SetResponseCode(Aws::Http::HttpResponseCode::CONFLICT);
    const AWSError<Other> other = core;
    EXPECT_EQ(other.GetErrorType(), Other::second);
    EXPECT_EQ(other.GetExceptionName(), "Name");
    EXPECT_EQ(other.GetMessage(), "Message");
    EXPECT_EQ(other.GetResponseCode(), Aws::Http::HttpResponseCode::CONFLICT);
    EXPECT_TRUE(other.ShouldRetry());
}

const char* BothRegions(const char* name) {
    return std::strcmp(name, "AWS_REGION") == 0 ? "second" : "first";
}
const char* OtherRegion(const char* name) {
    return std::strcmp(name, "AWS_REGION") == 0 ? "second" : "";
}
const char* NoRegion(const char*) {
    return nullptr;
}

TEST(SdkConfiguration, RegionComesFromTheEnvironment) {
    EXPECT_EQ(Mirqos::Client::DefaultRegion(&BothRegions), "first");
    EXPECT_EQ(Mirqos::Client::DefaultRegion(&OtherRegion), "second");
    EXPECT_EQ(Mirqos::Client::DefaultRegion(&NoRegion), "us-east-1");
}

TEST(SdkConfiguration, DefaultsAreTheSdks) {
    const ClientConfiguration configuration;
    EXPECT_EQ(configuration.scheme, Aws::Http::Scheme::HTTPS);
    EXPECT_EQ(configuration.maxConnections, 25u);
    EXPECT_EQ(configuration.requestTimeoutMs, 3000);
    EXPECT_EQ(configuration.connectTimeoutMs, 1000);
    EXPECT_TRUE(configuration.verifySSL);
    EXPECT_EQ(configuration.endpointOverride, "");
    EXPECT_EQ(configuration.caFile, "");
    EXPECT_FALSE(configuration.region.empty());
    ASSERT_NE(configuration.retryStrategy, nullptr);
    EXPECT_TRUE(configuration.retryStrategy->ShouldRetry(kRetryable, 9));
    EXPECT_FALSE(configuration.retryStrategy->ShouldRetry(kRetryable, 10));
    ASSERT_NE(configuration.executor, nullptr);
    std::promise<void> ran;
    EXPECT_TRUE(configuration.executor->Submit([&ran] { ran.set_value(); }));
    ran.get_future().wait();
}

}  // namespace
