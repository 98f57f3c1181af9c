#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// The one door from the SDK layer to the network: a single HTTP/1.1 exchange, without redirects,
/// cookies, authentication dialogues or proxies from the environment. win32/ implements it over
/// WinHTTP, posix/ over libcurl.
namespace Mirqos::Http {

using HeaderList = std::vector<std::pair<std::string, std::string>>;

/// First value of the header called `name` (letter case does not matter), or null.
const std::string* FindHeader(const HeaderList& headers, const std::string& name);

struct Request {
    std::string method;
    bool https = true;
    std::string host;  ///< name or address, without the port
    std::uint16_t port = 443;
    /// Where to connect instead of host; empty: to host. For tests over plain HTTP: WinHTTP
    /// compares a certificate with this name.
    std::string connectHost;
    std::uint16_t connectPort = 0;  ///< goes with connectHost
    std::string target;  ///< path and query as they go on the wire, already encoded, kept exact
    HeaderList headers;  ///< sent as they stand; holds Host. Content-Length is the transport's
    std::istream* body = nullptr;  ///< bodyLength bytes from its current position; null: no body
    std::uint64_t bodyLength = 0;
};

struct Limits {
    /// Longest wait for name look-up, connection and TLS handshake together.
    std::chrono::milliseconds connect{180000};
    /// Longest time without a byte moving in either direction once connected; it also bounds the
    /// time from the last byte sent to the complete answer head. WinHTTP shows no less than the
    /// 256 KiB of one write moving.
    std::chrono::milliseconds stall{300000};
};

struct ResponseHead {
    int status = 0;
    HeaderList headers;

    bool IsSuccess() const { return status >= 200 && status <= 299; }
};

/// Where an answer goes. Called on the thread that called Exchange.
class Receiver {
public:
    enum class Want {
        more,   ///< go on
        enough  ///< the caller has all it wants: the exchange ends as a success
    };
    virtual ~Receiver() = default;
    /// Once per exchange, before any body byte. Interim (1xx) answers are not reported.
    virtual Want OnHead(const ResponseHead& head) = 0;
    virtual Want OnBody(const char* data, std::size_t size) = 0;
};

enum class Failure {
    none,
    resolve,   ///< the host name has no address
    connect,   ///< refused, unreachable or not connected within Limits::connect
    tls,       ///< handshake or certificate refused; no request line has left
    timeout,   ///< Limits::stall passed
    send,      ///< the connection broke, or a success was reported, before the body was sent
    receive,   ///< the connection broke, or the answer is not HTTP or exceeds a bound
    truncated  ///< the body ended before its Content-Length or its last chunk
};

struct Result {
    Failure failure = Failure::none;
    std::string message;  ///< one line for a log: what failed, with the system's own words
};

struct TransportOptions {
    /// Refuses servers whose certificate is untrusted, expired or for another host name. TLS is
    /// 1.2 or newer in any case.
    bool verifyCertificates = true;
    /// PEM file of trusted authorities instead of the system's; empty: the system's. libcurl only:
    /// WinHTTP always trusts what the system trusts.
    std::string trustFile;
    unsigned maxConnections = 25;  ///< exchanges beyond this wait for a free connection
};

/// Keeps idle connections for reuse. Exchange may be called from any number of threads at once.
class Transport {
public:
    virtual ~Transport() = default;
    /// Sends `request` and hands the answer to `receiver`. Never throws on a network failure and
    /// returns within the limits. A connection that the server closed while idle is replaced once
    /// without a report, when nothing of an answer has arrived.
    virtual Result Exchange(const Request& request, const Limits& limits, Receiver& receiver) = 0;
};

std::shared_ptr<Transport> MakeTransport(const TransportOptions& options);

/// Answer heads longer than this are refused as Failure::receive.
inline constexpr std::size_t kMaxHeadBytes = 64 * 1024;

}  // namespace Mirqos::Http
