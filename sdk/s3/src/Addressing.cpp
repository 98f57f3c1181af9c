#include "sdk/s3/src/Addressing.h"

#include <algorithm>

#include "sdk/core/http/Ascii.h"
#include "sdk/core/util/UrlEncode.h"

namespace Mirqos::S3 {
namespace {

constexpr std::string_view kHttpPrefix = "http://";
constexpr std::string_view kHttpsPrefix = "https://";

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
    return Http::EqualNoCase(text.substr(0, prefix.size()), prefix);
}

bool IsLowerOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || Http::IsDigit(c);
}

/// Digits and dots only: no name of a host, so nothing can be put before it.
bool LooksLikeIpv4(std::string_view host) {
    return std::all_of(host.begin(), host.end(),
                       [](char c) { return Http::IsDigit(c) || c == '.'; });
}

bool IsIpv6(std::string_view host) {
    return host.find(':') != std::string_view::npos;
}

std::string ServiceHost(const std::string& region) {
    if (region.empty() || region == "us-east-1") {
        return "s3.amazonaws.com";
    }
    const bool isChina = region.rfind("cn-", 0) == 0;
    return "s3." + region + ".amazonaws.com" + (isChina ? ".cn" : "");
}

/// Nothing where the text is not a port.
std::optional<std::uint16_t> ParsePort(std::string_view text) {
    if (text.empty() || text.size() > 5 || !std::all_of(text.begin(), text.end(), Http::IsDigit)) {
        return std::nullopt;
    }
    int port = 0;
    for (const char c : text) {
        port = port * 10 + (c - '0');
    }
    return port >= 1 && port <= 65535 ? std::optional(static_cast<std::uint16_t>(port))
                                      : std::nullopt;
}

}  // namespace

bool IsDnsCompatible(std::string_view bucket) {
    if (bucket.size() < 3 || bucket.size() > 63 || LooksLikeIpv4(bucket)) {
        return false;
    }
    char before = '.';
    for (const char c : bucket) {
        if (!IsLowerOrDigit(c) && c != '-' && c != '.') {
            return false;
        }
        // A part may neither be empty nor begin nor end with a hyphen.
        if ((before == '.' && !IsLowerOrDigit(c)) || (before == '-' && c == '.')) {
            return false;
        }
        before = c;
    }
    return IsLowerOrDigit(before);
}

Addressing::Addressing(const std::string& endpoint, const std::string& region, bool https,
                       bool useVirtualAddressing)
    : m_https(https), m_useVirtualAddressing(useVirtualAddressing) {
    if (endpoint.empty()) {
        m_host = ServiceHost(region);
    } else {
        ParseEndpoint(endpoint);
    }
    if (m_port == 0) {
        m_port = m_https ? 443 : 80;
    }
}

void Addressing::ParseEndpoint(std::string_view endpoint) {
    if (StartsWithNoCase(endpoint, kHttpsPrefix)) {
        m_https = true;
        endpoint.remove_prefix(kHttpsPrefix.size());
    } else if (StartsWithNoCase(endpoint, kHttpPrefix)) {
        m_https = false;
        endpoint.remove_prefix(kHttpPrefix.size());
    }
    const std::size_t slash = std::min(endpoint.find('/'), endpoint.size());
    std::string_view authority = endpoint.substr(0, slash);
    std::string_view path = endpoint.substr(slash);
    while (!path.empty() && path.back() == '/') {
        path.remove_suffix(1);
    }
    m_pathPrefix = path;

    // An IPv6 address stands in brackets, since it has colons of its own.
    const bool bracketed = !authority.empty() && authority.front() == '[';
    const std::size_t end = bracketed ? authority.find(']') : authority.find(':');
    const std::size_t hostEnd = std::min(end, authority.size());
    m_host = authority.substr(bracketed ? 1 : 0, hostEnd - (bracketed ? 1 : 0));
    std::string_view rest = authority.substr(hostEnd);
    const bool unclosed = bracketed && rest.empty();
    if (bracketed && !unclosed) {
        rest.remove_prefix(1);
    }
    bool badPort = false;
    if (!rest.empty()) {
        const std::optional<std::uint16_t> port = ParsePort(rest.substr(1));
        badPort = rest.front() != ':' || !port;
        m_port = port.value_or(0);
    }
    if (m_host.empty() || unclosed || badPort) {
        m_problem = "The endpoint is not HOST[:PORT] with a port from 1 to 65535.";
    }
}

bool Addressing::GoesIntoHost(const std::string& bucket) const {
    // Certificates of wildcard names cover one more part of the name, not several.
    const bool certificateFits = !m_https || bucket.find('.') == std::string::npos;
    return m_useVirtualAddressing && certificateFits && IsDnsCompatible(bucket) &&
           !LooksLikeIpv4(m_host) && !IsIpv6(m_host);
}

Client::Destination Addressing::Locate(const std::optional<std::string>& bucket,
                                       const std::optional<std::string>& key) const {
    Client::Destination destination;
    destination.https = m_https;
    destination.host = m_host;
    destination.port = m_port;
    destination.path = m_pathPrefix;
    if (bucket && GoesIntoHost(*bucket)) {
        destination.host = *bucket + '.' + m_host;
    } else if (bucket) {
        destination.path.append("/").append(Mirqos::EncodeQuery(*bucket));
    }
    if (key) {
        destination.path.append("/").append(Mirqos::EncodePath(*key));
    }
    if (destination.path.empty()) {
        destination.path = "/";
    }
    return destination;
}

}  // namespace Mirqos::S3
