#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "sdk/core/Seam.h"
#include "sdk/core/http/Transport.h"

namespace Mirqos::Test {

/// What a scripted transport does with one request.
struct TransportStep {
    int status = 200;  ///< 0: no answer at all
    Http::HeaderList headers;
    std::string body;
    /// More bytes of body after `body`, never all in memory at once.
    std::uint64_t filler = 0;
    /// Offered at a time; 0: `body` in one piece.
    std::size_t chunk = 0;
    /// How the exchange ends after all that.
    Http::Result result;
    /// Runs before the answer.
    std::function<void()> before;
};

TransportStep Reply(int status, std::string body = {}, Http::HeaderList headers = {});
/// An S3 error document.
TransportStep ErrorReply(int status, const std::string& code, const std::string& message);
TransportStep NetworkFailure(Http::Failure failure, const std::string& message);

/// Plays its steps in order, the last one again and again, and keeps what it was asked. Any thread
/// may use it.
class ScriptedTransport : public Http::Transport {
public:
    explicit ScriptedTransport(std::vector<TransportStep> steps) : m_steps(std::move(steps)) {}

    Http::Result Exchange(const Http::Request& request, const Http::Limits& limits,
                          Http::Receiver& receiver) override;

    struct Sent {
        Http::Request request;  ///< its body pointer is null
        std::string body;
        Http::Limits limits;
        std::uint64_t offered = 0;  ///< bytes of the answer's body until the receiver had enough

        /// The value of a header; an empty text where there is none.
        std::string Header(const std::string& name) const;
    };
    std::vector<Sent> Requests() const;

private:
    mutable std::mutex m_mutex;
    std::vector<TransportStep> m_steps;
    std::vector<Sent> m_requests;
};

/// For its lifetime: clients get the scripted transport, back-off is recorded instead of waited
/// for, and the clock stands still.
class ScriptedNetwork {
public:
    explicit ScriptedNetwork(std::vector<TransportStep> steps);
    ~ScriptedNetwork();
    ScriptedNetwork(const ScriptedNetwork&) = delete;
    ScriptedNetwork& operator=(const ScriptedNetwork&) = delete;

    std::vector<ScriptedTransport::Sent> Requests() const { return m_transport->Requests(); }
    /// Milliseconds of each back-off so far.
    std::vector<long long> Delays() const;
    Http::TransportOptions Options() const { return m_options; }
    /// Friday 24 May 2013, 00:00:00 UTC, at first. Each back-off moves the clock on by a minute.
    std::chrono::system_clock::time_point Now() const;

private:
    std::shared_ptr<ScriptedTransport> m_transport;
    Http::TransportOptions m_options;
    mutable std::mutex m_mutex;
    std::vector<long long> m_delays;
    std::chrono::system_clock::time_point m_now;
};

}  // namespace Mirqos::Test
