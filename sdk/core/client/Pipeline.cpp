#include "sdk/core/client/Pipeline.h"

#include <aws/core/client/RetryStrategy.h>
#include <aws/core/utils/logging/LogMacros.h>

#include <thread>
#include <utility>

#include "sdk/core/Seam.h"
#include "sdk/core/client/OutgoingBody.h"
#include "sdk/core/client/Text.h"
#include "sdk/core/crypto/Hash.h"
#include "sdk/core/http/Ascii.h"
#include "sdk/core/http/RequestBody.h"
#include "sdk/core/util/UrlEncode.h"

namespace Mirqos::Client {
namespace {

using Aws::Client::CoreErrors;

constexpr char kLogTag[] = "AWSClient";
constexpr char kDefaultRegion[] = "us-east-1";
/// Time stamps of signatures are good for this long.
constexpr std::int64_t kStampLifetimeSeconds = 15 * 60;
/// Below this difference, the clock is not what the service complains about.
constexpr std::int64_t kToleratedSkewSeconds = 60;

Http::TransportOptions OptionsFor(const Aws::Client::ClientConfiguration& configuration) {
    Http::TransportOptions options;
    options.verifyCertificates = configuration.verifySSL;
    options.trustFile =
        TheSeam().trustFile.empty() ? ToStd(configuration.caFile) : TheSeam().trustFile;
    options.maxConnections = configuration.maxConnections;
    return options;
}

std::shared_ptr<Http::Transport> TransportFor(
    const Aws::Client::ClientConfiguration& configuration) {
    const Http::TransportOptions options = OptionsFor(configuration);
    return TheSeam().makeTransport ? TheSeam().makeTransport(options)
                                   : Http::MakeTransport(options);
}

/// A limit of zero or less is none of the caller's: the transport's own stays.
std::chrono::milliseconds LimitOr(long milliseconds, std::chrono::milliseconds otherwise) {
    return milliseconds > 0 ? std::chrono::milliseconds(milliseconds) : otherwise;
}

Http::Limits LimitsFor(const Aws::Client::ClientConfiguration& configuration) {
    const Http::Limits standard;
    Http::Limits limits;
    limits.connect =
        TheSeam().connectLimit.value_or(LimitOr(configuration.connectTimeoutMs, standard.connect));
    limits.stall =
        TheSeam().stallLimit.value_or(LimitOr(configuration.requestTimeoutMs, standard.stall));
    return limits;
}

std::string QueryText(const WireRequest::Query& query) {
    std::string text;
    for (const auto& [name, value] : query) {
        text.append(text.empty() ? "?" : "&").append(EncodeQuery(name));
        if (!value.empty()) {
            text.append("=").append(EncodeQuery(value));
        }
    }
    return text;
}

std::string HostHeader(const Destination& destination) {
    const bool isIpv6 = destination.host.find(':') != std::string::npos;
    std::string text = isIpv6 ? '[' + destination.host + ']' : destination.host;
    const std::uint16_t usual = destination.https ? 443 : 80;
    if (destination.port != usual) {
        text.append(":").append(std::to_string(destination.port));
    }
    return text;
}

Error NetworkError(const Http::Result& result) {
    // A refused certificate stays refused.
    return MakeError(CoreErrors::NETWORK_CONNECTION, "", result.message,
                     result.failure != Http::Failure::tls);
}

Error DocumentError(const std::string& message) {
    return MakeError(CoreErrors::UNKNOWN, "Xml Parse Error", message, false);
}

UtcTime OwnClock() {
    return TheSeam().now ? TheSeam().now() : std::chrono::system_clock::now();
}

void Wait(std::chrono::milliseconds delay) {
    if (TheSeam().sleep) {
        TheSeam().sleep(delay);
    } else {
        std::this_thread::sleep_for(delay);
    }
}

}  // namespace

/// One request on its way, over all its attempts.
struct Pipeline::Call {
    Call(const Aws::AmazonWebServiceRequest& aRequest, const WireRequest& aWire,
         const Destination& aDestination)
        : request(aRequest), wire(aWire), destination(aDestination), body(aWire) {}

    const Aws::AmazonWebServiceRequest& request;
    const WireRequest& wire;
    const Destination& destination;
    OutgoingBody body;
    std::string payloadHash;
    std::string contentMd5;
};

Pipeline::Pipeline(const Aws::Auth::AWSCredentials& credentials,
                   const Aws::Client::ClientConfiguration& configuration,
                   SigningPolicy signingPolicy, Service service)
    : m_service(std::move(service)),
      m_region(configuration.region.empty() ? kDefaultRegion : ToStd(configuration.region)),
      m_sessionToken(ToStd(credentials.GetSessionToken())),
      m_signingPolicy(signingPolicy),
      m_retryStrategy(configuration.retryStrategy),
      m_limits(LimitsFor(configuration)),
      m_transport(TransportFor(configuration)) {
    if (!credentials.GetAWSAccessKeyId().empty() && !credentials.GetAWSSecretKey().empty()) {
        m_signer.emplace(ToStd(credentials.GetAWSAccessKeyId()),
                         ToStd(credentials.GetAWSSecretKey()));
    }
}

Pipeline::Outcome Pipeline::Run(const Aws::AmazonWebServiceRequest& request,
                                const WireRequest& wire, const Destination& destination) const {
    try {
        return RunAttempts(request, wire, destination);
    } catch (const Crypto::Error& refused) {
        AWS_LOGSTREAM_ERROR(kLogTag, request.GetServiceRequestName()
                                         << " cannot be signed: " << refused.what());
        return Outcome(MakeError(CoreErrors::INTERNAL_FAILURE, "", refused.what(), false));
    }
}

Pipeline::Outcome Pipeline::RunAttempts(const Aws::AmazonWebServiceRequest& request,
                                        const WireRequest& wire,
                                        const Destination& destination) const {
    Call call(request, wire, destination);
    if (const std::optional<Error> error = Prepare(call)) {
        AWS_LOGSTREAM_ERROR(kLogTag, request.GetServiceRequestName()
                                         << " was not sent: " << error->GetMessage());
        return Outcome(*error);
    }
    for (long retries = 0;; ++retries) {
        Outcome outcome = Attempt(call);
        if (outcome.IsSuccess()) {
            return outcome;
        }
        const Error& error = outcome.GetError();
        if (!MayRetry(error, retries)) {
            AWS_LOGSTREAM_ERROR(
                kLogTag, request.GetServiceRequestName()
                             << " failed after " << retries
                             << " retries. Error type: " << static_cast<int>(error.GetErrorType())
                             << ", exception name: " << error.GetExceptionName()
                             << ", message: " << error.GetMessage());
            return outcome;
        }
        const std::chrono::milliseconds delay(
            m_retryStrategy->CalculateDelayBeforeNextRetry(error, retries));
        AWS_LOGSTREAM_WARN(kLogTag, request.GetServiceRequestName()
                                        << " failed, next attempt in " << delay.count()
                                        << " ms. Exception name: " << error.GetExceptionName()
                                        << ", message: " << error.GetMessage());
        Wait(delay);
    }
}

std::optional<Error> Pipeline::Prepare(Call& call) const {
    const Error unreadable =
        MakeError(CoreErrors::INVALID_PARAMETER_VALUE, "",
                  "The request's body cannot be read from start to end.", false);
    if (!call.body.Usable()) {
        return unreadable;
    }
    const bool isStream = call.wire.body != nullptr;
    const bool coversBody = m_signingPolicy == SigningPolicy::Always ||
                            (m_signingPolicy == SigningPolicy::RequestDependent && !isStream);
    // Without TLS the digest is what keeps the body from being changed on its way.
    if (m_signer && (coversBody || !call.destination.https)) {
        std::optional<std::string> hash = call.body.Sha256Hex();
        if (!hash) {
            return unreadable;
        }
        call.payloadHash = std::move(*hash);
    } else {
        call.payloadHash = Signer::kUnsignedPayload;
    }
    if (call.wire.needsContentMd5) {
        std::optional<std::string> md5 = call.body.Md5Base64();
        if (!md5) {
            return unreadable;
        }
        call.contentMd5 = std::move(*md5);
    }
    return std::nullopt;
}

Http::Request Pipeline::Message(const Call& call) const {
    Http::Request message;
    message.method = call.wire.method;
    message.https = call.destination.https;
    message.host = call.destination.host;
    message.port = call.destination.port;
    if (TheSeam().resolve) {
        const Seam::Address address = TheSeam().resolve(message.host, message.port);
        message.connectHost = address.host;
        message.connectPort = address.port;
    }
    message.target = call.destination.path + QueryText(call.wire.query);
    message.body = call.body.Stream();
    message.bodyLength = call.body.Length();

    // First what the signature covers, then what proxies may rewrite or nobody depends on.
    const UtcTime now = Now();
    Http::HeaderList& headers = message.headers;
    headers.emplace_back("Host", HostHeader(call.destination));
    if (call.body.Exists() && !call.wire.contentType.empty()) {
        headers.emplace_back("Content-Type", call.wire.contentType);
    }
    if (!call.contentMd5.empty()) {
        headers.emplace_back("Content-MD5", call.contentMd5);
    }
    if (m_signer) {
        headers.emplace_back("x-amz-content-sha256", call.payloadHash);
        headers.emplace_back("x-amz-date", FormatAmzDate(now));
        if (!m_sessionToken.empty()) {
            headers.emplace_back("x-amz-security-token", m_sessionToken);
        }
    }
    headers.insert(headers.end(), call.wire.headers.begin(), call.wire.headers.end());
    if (m_signer) {
        Signer::Signable signable{message.method, call.destination.path, call.wire.query,
                                  Signer::HeadersToSign(headers), call.payloadHash};
        if (call.body.Exists()) {
            signable.headers.emplace_back("Content-Length", std::to_string(message.bodyLength));
        }
        headers.emplace_back(
            "Authorization",
            m_signer->Authorization(signable, {m_region, m_service.signingName, now}));
    }
    headers.emplace_back("User-Agent", m_service.userAgent);
    return message;
}

Pipeline::Outcome Pipeline::Attempt(Call& call) const {
    if (!call.body.Rewind()) {
        return Outcome(MakeError(CoreErrors::INVALID_PARAMETER_VALUE, "",
                                 "The request's body cannot be sent again.", false));
    }
    const Http::Request message = Message(call);
    const std::string problem = Http::RequestProblem(message);
    if (!problem.empty()) {
        return Outcome(MakeError(CoreErrors::INVALID_PARAMETER_VALUE, "",
                                 "The request cannot be sent: " + problem, false));
    }
    const char* const name = call.request.GetServiceRequestName();
    AWS_LOGSTREAM_DEBUG(kLogTag, name << ": " << message.method << ' ' << message.target << " to "
                                      << message.host << ':' << message.port << ", "
                                      << message.bodyLength << " bytes");
    ResponseReceiver receiver(call.wire.response, call.request.GetResponseStreamFactory());
    const Http::Result result = m_transport->Exchange(message, m_limits, receiver);
    receiver.RethrowIfFailed();
    if (result.failure != Http::Failure::none) {
        return Outcome(NetworkError(result));
    }
    AWS_LOGSTREAM_DEBUG(kLogTag, name << ": HTTP status " << receiver.Head().status << ", "
                                      << receiver.BodyBytes() << " bytes");
    Outcome outcome = Judge(call, receiver);
    if (outcome.IsSuccess()) {
        return outcome;
    }
    Error error = outcome.GetError();
    if (error.GetErrorType() == CoreErrors::REQUEST_TIME_TOO_SKEWED) {
        CorrectClock(kToleratedSkewSeconds, receiver.Head().headers);
    } else if (call.wire.method == "HEAD" && receiver.Head().status == 403 &&
               CorrectClock(kStampLifetimeSeconds, receiver.Head().headers)) {
        // No body tells why it was refused, but with such a clock it cannot have been taken. Left
        // at that, a wrong clock would make objects and buckets look as if they did not exist.
        error = MakeError(error.GetErrorType(), error.GetExceptionName(), error.GetMessage(), true);
    }
    error.SetResponseCode(static_cast<Aws::Http::HttpResponseCode>(receiver.Head().status));
    return Outcome(std::move(error));
}

Pipeline::Outcome Pipeline::Judge(const Call& call, ResponseReceiver& receiver) const {
    const int status = receiver.Head().status;
    if (!receiver.IsSuccess()) {
        return Outcome(ErrorFromAnswer(status, receiver.Text(), m_service.errorLookup));
    }
    Answer answer;
    if (call.wire.response != ResponseKind::stream) {
        std::optional<Error> error = ReadDocument(call.wire, receiver, answer.xml);
        if (error) {
            return Outcome(std::move(*error));
        }
    }
    if (call.wire.response == ResponseKind::stream) {
        if (!receiver.Stream()) {
            return Outcome(MakeError(CoreErrors::INVALID_PARAMETER_VALUE, "",
                                     "The response stream factory made no stream.", false));
        }
        answer.stream = std::move(*receiver.Stream());
        answer.stream.GetUnderlyingStream().flush();
    }
    answer.bodyBytes = receiver.BodyBytes();
    answer.head = std::move(receiver.Head());
    return Outcome(std::move(answer));
}

std::optional<Error> Pipeline::ReadDocument(const WireRequest& wire,
                                            const ResponseReceiver& receiver,
                                            Xml::Document& document) const {
    if (receiver.TextExceedsBound()) {
        return DocumentError("The answer is larger than can be read.");
    }
    const std::string_view text = WithoutLeadingBlanks(receiver.Text());
    const bool expected = wire.response == ResponseKind::xml;
    if (text.empty() && !expected) {
        return std::nullopt;
    }
    std::string parseError;
    std::optional<Xml::Document> parsed = Xml::Parse(text.data(), text.size(), parseError);
    if (!parsed) {
        return DocumentError(parseError);
    }
    const Xml::Element root = parsed->Root();
    if (root.Name() == "Error") {
        return ErrorFromCode(receiver.Head().status, root.TextOf("Code"), root.TextOf("Message"),
                             m_service.errorLookup);
    }
    // Where nothing is expected, a document is passed over, but a page for people is not a success:
    // something between here and the service gave it.
    if (expected ? root.Name() != wire.xmlRoot : Http::EqualNoCase(root.Name(), "html")) {
        return DocumentError("The answer is not " +
                             (expected ? "a " + wire.xmlRoot + " document" : "a service's") +
                             ", but \"" + std::string(root.Name()) + "\".");
    }
    document = std::move(*parsed);
    return std::nullopt;
}

bool Pipeline::MayRetry(const Error& error, long retries) const {
    return m_retryStrategy != nullptr && m_retryStrategy->ShouldRetry(error, retries);
}

bool Pipeline::CorrectClock(std::int64_t toleratedSeconds, const Http::HeaderList& headers) const {
    const std::string* const date = Http::FindHeader(headers, "Date");
    const std::optional<UtcTime> serviceTime =
        date != nullptr ? ParseHttpDate(*date) : std::nullopt;
    if (!serviceTime) {
        return false;
    }
    const auto ahead = std::chrono::duration_cast<std::chrono::seconds>(*serviceTime - Now());
    if (ahead.count() <= toleratedSeconds && ahead.count() >= -toleratedSeconds) {
        return false;
    }
    m_clockOffset = std::chrono::duration_cast<std::chrono::seconds>(*serviceTime - OwnClock());
    AWS_LOGSTREAM_WARN(
        kLogTag, "The service's clock is " << ahead.count() << " s ahead; signing with its time");
    return true;
}

UtcTime Pipeline::Now() const {
    return OwnClock() + m_clockOffset.load();
}

}  // namespace Mirqos::Client
