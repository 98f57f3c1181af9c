#pragma once

#include <aws/core/http/Scheme.h>
#include <aws/core/utils/memory/stl/AWSString.h>

#include <memory>

namespace Aws::Utils::Threading {
class Executor;
}

namespace Aws::Client {

class RetryStrategy;

/// How a client reaches its service.
struct ClientConfiguration {
    /// Takes `region` from the environment, AWS_DEFAULT_REGION before AWS_REGION, else us-east-1,
    /// and makes a DefaultRetryStrategy and a DefaultExecutor.
    ClientConfiguration();

    Http::Scheme scheme = Http::Scheme::HTTPS;
    Aws::String region;
    /// Requests beyond this many wait for a free connection.
    unsigned maxConnections = 25;
    /// Milliseconds without a byte moving; see connectTimeoutMs for the time before that.
    long requestTimeoutMs = 3000;
    /// Milliseconds for name look-up, connection and TLS handshake together.
    long connectTimeoutMs = 1000;
    std::shared_ptr<RetryStrategy> retryStrategy;
    /// Host, or host and port, that replaces the service's own; may begin with "http://" or
    /// "https://", which then replaces `scheme`.
    Aws::String endpointOverride;
    /// Runs asynchronous calls.
    std::shared_ptr<Utils::Threading::Executor> executor;
    /// Whether the server's certificate has to be valid.
    bool verifySSL = true;
    /// PEM file of trusted authorities; empty: the system's.
    Aws::String caFile;
};

}  // namespace Aws::Client
