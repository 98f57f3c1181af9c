#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "sdk/core/Seam.h"
#include "store/AwsSdk.h"
#include "tests/service/ServiceTest.h"
#include "tests/support/UsedSdk.h"

namespace {

using Aws::S3::S3Errors;
using Mirqos::Test::kBundledSdk;
using Mirqos::Test::ReadAttempt;
using Mirqos::Test::S3Server;
using Mirqos::Test::ServiceTest;
using Mirqos::Test::SomeBytes;
using Mirqos::Test::StorePointer;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

std::int32_t Status(S3Errors error) {
    return static_cast<std::int32_t>(error);
}

class Failures : public ServiceTest {
protected:
    /// The line of a failed write of the key "object", and that there is no other.
    void ExpectWriteLine(std::int32_t status) {
        EXPECT_THAT(Log().Texts(), ElementsAre(StartsWith("AwsS3Store::WriteObject failed. EC:[" +
                                                          std::to_string(status) + "], region:[" +
                                                          Config().m_pszRegion + "], bucket:[" +
                                                          Bucket() + "], OID:[object], ErrMsg[")));
        ForgetLog();
    }

    /// The two lines of a failed read of the key "object", which hold `part`, and no other.
    void ExpectReadLines(std::int32_t status, const std::string& part) {
        EXPECT_THAT(Log().Texts(),
                    ElementsAre("region:[" + std::string(Config().m_pszRegion) + "], bucket:[" +
                                    Bucket() + "] read object:[object] failed.",
                                AllOf(StartsWith("["), HasSubstr(part),
                                      EndsWith("],EC:[" + std::to_string(status) + "]."))));
        ForgetLog();
    }

    /// Reads and writes fail with that status and leave their lines.
    void ExpectBothFail(MIRQOSInterface& store, S3Errors error, const std::string& part) {
        EXPECT_EQ(Write(store, "object", SomeBytes(100)), Status(error));
        ExpectWriteLine(Status(error));
        const ReadAttempt read = Read(store, "object", 0, 99);
        EXPECT_EQ(read.status, Status(error));
        EXPECT_TRUE(read.LeftAlone());
        ExpectReadLines(Status(error), part);
    }
};

TEST_F(Failures, AMissingKeyIsNoSuchKeyAndLeavesTheRecordAlone) {
    const auto store = NewStore(Config());
    const ReadAttempt read = Read(*store, "object", 0, 99);
    EXPECT_EQ(read.status, Status(S3Errors::NO_SUCH_KEY));
    EXPECT_TRUE(read.LeftAlone());
    ExpectReadLines(read.status, ":NoSuchKey]");
}

TEST_F(Failures, AMissingBucketIsNoSuchBucket) {
    const auto store = NewStore(Config());
    const std::string missing = Mirqos::Test::NewBucketName();
    EXPECT_EQ(Write(*store, "object", SomeBytes(100), missing), Status(S3Errors::NO_SUCH_BUCKET));
    // the lines name the configured bucket
    ExpectWriteLine(Status(S3Errors::NO_SUCH_BUCKET));
    const ReadAttempt read = Read(*store, "object", 0, 99, missing);
    EXPECT_EQ(read.status, Status(S3Errors::NO_SUCH_BUCKET));
    EXPECT_TRUE(read.LeftAlone());
    ExpectReadLines(read.status, ":NoSuchBucket]");
}

TEST_F(Failures, AWrongSecretIsRefusedAsASignatureThatDoesNotMatch) {
    CloudStoreConfigInfo config = Config();
    config.m_pszSecretKey = "0123456789012345678901234567890123456789";
    const auto store = NewStore(config);
    ExpectBothFail(*store, S3Errors::SIGNATURE_DOES_NOT_MATCH, ":SignatureDoesNotMatch]");
}

TEST_F(Failures, AnUnknownKeyIdIsRefused) {
    CloudStoreConfigInfo config = Config();
    config.m_pszAccessKeyId = "NOBODYSKEY";
    const auto store = NewStore(config);
    ExpectBothFail(*store, S3Errors::INVALID_ACCESS_KEY_ID, ":InvalidAccessKeyId]");
}

TEST_F(Failures, ARangeBeyondTheEndIsRefusedAndNamedInTheMessage) {
    const auto store = NewStore(Config());
    ASSERT_EQ(Write(*store, "object", SomeBytes(100)), 0);
    for (const std::uint64_t first :
         {std::uint64_t{100}, std::uint64_t{101}, std::uint64_t{1} << 40}) {
        const ReadAttempt read = Read(*store, "object", first, first + 99);
        EXPECT_EQ(read.status, Status(S3Errors::UNKNOWN)) << first;
        EXPECT_TRUE(read.LeftAlone()) << first;
        ExpectReadLines(read.status, "InvalidRange");
    }
}

TEST_F(Failures, AStoreStillWorksAfterFailures) {
    const auto store = NewStore(Config());
    EXPECT_EQ(Read(*store, "object", 0, 99).status, Status(S3Errors::NO_SUCH_KEY));
    const auto bytes = SomeBytes(100);
    EXPECT_EQ(Write(*store, "object", bytes), 0);
    EXPECT_EQ(Read(*store, "object", 0, 99).Delivered(), bytes);
}

/// Hosts that do not answer. The waits between attempts are counted instead of waited for.
class Unreachable : public Failures {
protected:
    Unreachable() {
        Mirqos::TheSeam().sleep = [this](milliseconds wait) { m_waits.push_back(wait); };
        Mirqos::TheSeam().connectLimit = milliseconds(2000);
        Mirqos::TheSeam().stallLimit = milliseconds(2000);
    }
    ~Unreachable() override { Mirqos::TheSeam() = {}; }

    /// The waits of the SDK's default retry strategy: ten retries, the first at once.
    void ExpectAllRetries() {
        std::vector<milliseconds> expected{milliseconds(0)};
        for (int retry = 1; retry < 10; ++retry) {
            expected.emplace_back((1 << retry) * 25);
        }
        EXPECT_EQ(m_waits, expected);
        m_waits.clear();
    }

    /// A write and a read there both fail after all retries, with their lines.
    void ExpectNetworkErrors(const char* endPoint) {
        CloudStoreConfigInfo config = Config();
        config.m_pszEndPoint = endPoint;
        const auto store = NewStore(config);
        EXPECT_EQ(Write(*store, "object", SomeBytes(100)), Status(S3Errors::NETWORK_CONNECTION));
        ExpectAllRetries();
        ExpectWriteLine(Status(S3Errors::NETWORK_CONNECTION));
        const ReadAttempt read = Read(*store, "object", 0, 99);
        EXPECT_EQ(read.status, Status(S3Errors::NETWORK_CONNECTION));
        EXPECT_TRUE(read.LeftAlone());
        ExpectAllRetries();
        ExpectReadLines(read.status, "");
    }

    std::vector<milliseconds> m_waits;
};

TEST_F(Unreachable, ARefusedPortIsANetworkErrorAfterAllRetries) {
    ExpectNetworkErrors("127.0.0.1:1");
}

TEST_F(Unreachable, AnUnknownHostIsANetworkErrorAfterAllRetries) {
    ExpectNetworkErrors("no-such-host.invalid");
}

TEST_F(Unreachable, AMissingKeyIsNotTriedAgain) {
    const auto store = NewStore(Config());
    EXPECT_EQ(Read(*store, "object", 0, 99).status, Status(S3Errors::NO_SUCH_KEY));
    EXPECT_TRUE(m_waits.empty());
}

/// With every SDK statement in the log.
class Secrets : public ServiceTest {
protected:
    Secrets() : ServiceTest(6) {}
};

TEST_F(Secrets, AreInNoLogLineAtTheMostTalkativeLevel) {
    const S3Server& server = Mirqos::Test::TheS3Server();
    const auto store = NewStore(Config());
    EXPECT_EQ(Write(*store, "object", SomeBytes(100)), 0);
    EXPECT_EQ(Read(*store, "object", 0, 99).status, 0);
    EXPECT_EQ(Read(*store, "missing", 0, 99).status, Status(S3Errors::NO_SUCH_KEY));
    EXPECT_GT(Log().CountContaining("[AWS_SDK] "), 0u);
    EXPECT_EQ(Log().CountContaining(server.secretKey), 0u);
    // an installed SDK writes the headers of its requests
    EXPECT_EQ(Log().CountContaining("Signature=") == 0, kBundledSdk);
}

}  // namespace
