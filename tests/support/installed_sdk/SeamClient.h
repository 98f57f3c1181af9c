#pragma once

#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/http/HttpRequest.h>
#include <aws/core/http/HttpResponse.h>
#include <aws/core/http/curl/CurlHttpClient.h>

#include <memory>

#include "sdk/core/http/Transport.h"

namespace Mirqos::Test {

/// An installed SDK's HTTP client with the door that TheSeam() is to the bundled layer's: requests
/// go through the seam's transport where it makes one, else as the SDK sends them, to the address
/// that the seam gives for their host.
class SeamClient final : public Aws::Http::CurlHttpClient {
public:
    explicit SeamClient(const Aws::Client::ClientConfiguration& configuration);

    using CurlHttpClient::MakeRequest;  // older SDKs have a second one, which nothing calls
    std::shared_ptr<Aws::Http::HttpResponse> MakeRequest(
        const std::shared_ptr<Aws::Http::HttpRequest>& request,
        Aws::Utils::RateLimits::RateLimiterInterface* readLimiter = nullptr,
        Aws::Utils::RateLimits::RateLimiterInterface* writeLimiter = nullptr) const override;

private:
    std::shared_ptr<Aws::Http::HttpResponse> Exchange(
        const std::shared_ptr<Aws::Http::HttpRequest>& request) const;

    const std::shared_ptr<Http::Transport> m_transport;
    const Http::Limits m_limits;
};

}  // namespace Mirqos::Test
