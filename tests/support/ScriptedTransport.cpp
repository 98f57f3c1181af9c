#include "tests/support/ScriptedTransport.h"

#include <algorithm>
#include <utility>

namespace Mirqos::Test {
namespace {

constexpr std::size_t kFillerPiece = 64 * 1024;
constexpr std::chrono::seconds kStart{1369353600};

std::string ReadBody(const Http::Request& request) {
    std::string body(static_cast<std::size_t>(request.bodyLength), '\0');
    if (request.body != nullptr) {
        request.body->read(body.data(), static_cast<std::streamsize>(body.size()));
        body.resize(static_cast<std::size_t>(request.body->gcount()));
    }
    return body;
}

/// True: the receiver wants more.
bool Offer(const TransportStep& step, Http::Receiver& receiver, std::uint64_t& offered) {
    const auto give = [&](const char* data, std::size_t size) {
        offered += size;
        return receiver.OnBody(data, size) == Http::Receiver::Want::more;
    };
    const std::size_t piece =
        step.chunk != 0 ? step.chunk : std::max<std::size_t>(step.body.size(), 1);
    for (std::size_t at = 0; at < step.body.size(); at += piece) {
        if (!give(step.body.data() + at, std::min(piece, step.body.size() - at))) {
            return false;
        }
    }
    const std::string filler(kFillerPiece, ' ');
    for (std::uint64_t left = step.filler; left > 0;) {
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(left, filler.size()));
        if (!give(filler.data(), size)) {
            return false;
        }
        left -= size;
    }
    return true;
}

}  // namespace

TransportStep Reply(int status, std::string body, Http::HeaderList headers) {
    TransportStep step;
    step.status = status;
    step.body = std::move(body);
    step.headers = std::move(headers);
    return step;
}

TransportStep ErrorReply(int status, const std::string& code, const std::string& message) {
    return Reply(status, "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Error><Code>" + code +
                             "</Code><Message>" + message +
                             "</Message><RequestId>1</RequestId></Error>");
}

TransportStep NetworkFailure(Http::Failure failure, const std::string& message) {
    TransportStep step;
    step.status = 0;
    step.result = {failure, message};
    return step;
}

Http::Result ScriptedTransport::Exchange(const Http::Request& request, const Http::Limits& limits,
                                         Http::Receiver& receiver) {
    Sent sent{request, ReadBody(request), limits};
    sent.request.body = nullptr;
    TransportStep step;
    std::size_t place = 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        place = m_requests.size();
        m_requests.push_back(std::move(sent));
        step = m_steps[std::min(place, m_steps.size() - 1)];
    }
    if (step.before) {
        step.before();
    }
    bool more = true;
    if (step.status != 0) {
        more = receiver.OnHead({step.status, step.headers}) == Http::Receiver::Want::more;
    }
    std::uint64_t offered = 0;
    if (more && step.status != 0 && request.method != "HEAD") {
        more = Offer(step, receiver, offered);
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requests[place].offered = offered;
    return more ? step.result : Http::Result{};
}

std::string ScriptedTransport::Sent::Header(const std::string& name) const {
    const std::string* const value = Http::FindHeader(request.headers, name);
    return value != nullptr ? *value : std::string();
}

std::vector<ScriptedTransport::Sent> ScriptedTransport::Requests() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

ScriptedNetwork::ScriptedNetwork(std::vector<TransportStep> steps)
    : m_transport(std::make_shared<ScriptedTransport>(std::move(steps))), m_now(kStart) {
    TheSeam().makeTransport = [this](const Http::TransportOptions& options) {
        m_options = options;
        return m_transport;
    };
    TheSeam().now = [this] { return Now(); };
    TheSeam().sleep = [this](std::chrono::milliseconds delay) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_delays.push_back(delay.count());
        m_now += std::chrono::minutes(1);
    };
}

ScriptedNetwork::~ScriptedNetwork() {
    TheSeam() = Seam{};
}

std::vector<long long> ScriptedNetwork::Delays() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_delays;
}

std::chrono::system_clock::time_point ScriptedNetwork::Now() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_now;
}

}  // namespace Mirqos::Test
