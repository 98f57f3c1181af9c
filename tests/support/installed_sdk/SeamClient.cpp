#include "tests/support/installed_sdk/SeamClient.h"

#include <aws/core/http/standard/StandardHttpResponse.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include "sdk/core/Seam.h"

namespace Mirqos::Test {
namespace {

using Aws::Http::HttpResponseCode;

constexpr char kTag[] = "SeamClient";

std::shared_ptr<Http::Transport> TransportFor(
    const Aws::Client::ClientConfiguration& configuration) {
    if (!TheSeam().makeTransport) {
        return nullptr;
    }
    Http::TransportOptions options;
    options.verifyCertificates = configuration.verifySSL;
    options.maxConnections = configuration.maxConnections;
    return TheSeam().makeTransport(options);
}

/// Fills an SDK's answer from what a transport delivers.
class Answering final : public Http::Receiver {
public:
    explicit Answering(Aws::Http::HttpResponse& answer) : m_answer(answer) {}

    Want OnHead(const Http::ResponseHead& head) override {
        m_answer.SetResponseCode(static_cast<HttpResponseCode>(head.status));
        for (const auto& header : head.headers) {
            m_answer.AddHeader(header.first.c_str(), header.second.c_str());
        }
        return Want::more;
    }

    Want OnBody(const char* data, std::size_t size) override {
        m_answer.GetResponseBody().write(data, static_cast<std::streamsize>(size));
        return Want::more;
    }

private:
    Aws::Http::HttpResponse& m_answer;
};

/// What libcurl makes of the SDK's text: the path, "/" where there is none, and the query.
std::string TargetOf(const Aws::Http::URI& uri) {
    const std::string text = uri.GetURIString().c_str();
    const std::size_t at = text.find_first_of("/?", text.find("://") + 3);
    if (at == std::string::npos) {
        return "/";
    }
    return text[at] == '/' ? text.substr(at) : "/" + text.substr(at);
}

}  // namespace

SeamClient::SeamClient(const Aws::Client::ClientConfiguration& configuration)
    : CurlHttpClient(configuration),
      m_transport(TransportFor(configuration)),
      m_limits{std::chrono::milliseconds(configuration.connectTimeoutMs),
               std::chrono::milliseconds(configuration.requestTimeoutMs)} {
}

std::shared_ptr<Aws::Http::HttpResponse> SeamClient::Exchange(
    const std::shared_ptr<Aws::Http::HttpRequest>& request) const {
    const Aws::Http::URI& uri = request->GetUri();
    Http::Request sent;
    sent.method = Aws::Http::HttpMethodMapper::GetNameForHttpMethod(request->GetMethod());
    sent.https = uri.GetScheme() == Aws::Http::Scheme::HTTPS;
    sent.host = uri.GetAuthority().c_str();
    sent.port = uri.GetPort();
    sent.target = TargetOf(uri);
    for (const auto& header : request->GetHeaders()) {
        sent.headers.emplace_back(header.first.c_str(), header.second.c_str());
        if (header.first == "content-length") {
            sent.bodyLength = std::stoull(header.second.c_str());
        }
    }
    sent.body = request->GetContentBody().get();

    auto answer = Aws::MakeShared<Aws::Http::Standard::StandardHttpResponse>(kTag, request);
    Answering answering(*answer);
    const Http::Result result = m_transport->Exchange(sent, m_limits, answering);
    if (result.failure != Http::Failure::none) {
        answer->SetClientErrorType(Aws::Client::CoreErrors::NETWORK_CONNECTION);
        answer->SetClientErrorMessage(result.message.c_str());
    }
    return answer;
}

std::shared_ptr<Aws::Http::HttpResponse> SeamClient::MakeRequest(
    const std::shared_ptr<Aws::Http::HttpRequest>& request,
    Aws::Utils::RateLimits::RateLimiterInterface* readLimiter,
    Aws::Utils::RateLimits::RateLimiterInterface* writeLimiter) const {
    if (m_transport != nullptr) {
        return Exchange(request);
    }
    Aws::Http::URI& uri = request->GetUri();
    const Aws::Http::URI signedUri = uri;
    if (TheSeam().resolve) {
        const Seam::Address address = TheSeam().resolve(uri.GetAuthority().c_str(),
                                                        static_cast<std::uint16_t>(uri.GetPort()));
        if (!address.host.empty()) {
            uri.SetAuthority(address.host.c_str());
            uri.SetPort(address.port);
        }
    }
    auto answer = CurlHttpClient::MakeRequest(request, readLimiter, writeLimiter);
    uri = signedUri;
    return answer;
}

}  // namespace Mirqos::Test
