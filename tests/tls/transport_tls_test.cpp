#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <sstream>
#include <string>

#include "sdk/core/http/Transport.h"
#include "tests/support/HttpExchange.h"
#include "tests/tls/TlsServer.h"

namespace Mirqos::Test {
namespace {

using Http::Failure;

Http::Limits Ample() {
    return {std::chrono::seconds(60), std::chrono::seconds(60)};
}

Http::Request RequestTo(const std::string& name, const std::string& method,
                        const std::string& target) {
    Http::Request request = LoopbackRequest(PortOf(name), method, target);
    request.https = true;
    request.host = "localhost";
    request.headers = {{"Host", "localhost"}};
    return request;
}

/// A transport that trusts the test authority: by this file, or where only the system's trust
/// counts, because the authority is installed there.
std::shared_ptr<Http::Transport> Trusting(bool verify = true) {
    Http::TransportOptions options;
    options.trustFile = MIRQOS_TLS_FOLDER "/ca.pem";
    options.verifyCertificates = verify;
    return Http::MakeTransport(options);
}

void ExpectRefused(const std::string& name, const std::string& reason) {
    ASSERT_NE(PortOf(name), 0);
    const std::map<std::string, int> before = CountsOf(name);
    KeptAnswer answer;
    const Http::Result result =
        Trusting()->Exchange(RequestTo(name, "GET", "/b/k"), Ample(), answer);
    EXPECT_EQ(result.failure, Failure::tls) << result.message;
    // Wine has one error, this one, for every refusal
    const bool onlyRefused = result.message.find("WinHTTP error 12157") != std::string::npos;
    EXPECT_TRUE(onlyRefused || result.message.find(reason) != std::string::npos) << result.message;
    EXPECT_EQ(answer.heads, 0);
    const std::map<std::string, int> after = CountsOf(name);
    EXPECT_EQ(after.at("connections"), before.at("connections") + 1);
    EXPECT_EQ(after.at("requests"), before.at("requests"));
}

TEST(TransportTls, ATrustedServerIsSpokenToAndItsConnectionReused) {
    ASSERT_NE(PortOf("good"), 0) << "the test server is not running";
    const int before = CountsOf("good/now").at("connections");
    {
        const auto transport = Trusting();
        std::string sent(5 * 1024 * 1024 + 3, '\0');
        for (std::size_t i = 0; i < sent.size(); ++i) {
            sent[i] = static_cast<char>(i * 7 % 253);
        }
        std::istringstream body(sent);
        Http::Request put = RequestTo("good", "PUT", "/b/../k%2F");
        put.body = &body;
        put.bodyLength = sent.size();
        KeptAnswer stored;
        Http::Result result = transport->Exchange(put, Ample(), stored);
        ASSERT_EQ(result.failure, Failure::none) << result.message;
        EXPECT_EQ(stored.head.status, 200);

        KeptAnswer head;
        result = transport->Exchange(RequestTo("good", "HEAD", "/b/../k%2F"), Ample(), head);
        ASSERT_EQ(result.failure, Failure::none) << result.message;
        EXPECT_EQ(*Http::FindHeader(head.head.headers, "Content-Length"),
                  std::to_string(sent.size()));

        KeptAnswer got;
        result = transport->Exchange(RequestTo("good", "GET", "/b/../k%2F"), Ample(), got);
        ASSERT_EQ(result.failure, Failure::none) << result.message;
        EXPECT_TRUE(got.body == sent);

        KeptAnswer missing;
        result = transport->Exchange(RequestTo("good", "GET", "/none"), Ample(), missing);
        ASSERT_EQ(result.failure, Failure::none) << result.message;
        EXPECT_EQ(missing.head.status, 404);
    }
    EXPECT_EQ(CountsOf("good/now").at("connections"), before + 1);
}

TEST(TransportTls, CurrentVersionsWork) {
    std::istringstream versions(MIRQOS_TLS_VERSIONS);
    std::string name;
    while (versions >> name) {
        KeptAnswer answer;
        const Http::Result result =
            Trusting()->Exchange(RequestTo(name, "GET", "/none"), Ample(), answer);
        EXPECT_EQ(result.failure, Failure::none) << name << ": " << result.message;
        EXPECT_EQ(answer.head.status, 404);
    }
}

TEST(TransportTls, OutdatedVersionsAreRefused) {
    ExpectRefused("outdated", "");
}

TEST(TransportTls, AnExpiredCertificateIsRefused) {
    ExpectRefused("expired", "has expired");
}

TEST(TransportTls, ACertificateForAnotherHostIsRefused) {
    ExpectRefused("wronghost", "not for the host name localhost");
}

TEST(TransportTls, ASelfSignedCertificateIsRefused) {
    ExpectRefused("selfsigned", "not trusted");
}

TEST(TransportTls, ACertificateOfAnUnknownAuthorityIsRefused) {
    ExpectRefused("stranger", "not trusted");
}

TEST(TransportTls, VerificationCanBeSwitchedOff) {
    KeptAnswer answer;
    const Http::Result result =
        Trusting(false)->Exchange(RequestTo("unverified", "GET", "/none"), Ample(), answer);
    EXPECT_EQ(result.failure, Failure::none) << result.message;
    EXPECT_EQ(answer.head.status, 404);
}

TEST(TransportTls, CutBodiesAreTruncated) {
    for (const char* const target : {"/cut", "/cut-chunked"}) {
        KeptAnswer answer;
        const Http::Result result =
            Trusting()->Exchange(RequestTo("good", "GET", target), Ample(), answer);
        EXPECT_EQ(result.failure, Failure::truncated) << target << ": " << result.message;
        EXPECT_EQ(answer.heads, 1);
    }
}

/// A host must not die of SIGPIPE when a server goes away while it is written to.
TEST(TransportTls, AServerThatHangsUpDuringAnUploadIsAFailure) {
    constexpr std::uint64_t size = 32 * 1024 * 1024;
    LongStream body(size);
    Http::Request request = RequestTo("good", "PUT", "/hang-up");
    request.body = &body;
    request.bodyLength = size;
    KeptAnswer answer;
    const Http::Result result = Trusting()->Exchange(request, Ample(), answer);
    EXPECT_TRUE(result.failure == Failure::send || result.failure == Failure::receive)
        << result.message;
    EXPECT_EQ(answer.heads, 0);
}

TEST(TransportTls, APlainServerIsRefused) {
    KeptAnswer answer;
    const Http::Result result =
        Trusting()->Exchange(RequestTo("control", "GET", "/good"), Ample(), answer);
    EXPECT_EQ(result.failure, Failure::tls) << result.message;
    EXPECT_EQ(answer.heads, 0);
}

}  // namespace
}  // namespace Mirqos::Test
