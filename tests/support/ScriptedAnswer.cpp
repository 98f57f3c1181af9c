#include "tests/support/ScriptedAnswer.h"

#include <algorithm>
#include <cstdio>

namespace Mirqos::Test {
namespace {

std::string Reason(int status) {
    switch (status) {
        case 100:
            return "Continue";
        case 200:
            return "OK";
        case 204:
            return "No Content";
        case 206:
            return "Partial Content";
        case 403:
            return "Forbidden";
        case 404:
            return "Not Found";
        case 500:
            return "Internal Server Error";
        case 503:
            return "Service Unavailable";
        default:
            return "Status";
    }
}

std::string StatusLine(int status) {
    return "HTTP/1.1 " + std::to_string(status) + " " + Reason(status) + "\r\n";
}

}  // namespace

Answer Answer::Status(int status) {
    Answer answer;
    answer.m_status = status;
    return answer;
}

Answer Answer::Raw(std::string bytes) {
    Answer answer;
    answer.m_raw = std::move(bytes);
    answer.m_close = true;
    return answer;
}

Answer Answer::S3Error(int status, const std::string& code, const std::string& message) {
    return Status(status)
        .Header("Content-Type", "application/xml")
        .Body("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Error><Code>" + code +
              "</Code><Message>" + message +
              "</Message><RequestId>4442587FB7D0A2F9</RequestId></Error>");
}

Answer& Answer::Header(std::string name, std::string value) {
    m_headers.emplace_back(std::move(name), std::move(value));
    return *this;
}

Answer& Answer::Body(std::string body) {
    m_body = std::move(body);
    return *this;
}

Answer& Answer::ClaimLength(std::string length) {
    m_claimedLength = std::move(length);
    return *this;
}

Answer& Answer::WithoutLength() {
    m_withoutLength = true;
    m_close = true;
    return *this;
}

Answer& Answer::Chunked(std::size_t size) {
    m_chunk = size;
    return *this;
}

Answer& Answer::ChunkedWithoutEnd(std::size_t size) {
    m_withoutLastChunk = true;
    m_close = true;
    return Chunked(size);
}

Answer& Answer::Interim(int status) {
    m_interim += StatusLine(status) + "\r\n";
    return *this;
}

Answer& Answer::AfterRequestBytes(std::uint64_t bytes) {
    m_answerAfter = bytes;
    return *this;
}

Answer& Answer::ConnectionClose() {
    m_close = true;
    return Header("Connection", "close");
}

Answer& Answer::KeepAlive() {
    m_close = false;
    return *this;
}

Answer& Answer::Close(Place place) {
    return Add(place, Fault::close, Gate());
}

Answer& Answer::Reset(Place place) {
    return Add(place, Fault::reset, Gate());
}

Answer& Answer::Stall(Place place) {
    return Add(place, Fault::stall, Gate());
}

Answer& Answer::Wait(Place place, Gate gate) {
    return Add(place, std::nullopt, std::move(gate));
}

Answer& Answer::Trickle(std::size_t step, Gate gate) {
    m_trickleStep = step;
    m_trickleGate = std::move(gate);
    return *this;
}

Answer& Answer::Add(Place place, std::optional<Fault> fault, Gate gate) {
    AnswerPlan::Stop stop;
    stop.fault = fault;
    stop.gate = std::move(gate);
    m_stops.push_back({place, stop});
    return *this;
}

std::string Answer::BodyBytes() const {
    if (m_chunk == 0) {
        return m_body;
    }
    std::string bytes;
    for (std::size_t at = 0; at < m_body.size(); at += m_chunk) {
        const std::size_t size = std::min(m_chunk, m_body.size() - at);
        char line[32];
        std::snprintf(line, sizeof(line), "%llx\r\n", static_cast<unsigned long long>(size));
        bytes.append(line).append(m_body, at, size).append("\r\n");
    }
    return m_withoutLastChunk ? bytes : bytes + "0\r\n\r\n";
}

std::string Answer::HeadBytes(std::size_t bodySize) const {
    std::string head = StatusLine(m_status);
    for (const auto& [name, value] : m_headers) {
        head += name + ": " + value + "\r\n";
    }
    if (m_chunk != 0) {
        head += "Transfer-Encoding: chunked\r\n";
    } else if (m_claimedLength) {
        head += "Content-Length: " + *m_claimedLength + "\r\n";
    } else if (!m_withoutLength && m_status != 204 && m_status != 304) {
        head += "Content-Length: " + std::to_string(bodySize) + "\r\n";
    }
    return head + "\r\n";
}

AnswerPlan Answer::Plan(bool toHead) const {
    AnswerPlan plan;
    plan.interim = m_interim;
    plan.answerAfter = m_answerAfter;
    plan.closes = m_close;
    std::size_t headSize = 0;
    if (m_raw) {
        plan.bytes = *m_raw;
        const std::size_t end = plan.bytes.find("\r\n\r\n");
        headSize = end == std::string::npos ? plan.bytes.size() : end + 4;
    } else {
        plan.bytes = HeadBytes(m_body.size());
        headSize = plan.bytes.size();
        if (!toHead) {
            plan.bytes += BodyBytes();
        }
    }
    for (PlacedStop placed : m_stops) {
        placed.stop.at = placed.place.m_bytes;
        if (placed.place.m_kind == Place::Kind::request) {
            plan.requestStops.push_back(placed.stop);
            continue;
        }
        if (placed.place.m_kind == Place::Kind::body) {
            placed.stop.at += headSize;
        }
        plan.answerStops.push_back(placed.stop);
    }
    if (m_trickleStep != 0) {
        for (std::size_t at = headSize; at < plan.bytes.size(); at += m_trickleStep) {
            plan.answerStops.push_back({at, std::nullopt, m_trickleGate});
        }
    }
    const auto earlier = [](const AnswerPlan::Stop& a, const AnswerPlan::Stop& b) {
        return a.at < b.at;
    };
    std::stable_sort(plan.requestStops.begin(), plan.requestStops.end(), earlier);
    std::stable_sort(plan.answerStops.begin(), plan.answerStops.end(), earlier);
    return plan;
}

}  // namespace Mirqos::Test
