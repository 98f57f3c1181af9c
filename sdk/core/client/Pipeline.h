#pragma once

#include <aws/core/AmazonWebServiceRequest.h>
#include <aws/core/auth/AWSAuthSigner.h>
#include <aws/core/auth/AWSCredentials.h>
#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/utils/Outcome.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "sdk/core/client/Answer.h"
#include "sdk/core/client/ResponseReceiver.h"
#include "sdk/core/client/ServiceErrors.h"
#include "sdk/core/client/WireRequest.h"
#include "sdk/core/http/Transport.h"
#include "sdk/core/signer/SignatureV4.h"

namespace Mirqos::Client {

/// Where a request goes.
struct Destination {
    bool https = true;
    std::string host;  ///< name or address, without port and brackets
    std::uint16_t port = 443;
    std::string path;  ///< begins with '/', encoded as it goes on the wire
};

/// What is particular to the service that a pipeline serves.
struct Service {
    std::string signingName;
    std::string userAgent;
    ErrorLookup errorLookup = nullptr;
};

/// The way of every request of one service: body and headers, signature, exchange, judgement of the
/// answer, and all that again as the retry strategy allows. Thread-safe.
class Pipeline {
public:
    using Outcome = Aws::Utils::Outcome<Answer, Error>;
    using SigningPolicy = Aws::Client::AWSAuthV4Signer::PayloadSigningPolicy;

    /// Keeps what it needs of `configuration`, but never the executor.
    Pipeline(const Aws::Auth::AWSCredentials& credentials,
             const Aws::Client::ClientConfiguration& configuration, SigningPolicy signingPolicy,
             Service service);

    /// `wire` is what `request` describes. Throws only std::bad_alloc and what the request's stream
    /// factory throws.
    Outcome Run(const Aws::AmazonWebServiceRequest& request, const WireRequest& wire,
                const Destination& destination) const;

private:
    struct Call;

    /// May throw Crypto::Error besides.
    Outcome RunAttempts(const Aws::AmazonWebServiceRequest& request, const WireRequest& wire,
                        const Destination& destination) const;
    Outcome Attempt(Call& call) const;
    Outcome Judge(const Call& call, ResponseReceiver& receiver) const;
    /// Reads a successful answer's document into `document`, or tells why it is no success.
    std::optional<Error> ReadDocument(const WireRequest& wire, const ResponseReceiver& receiver,
                                      Xml::Document& document) const;
    std::optional<Error> Prepare(Call& call) const;
    Http::Request Message(const Call& call) const;
    bool MayRetry(const Error& error, long retries) const;
    /// Signs with the service's time from now on when the Date of its answer is further off than
    /// tolerated, and tells whether it was.
    bool CorrectClock(std::int64_t toleratedSeconds, const Http::HeaderList& headers) const;
    UtcTime Now() const;

    const Service m_service;
    const std::string m_region;
    const std::string m_sessionToken;
    const SigningPolicy m_signingPolicy;
    const std::shared_ptr<Aws::Client::RetryStrategy> m_retryStrategy;
    const Http::Limits m_limits;
    const std::shared_ptr<Http::Transport> m_transport;
    /// Nothing with empty credentials: requests then go unsigned.
    std::optional<Signer::SignatureV4> m_signer;
    /// How far the service's clock is ahead of ours, once it has complained.
    mutable std::atomic<std::chrono::seconds> m_clockOffset{std::chrono::seconds(0)};
};

}  // namespace Mirqos::Client
