#include "sdk/core/http/RequestBody.h"

#include <algorithm>
#include <limits>

#include "sdk/core/http/Ascii.h"

namespace Mirqos::Http {
namespace {

bool IsVisible(char c) {
    return c > 0x20 && c < 0x7f;
}

bool IsHost(const std::string& host) {
    return !host.empty() && std::all_of(host.begin(), host.end(), [](char c) {
        return IsVisible(c) && std::string_view("/\\?#@%\"<>").find(c) == std::string_view::npos;
    });
}

}  // namespace

std::string RequestProblem(const Request& request) {
    if (!IsToken(request.method)) {
        return "the request's method is not a token";
    }
    if (!IsHost(request.host) || (!request.connectHost.empty() && !IsHost(request.connectHost))) {
        return "the request's host is not a host name or address";
    }
    if (request.target.empty() || request.target.front() != '/' ||
        !std::all_of(request.target.begin(), request.target.end(), IsVisible)) {
        return "the request's target is not an encoded path";
    }
    if (request.body == nullptr && request.bodyLength != 0) {
        return "the request has a body length but no body";
    }
    for (const auto& [name, value] : request.headers) {
        if (!IsToken(name) || HasLineBreak(value)) {
            return "a header of the request is not one line";
        }
        if (EqualNoCase(name, "Content-Length") || EqualNoCase(name, "Transfer-Encoding")) {
            return "the request sets a header that belongs to the transport: " + name;
        }
    }
    return {};
}

bool AnnouncesLength(const Request& request) {
    return request.body != nullptr || request.method == "PUT" || request.method == "POST";
}

RequestBody::RequestBody(const Request& request)
    : m_stream(request.body), m_length(request.body == nullptr ? 0 : request.bodyLength) {
    if (m_stream != nullptr) {
        m_stream->clear();
        m_start = m_stream->tellg();
    }
}

std::size_t RequestBody::Read(char* buffer, std::size_t size) {
    if (m_stream == nullptr) {
        return 0;
    }
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::streamsize>::max());
    const std::uint64_t wanted = std::min({static_cast<std::uint64_t>(size), Left(), most});
    m_stream->read(buffer, static_cast<std::streamsize>(wanted));
    const auto got = static_cast<std::size_t>(m_stream->gcount());
    m_taken += got;
    return got;
}

bool RequestBody::Rewind(std::uint64_t offset) {
    if (m_taken == offset) {
        return true;
    }
    if (m_stream == nullptr || m_start == std::istream::pos_type(-1) || offset > m_length) {
        return false;
    }
    m_stream->clear();
    m_stream->seekg(m_start + static_cast<std::istream::off_type>(offset));
    if (!m_stream->good()) {
        return false;
    }
    m_taken = offset;
    return true;
}

}  // namespace Mirqos::Http
