#include <aws/core/client/DefaultRetryStrategy.h>
#include <aws/core/utils/Array.h>
#include <aws/core/utils/logging/AWSLogging.h>
#include <aws/core/utils/memory/AWSMemory.h>
#include <aws/core/utils/stream/PreallocatedStreamBuf.h>
#include <aws/s3/model/DeleteObjectRequest.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <sstream>
#include <string>

#include "tests/support/S3Calls.h"
#include "tests/support/ScriptedTransport.h"

namespace {

using Aws::Client::ClientConfiguration;
using Aws::S3::S3Client;
using Aws::S3::S3Errors;
using Aws::Utils::Stream::PreallocatedStreamBuf;
using Mirqos::ToStd;
using Mirqos::Http::Failure;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using namespace Mirqos::Test;
using Policy = Aws::Client::AWSAuthV4Signer::PayloadSigningPolicy;

constexpr char kTag[] = "s3_pipeline_test";
constexpr char kHelloHash[] = "2cf24dba5fb0a30e26e83b2ac5b9e29e1b161e5c1fa7425e73043362938b9824";

// ---- Attempts

TEST(S3Pipeline, DefaultStrategyRetriesTenTimesWithGrowingDelays) {
    ScriptedNetwork network({ErrorReply(503, "SlowDown", "slower")});
    const S3Client client(kCredentials, Configuration());

    const auto outcome = client.PutObject(Put(Body("hello")));

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(S3Errors::SLOW_DOWN, outcome.GetError().GetErrorType());
    EXPECT_THAT(network.Requests(), SizeIs(11));
    EXPECT_THAT(network.Delays(), ElementsAre(0, 50, 100, 200, 400, 800, 1600, 3200, 6400, 12800));
}

TEST(S3Pipeline, SuccessAfterRetriesIsASuccess) {
    ScriptedNetwork network({Reply(500), NetworkFailure(Failure::receive, "reset"),
                             Reply(200, "", {{"ETag", "\"tag\""}})});
    const S3Client client(kCredentials, Configuration());

    const auto outcome = client.PutObject(Put(Body("hello")));

    ASSERT_TRUE(outcome.IsSuccess());
    EXPECT_EQ("\"tag\"", ToStd(outcome.GetResult().GetETag()));
    EXPECT_THAT(network.Requests(), SizeIs(3));
}

TEST(S3Pipeline, PermanentErrorIsNotRetried) {
    ScriptedNetwork network({ErrorReply(403, "AccessDenied", "no")});
    const S3Client client(kCredentials, Configuration());

    EXPECT_FALSE(client.PutObject(Put(Body("hello"))).IsSuccess());
    EXPECT_THAT(network.Requests(), SizeIs(1));
    EXPECT_THAT(network.Delays(), SizeIs(0));
}

TEST(S3Pipeline, StrategyOfTheConfigurationDecides) {
    ScriptedNetwork network({Reply(500)});
    ClientConfiguration configuration = Configuration();
    configuration.retryStrategy = std::make_shared<Aws::Client::DefaultRetryStrategy>(2, 7);
    EXPECT_FALSE(S3Client(kCredentials, configuration).PutObject(Put(Body("x"))).IsSuccess());
    EXPECT_THAT(network.Delays(), ElementsAre(0, 14));

    configuration.retryStrategy = nullptr;
    EXPECT_FALSE(S3Client(kCredentials, configuration).PutObject(Put(Body("x"))).IsSuccess());
    EXPECT_THAT(network.Requests(), SizeIs(3 + 1));
}

TEST(S3Pipeline, EachAttemptSendsTheWholeBodyFromItsStart) {
    ScriptedNetwork network({Reply(500), Reply(500), Reply(200)});
    const S3Client client(kCredentials, Configuration());
    const auto body = Body("skipped,hello");
    body->seekg(8);

    ASSERT_TRUE(client.PutObject(Put(body)).IsSuccess());

    ASSERT_THAT(network.Requests(), SizeIs(3));
    for (const auto& sent : network.Requests()) {
        EXPECT_EQ("hello", sent.body);
        EXPECT_EQ(5u, sent.request.bodyLength);
    }
}

TEST(S3Pipeline, EachAttemptIsSignedAfresh) {
    ScriptedNetwork network({Reply(500), Reply(200)});
    const S3Client client(kCredentials, Configuration());

    ASSERT_TRUE(client.PutObject(Put(Body("hello"))).IsSuccess());

    const auto sent = network.Requests();
    ASSERT_THAT(sent, SizeIs(2));
    EXPECT_EQ("20130524T000000Z", sent[0].Header("x-amz-date"));
    EXPECT_EQ("20130524T000100Z", sent[1].Header("x-amz-date"));
    EXPECT_NE(sent[0].Header("Authorization"), sent[1].Header("Authorization"));
}

TEST(S3Pipeline, NetworkFailuresKeepTheTransportsWords) {
    for (const Failure failure : {Failure::resolve, Failure::connect, Failure::timeout,
                                  Failure::send, Failure::receive, Failure::truncated}) {
        ScriptedNetwork network({NetworkFailure(failure, "what the system says")});
        const auto outcome = S3Client(kCredentials, Configuration()).GetObject(Get());
        ASSERT_FALSE(outcome.IsSuccess());
        EXPECT_EQ(S3Errors::NETWORK_CONNECTION, outcome.GetError().GetErrorType());
        EXPECT_EQ("what the system says", ToStd(outcome.GetError().GetMessage()));
        EXPECT_THAT(network.Requests(), SizeIs(11));
    }
}

TEST(S3Pipeline, RefusedCertificateIsNotRetried) {
    ScriptedNetwork network({NetworkFailure(Failure::tls, "certificate has expired")});

    const auto outcome = S3Client(kCredentials, Configuration()).GetObject(Get());

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(S3Errors::NETWORK_CONNECTION, outcome.GetError().GetErrorType());
    EXPECT_THAT(network.Requests(), SizeIs(1));
}

TEST(S3Pipeline, SkewedClockIsCorrectedByTheServicesDate) {
    TransportStep skewed = ErrorReply(403, "RequestTimeTooSkewed", "too far apart");
    skewed.headers = {{"Date", "Fri, 24 May 2013 02:00:00 GMT"}};
    ScriptedNetwork network({skewed, Reply(200)});
    const S3Client client(kCredentials, Configuration());

    ASSERT_TRUE(client.PutObject(Put(Body("hello"))).IsSuccess());
    ASSERT_TRUE(client.PutObject(Put(Body("hello"))).IsSuccess());

    const auto sent = network.Requests();
    ASSERT_THAT(sent, SizeIs(3));
    EXPECT_EQ("20130524T000000Z", sent[0].Header("x-amz-date"));
    EXPECT_EQ("20130524T020100Z", sent[1].Header("x-amz-date"));
    EXPECT_EQ("20130524T020100Z", sent[2].Header("x-amz-date"));
}

// ---- Requests

TEST(S3Pipeline, SignsHostAmzAndContentHeadersAndNothingElse) {
    ScriptedNetwork network({Reply(200)});
    ASSERT_TRUE(S3Client(kCredentials, Configuration()).PutObject(Put(Body("hello"))).IsSuccess());

    const auto sent = network.Requests().at(0);
    EXPECT_EQ("PUT", sent.request.method);
    EXPECT_EQ("/key", sent.request.target);
    EXPECT_EQ("bucket.s3.eu-west-1.amazonaws.com", sent.Header("Host"));
    EXPECT_EQ("binary/octet-stream", sent.Header("Content-Type"));
    EXPECT_THAT(sent.Header("User-Agent"), HasSubstr("MIRQOS/"));
    EXPECT_THAT(sent.Header("Authorization"),
                HasSubstr("AKID/20130524/eu-west-1/s3/aws4_request, SignedHeaders=content-length;"
                          "content-type;host;x-amz-content-sha256;x-amz-date, "));
}

TEST(S3Pipeline, BodyIsHashedOverPlainHttpOnlyUnlessThePolicySaysSo) {
    const auto hashOf = [](Aws::Http::Scheme scheme, Policy policy) {
        ScriptedNetwork network({Reply(200)});
        const S3Client client(kCredentials, Configuration(scheme), policy);
        EXPECT_TRUE(client.PutObject(Put(Body("hello"))).IsSuccess());
        return network.Requests().at(0).Header("x-amz-content-sha256");
    };
    EXPECT_EQ("UNSIGNED-PAYLOAD", hashOf(Aws::Http::Scheme::HTTPS, Policy::Never));
    EXPECT_EQ("UNSIGNED-PAYLOAD", hashOf(Aws::Http::Scheme::HTTPS, Policy::RequestDependent));
    EXPECT_EQ(kHelloHash, hashOf(Aws::Http::Scheme::HTTPS, Policy::Always));
    EXPECT_EQ(kHelloHash, hashOf(Aws::Http::Scheme::HTTP, Policy::Never));
}

TEST(S3Pipeline, HashedBodyIsSentWholeAllTheSame) {
    ScriptedNetwork network({Reply(200)});
    const S3Client client(kCredentials, Configuration(Aws::Http::Scheme::HTTP));
    const std::string large(1000 * 1000, 'x');

    ASSERT_TRUE(client.PutObject(Put(Body(large))).IsSuccess());
    EXPECT_EQ(large, network.Requests().at(0).body);
}

TEST(S3Pipeline, BodyOverACallersBufferOfAnySizeIsSent) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{70000}}) {
        ScriptedNetwork network({Reply(500), Reply(200)});
        const S3Client client(kCredentials, Configuration(Aws::Http::Scheme::HTTP));
        Aws::Utils::Array<unsigned char> bytes(size);
        if (size != 0) {
            std::memset(bytes.GetUnderlyingData(), 'b', size);
        }
        PreallocatedStreamBuf buffer(bytes.GetUnderlyingData(), bytes.GetLength());

        ASSERT_TRUE(
            client.PutObject(Put(Aws::MakeShared<Aws::IOStream>(kTag, &buffer))).IsSuccess());
        EXPECT_EQ(std::string(size, 'b'), network.Requests().at(1).body);
    }
}

TEST(S3Pipeline, BodyOverACallersBufferIsHashedFromWhereItBegins) {
    // the digest of "hello" is as well known as any
    constexpr char kHello[] = "2cf24dba5fb0a30e26e83b2ac5b9e29e1b161e5c1fa7425e73043362938b9824";
    ScriptedNetwork network({Reply(200)});
    const S3Client client(kCredentials, Configuration(Aws::Http::Scheme::HTTP));
    unsigned char bytes[] = {'.', '.', '.', 'h', 'e', 'l', 'l', 'o'};
    PreallocatedStreamBuf buffer(bytes, sizeof bytes);
    const auto body = Aws::MakeShared<Aws::IOStream>(kTag, &buffer);
    body->seekg(3);

    ASSERT_TRUE(client.PutObject(Put(body)).IsSuccess());
    EXPECT_EQ(kHello, network.Requests().at(0).Header("x-amz-content-sha256"));
    EXPECT_EQ("hello", network.Requests().at(0).body);
}

TEST(S3Pipeline, BodyOfADerivedBufferIsHashedAsItReads) {
    // Reads other bytes than lie in its memory.
    class Upper : public PreallocatedStreamBuf {
    public:
        using PreallocatedStreamBuf::PreallocatedStreamBuf;

    protected:
        std::streamsize xsgetn(char* to, std::streamsize count) override {
            const std::streamsize got = PreallocatedStreamBuf::xsgetn(to, count);
            std::transform(to, to + got, to,
                           [](char c) { return static_cast<char>(c - 'a' + 'A'); });
            return got;
        }
    };
    constexpr char kHello[] = "3733cd977ff8eb18b987357e22ced99f46097f31ecb239e878ae63760e83e4d5";
    ScriptedNetwork network({Reply(200)});
    const S3Client client(kCredentials, Configuration(Aws::Http::Scheme::HTTP));
    unsigned char bytes[] = {'h', 'e', 'l', 'l', 'o'};
    Upper buffer(bytes, sizeof bytes);

    ASSERT_TRUE(client.PutObject(Put(Aws::MakeShared<Aws::IOStream>(kTag, &buffer))).IsSuccess());
    EXPECT_EQ(kHello, network.Requests().at(0).Header("x-amz-content-sha256"));
    EXPECT_EQ("HELLO", network.Requests().at(0).body);
}

TEST(S3Pipeline, SessionTokenIsSentAndSigned) {
    ScriptedNetwork network({Reply(200)});
    const S3Client client(Aws::Auth::AWSCredentials("AKID", "secret", "token"), Configuration());

    ASSERT_TRUE(client.GetObject(Get()).IsSuccess());
    EXPECT_EQ("token", network.Requests().at(0).Header("x-amz-security-token"));
    EXPECT_THAT(network.Requests().at(0).Header("Authorization"),
                HasSubstr("x-amz-date;x-amz-security-token, "));
}

TEST(S3Pipeline, EmptyCredentialsSendUnsignedRequests) {
    ScriptedNetwork network({Reply(200)});
    const S3Client client(Aws::Auth::AWSCredentials(), Configuration(Aws::Http::Scheme::HTTP));

    ASSERT_TRUE(client.PutObject(Put(Body("hello"))).IsSuccess());
    EXPECT_EQ("", network.Requests().at(0).Header("Authorization"));
    EXPECT_EQ("", network.Requests().at(0).Header("x-amz-content-sha256"));
    EXPECT_EQ("hello", network.Requests().at(0).body);
}

TEST(S3Pipeline, RangeIsSentAsGiven) {
    ScriptedNetwork network({Reply(206, "x")});
    ASSERT_TRUE(S3Client(kCredentials, Configuration())
                    .GetObject(Get().WithRange("bytes=100-199"))
                    .IsSuccess());
    EXPECT_EQ("bytes=100-199", network.Requests().at(0).Header("Range"));
}

TEST(S3Pipeline, EmptyKeyNeverBecomesARequestOnTheBucket) {
    ScriptedNetwork network({Reply(200)});
    const S3Client client(kCredentials, Configuration());
    Aws::S3::Model::DeleteObjectRequest request;

    const auto noKey = client.DeleteObject(request.WithBucket("bucket").WithKey(""));
    const auto noBucket = client.DeleteObject(request.WithBucket("").WithKey("key"));

    ASSERT_FALSE(noKey.IsSuccess());
    EXPECT_EQ(S3Errors::MISSING_PARAMETER, noKey.GetError().GetErrorType());
    EXPECT_EQ("Missing required field [Key]", ToStd(noKey.GetError().GetMessage()));
    ASSERT_FALSE(noBucket.IsSuccess());
    EXPECT_EQ("Missing required field [Bucket]", ToStd(noBucket.GetError().GetMessage()));
    EXPECT_THAT(network.Requests(), SizeIs(0));
}

TEST(S3Pipeline, LineBreaksInHeadersNeverReachTheWire) {
    ScriptedNetwork network({Reply(200)});

    const auto outcome = S3Client(kCredentials, Configuration())
                             .GetObject(Get().WithRange("bytes=0-1\r\nx-evil: 1"));

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(S3Errors::INVALID_PARAMETER_VALUE, outcome.GetError().GetErrorType());
    EXPECT_THAT(network.Requests(), SizeIs(0));
}

TEST(S3Pipeline, BodyThatCannotSeekIsRefused) {
    struct OneWay : std::streambuf {};
    OneWay buffer;
    ScriptedNetwork network({Reply(200)});

    const auto outcome = S3Client(kCredentials, Configuration())
                             .PutObject(Put(std::make_shared<Aws::IOStream>(&buffer)));

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(S3Errors::INVALID_PARAMETER_VALUE, outcome.GetError().GetErrorType());
    EXPECT_THAT(network.Requests(), SizeIs(0));
}

/// A body that goes back so many times and then no more. The first is taken for its length.
class TiringBody : public std::stringbuf {
public:
    TiringBody(const char* text, int returns) : std::stringbuf(text), m_returns(returns) {}

protected:
    pos_type seekpos(pos_type place, std::ios_base::openmode mode) override {
        return m_returns-- > 0 ? std::stringbuf::seekpos(place, mode) : pos_type(off_type(-1));
    }

private:
    int m_returns;
};

TEST(S3Pipeline, BodyThatDoesNotGoBackIsNeverSentInPart) {
    const struct {
        int returns;
        std::size_t sent;
        const char* message;
    } cases[] = {{1, 0, "cannot be read from start to end"},  // for its digest
                 {2, 0, "cannot be sent again"},
                 {3, 1, "cannot be sent again"}};
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.returns);
        ScriptedNetwork network({Reply(500)});
        TiringBody buffer("hello", expected.returns);

        const auto outcome = S3Client(kCredentials, Configuration(Aws::Http::Scheme::HTTP))
                                 .PutObject(Put(std::make_shared<Aws::IOStream>(&buffer)));

        ASSERT_FALSE(outcome.IsSuccess());
        EXPECT_EQ(S3Errors::INVALID_PARAMETER_VALUE, outcome.GetError().GetErrorType());
        EXPECT_THAT(ToStd(outcome.GetError().GetMessage()), HasSubstr(expected.message));
        EXPECT_THAT(network.Requests(), SizeIs(expected.sent));
    }
}

TEST(S3Pipeline, BodyThatEndsBeforeItsLengthIsRefused) {
    struct Shorter : std::stringbuf {
        using std::stringbuf::stringbuf;
        std::streamsize xsgetn(char* place, std::streamsize count) override {
            return std::stringbuf::xsgetn(place, count - 1);
        }
    } buffer("hello");
    ScriptedNetwork network({Reply(200)});

    const auto outcome = S3Client(kCredentials, Configuration(Aws::Http::Scheme::HTTP))
                             .PutObject(Put(std::make_shared<Aws::IOStream>(&buffer)));

    ASSERT_FALSE(outcome.IsSuccess());
    EXPECT_EQ(S3Errors::INVALID_PARAMETER_VALUE, outcome.GetError().GetErrorType());
    EXPECT_THAT(network.Requests(), SizeIs(0));
}

TEST(S3Pipeline, ConfigurationReachesTheTransport) {
    ScriptedNetwork network({Reply(200)});
    ClientConfiguration configuration = Configuration();
    configuration.connectTimeoutMs = 180000;
    configuration.requestTimeoutMs = 300000;
    configuration.maxConnections = 7;
    configuration.verifySSL = false;
    configuration.caFile = "authorities.pem";

    ASSERT_TRUE(S3Client(kCredentials, configuration).GetObject(Get()).IsSuccess());
    EXPECT_EQ(180000, network.Requests().at(0).limits.connect.count());
    EXPECT_EQ(300000, network.Requests().at(0).limits.stall.count());
    EXPECT_EQ(7u, network.Options().maxConnections);
    EXPECT_FALSE(network.Options().verifyCertificates);
    EXPECT_EQ("authorities.pem", network.Options().trustFile);
}

TEST(S3Pipeline, SeamReplacesLimitsTrustAndAddress) {
    ScriptedNetwork network({Reply(200)});
    Mirqos::TheSeam().connectLimit = std::chrono::milliseconds(11);
    Mirqos::TheSeam().stallLimit = std::chrono::milliseconds(22);
    Mirqos::TheSeam().trustFile = "test.pem";
    Mirqos::TheSeam().resolve = [](const std::string& host, std::uint16_t port) {
        return Mirqos::Seam::Address{host + ".test", static_cast<std::uint16_t>(port + 1)};
    };

    ASSERT_TRUE(S3Client(kCredentials, Configuration()).GetObject(Get()).IsSuccess());
    const auto sent = network.Requests().at(0);
    EXPECT_EQ(11, sent.limits.connect.count());
    EXPECT_EQ(22, sent.limits.stall.count());
    EXPECT_EQ("test.pem", network.Options().trustFile);
    EXPECT_EQ("bucket.s3.eu-west-1.amazonaws.com", sent.request.host);
    EXPECT_EQ("bucket.s3.eu-west-1.amazonaws.com.test", sent.request.connectHost);
    EXPECT_EQ(444, sent.request.connectPort);
}

// ---- Statements

class KeptStatements : public Aws::Utils::Logging::LogSystemInterface {
public:
    Aws::Utils::Logging::LogLevel GetLogLevel() const override {
        return Aws::Utils::Logging::LogLevel::Trace;
    }
    void Log(Aws::Utils::Logging::LogLevel, const char*, const char*, ...) override {}
    void LogStream(Aws::Utils::Logging::LogLevel level, const char*,
                   const Aws::OStringStream& message) override {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_text.append(GetLogLevelName(level)).append(" ");
        m_text.append(ToStd(message.str())).append("\n");
    }
    // Pure virtual in some SDKs.
    void Flush() {}
    std::string Text() const {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_text;
    }

private:
    mutable std::mutex m_mutex;
    std::string m_text;
};

TEST(S3Pipeline, StatementsTellOfAttemptsAndNeverOfSecrets) {
    const auto statements = std::make_shared<KeptStatements>();
    Aws::Utils::Logging::InitializeAWSLogging(statements);
    ScriptedNetwork network({NetworkFailure(Failure::connect, "connection refused"),
                             ErrorReply(403, "AccessDenied", "not for you")});
    const S3Client client(Aws::Auth::AWSCredentials("AKID", "very secret", "the token"),
                          Configuration());

    EXPECT_FALSE(client.PutObject(Put(Body("the body"))).IsSuccess());
    Aws::Utils::Logging::ShutdownAWSLogging();

    const std::string text = statements->Text();
    EXPECT_THAT(text, HasSubstr("DEBUG PutObject: PUT /key to bucket.s3.eu-west-1.amazonaws.com"));
    EXPECT_THAT(text, HasSubstr("WARN PutObject failed, next attempt in 0 ms"));
    EXPECT_THAT(text, HasSubstr("connection refused"));
    EXPECT_THAT(text, HasSubstr("ERROR PutObject failed after 1 retries. Error type: 15"));
    for (const char* const secret : {"very secret", "the token", "AKID", "Signature", "the body"}) {
        EXPECT_THAT(text, Not(HasSubstr(secret)));
    }
}

}  // namespace
