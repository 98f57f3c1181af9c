#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "sdk/core/http/Transport.h"

namespace Mirqos::Test {

/// A transport that keeps the head of every request and answers each with an empty 200, for tests
/// that ask where a request would have gone. Any thread may use it.
class RecordingTransport : public Http::Transport {
public:
    Http::Result Exchange(const Http::Request& request, const Http::Limits& limits,
                          Http::Receiver& receiver) override;

    struct Sent {
        Http::Request request;  ///< its body is gone
        Http::Limits limits;
        std::string Header(const std::string& name) const;
    };
    std::vector<Sent> Requests() const;

private:
    mutable std::mutex m_mutex;
    std::vector<Sent> m_requests;
};

/// Gives every client made in its lifetime one RecordingTransport, and the seam back afterwards.
class TransportRecording {
public:
    TransportRecording();
    ~TransportRecording();
    TransportRecording(const TransportRecording&) = delete;
    TransportRecording& operator=(const TransportRecording&) = delete;

    std::vector<RecordingTransport::Sent> Requests() const { return m_transport->Requests(); }

private:
    std::shared_ptr<RecordingTransport> m_transport;
};

}  // namespace Mirqos::Test
