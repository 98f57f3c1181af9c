#include "tests/faults/FaultyService.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "tests/support/RequestHead.h"

namespace Mirqos::Test {
namespace {

constexpr std::size_t kTrickle = 7;

/// A port at which nobody listens.
std::uint16_t ClosedPort() {
    return RawServer([](RawServer::Connection&, int) {}).Port();
}

Sent::Answered AnsweredBy(const RecordedRequest& request, const std::string& good) {
    if (request.method == "HEAD") {
        return Sent::Answered::head;
    }
    if (request.Header("Range") != nullptr) {
        return Sent::Answered::bytes;
    }
    return good.size() > good.find("\r\n\r\n") + 4 ? Sent::Answered::document
                                                   : Sent::Answered::empty;
}

Sent SentBy(const RecordedRequest& request, const std::string& good) {
    Sent sent;
    sent.answered = AnsweredBy(request, good);
    sent.body = !request.body.empty();
    sent.tagged = good.find("\r\nETag:") != std::string::npos;
    return sent;
}

void Do(Harm harm, RawServer::Connection& connection) {
    switch (harm) {
        case Harm::reset:
            connection.Reset();
            return;
        case Harm::close:
            connection.Close();
            return;
        case Harm::stall:
            connection.AwaitClose();
            return;
    }
}

/// How much of a good answer is sent before a fault at that stage.
std::size_t SentBefore(Stage stage, const std::string& good) {
    const std::size_t body = good.find("\r\n\r\n") + 4;
    switch (stage) {
        case Stage::statusLine:
            return 10;
        case Stage::answerHeaders:
            return good.find("\r\n") + 6;
        case Stage::answerBody:
            return body + (good.size() - body) / 2;
        case Stage::end:
            return good.size();
        default:
            return 0;
    }
}

}  // namespace

FaultyService::FaultyService(ModelService model, bool keepsConnections)
    : m_keepsConnections(keepsConnections),
      m_model(std::move(model)),
      m_closedPort(ClosedPort()),
      m_server([this](Connection& connection, int) { Serve(connection); }) {
}

void FaultyService::Break(const Mishap& fault, int request, bool once) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_fault = &fault;
    m_at = request;
    m_left = once ? 1 : -1;
    m_good = 0;
    m_hits = 0;
}

void FaultyService::Mend() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_fault = nullptr;
}

int FaultyService::Hits() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_hits;
}

bool FaultyService::IsDue(Stage stage) const {
    return m_fault != nullptr && m_fault->stage == stage && m_left != 0 && m_good >= m_at;
}

void FaultyService::Count() {
    ++m_hits;
    m_left = std::max(m_left - 1, -1);
}

std::optional<Harm> FaultyService::Strike(Stage stage) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!IsDue(stage)) {
        return std::nullopt;
    }
    Count();
    return m_fault->harm;
}

Seam::Address FaultyService::NextAddress() {
    return {"127.0.0.1", Strike(Stage::refusal) ? m_closedPort : m_server.Port()};
}

void FaultyService::Serve(Connection& connection) {
    if (const auto harm = Strike(Stage::connection)) {
        Do(*harm, connection);
        return;
    }
    while (ServeRequest(connection)) {
    }
}

bool FaultyService::ServeRequest(Connection& connection) {
    std::string head = connection.Read(1);
    {
        // A connection that was kept goes, so that another one has to be made.
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (IsDue(Stage::connection)) {
            return false;
        }
    }
    if (const auto harm = Strike(Stage::requestLine)) {
        connection.Read(4);
        Do(*harm, connection);
        return false;
    }
    if (const auto harm = Strike(Stage::requestHeaders)) {
        while (connection.Read(1) != "\n") {
        }
        connection.Read(20);
        Do(*harm, connection);
        return false;
    }
    head += connection.ReadHead();
    RecordedRequest request;
    if (!SplitHead(head, request)) {
        return false;
    }
    const std::string* const length = request.Header("Content-Length");
    const std::size_t size = length == nullptr ? 0 : std::stoul(*length);
    if (size > 0) {
        if (const auto harm = Strike(Stage::requestBody)) {
            connection.Read(size / 2);
            Do(*harm, connection);
            return false;
        }
    }
    request.body = connection.Read(size);
    return ServeAnswer(connection, request);
}

FaultyService::Reply FaultyService::Decide(const RecordedRequest& request) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ModelService carriedOut = m_model;
    Answer answer = carriedOut.Take(request).Header("Date", "Thu, 01 Jan 2026 00:00:00 GMT");
    if (!m_keepsConnections) {
        answer.ConnectionClose();
    }
    const bool toHead = request.method == "HEAD";
    Reply reply;
    reply.bytes = answer.Plan(toHead).bytes;
    reply.goesOn = m_keepsConnections;

    std::optional<Effect> effect;
    if (m_fault != nullptr && m_fault->stage >= Stage::beforeAnswer && IsDue(m_fault->stage)) {
        effect = m_fault->effect(SentBy(request, reply.bytes));
    }
    if (!effect || m_fault->IsDone()) {
        m_model = std::move(carriedOut);
    }
    if (!effect || effect->kind == Effect::Kind::harmless) {
        ++m_good;
    }
    if (!effect) {
        return reply;
    }
    Count();
    if (m_fault->stage != Stage::answer) {
        reply.bytes.resize(SentBefore(m_fault->stage, reply.bytes));
        reply.harm = m_fault->harm;
    } else if (m_fault->instead != nullptr) {
        reply.bytes = m_fault->instead(reply.bytes, toHead);
        reply.goesOn = reply.goesOn && !m_fault->closes;
    } else {
        reply.step = kTrickle;
    }
    return reply;
}

bool FaultyService::ServeAnswer(Connection& connection, const RecordedRequest& request) {
    const Reply reply = Decide(request);
    const std::size_t step = reply.step != 0 ? reply.step : reply.bytes.size();
    for (std::size_t at = 0; at < reply.bytes.size(); at += step) {
        connection.Send(reply.bytes.substr(at, step));
    }
    if (reply.harm) {
        Do(*reply.harm, connection);
        return false;
    }
    return reply.goesOn;
}

}  // namespace Mirqos::Test
