#include "tests/support/RecordingTransport.h"

#include "sdk/core/Seam.h"

namespace Mirqos::Test {

Http::Result RecordingTransport::Exchange(const Http::Request& request, const Http::Limits& limits,
                                          Http::Receiver& receiver) {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_requests.push_back({request, limits});
        m_requests.back().request.body = nullptr;
    }
    receiver.OnHead({200, {{"Content-Length", "0"}}});
    return {};
}

std::string RecordingTransport::Sent::Header(const std::string& name) const {
    const std::string* value = Http::FindHeader(request.headers, name);
    return value != nullptr ? *value : std::string();
}

std::vector<RecordingTransport::Sent> RecordingTransport::Requests() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

TransportRecording::TransportRecording() : m_transport(std::make_shared<RecordingTransport>()) {
    TheSeam().makeTransport = [transport = m_transport](const Http::TransportOptions&) {
        return transport;
    };
}

TransportRecording::~TransportRecording() {
    TheSeam().makeTransport = nullptr;
}

}  // namespace Mirqos::Test
