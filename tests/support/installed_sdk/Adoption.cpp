// Gives an installed SDK the seam of the bundled layer: transport, host resolution, limits, trust
// anchors, the counts of starts and stops, through the SDK's own door for HTTP clients. The clock
// and the wait between attempts have no door: see posix/Time.cpp.
#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/http/HttpClientFactory.h>
#include <aws/core/http/standard/StandardHttpRequest.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "boundary/lifecycle.h"
#include "sdk/core/Seam.h"
#include "tests/support/installed_sdk/SeamClient.h"

namespace Mirqos::Test {
namespace {

using Aws::Client::ClientConfiguration;
using Aws::Http::HttpClient;

constexpr char kTag[] = "Adoption";

void CallIfSet(const std::function<void()>& call) {
    if (call) {
        call();
    }
}

class SeamFactory final : public Aws::Http::HttpClientFactory {
public:
    std::shared_ptr<HttpClient> CreateHttpClient(
        const ClientConfiguration& configuration) const override {
        const Seam& seam = TheSeam();
        ClientConfiguration used = configuration;
        used.disableExpectHeader = true;  // the scripted server would let each body wait for it
        if (seam.connectLimit) {
            used.connectTimeoutMs = static_cast<long>(seam.connectLimit->count());
        }
        if (seam.stallLimit) {
            used.requestTimeoutMs = static_cast<long>(seam.stallLimit->count());
        }
        if (!seam.trustFile.empty()) {
            used.caFile = seam.trustFile.c_str();
        }
        return Aws::MakeShared<SeamClient>(kTag, used);
    }

    std::shared_ptr<Aws::Http::HttpRequest> CreateHttpRequest(
        const Aws::String& uri, Aws::Http::HttpMethod method,
        const Aws::IOStreamFactory& streamFactory) const override {
        return CreateHttpRequest(Aws::Http::URI(uri), method, streamFactory);
    }

    std::shared_ptr<Aws::Http::HttpRequest> CreateHttpRequest(
        const Aws::Http::URI& uri, Aws::Http::HttpMethod method,
        const Aws::IOStreamFactory& streamFactory) const override {
        auto request = Aws::MakeShared<Aws::Http::Standard::StandardHttpRequest>(kTag, uri, method);
        request->SetResponseStreamFactory(streamFactory);
        return request;
    }

    // The SDK calls these in its start and its stop.
    void InitStaticState() override {
        Aws::Http::CurlHttpClient::InitGlobalState();
        CallIfSet(TheSeam().onInitApi);
    }
    void CleanupStaticState() override {
        CallIfSet(TheSeam().onShutdownApi);
        Aws::Http::CurlHttpClient::CleanupGlobalState();
    }
};

class Adoption final : public testing::Environment {
public:
    void SetUp() override {
        g_SDKOptions.httpOptions.httpClientFactory_create_fn = [] {
            return Aws::MakeShared<SeamFactory>(kTag);
        };
    }
};

const testing::Environment* const adoption =
    testing::AddGlobalTestEnvironment(new Adoption);  // which googletest deletes

}  // namespace

}  // namespace Mirqos::Test
