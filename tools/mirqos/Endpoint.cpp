#include "tools/mirqos/Endpoint.h"

#include <algorithm>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

/// Removes `prefix`, written in any case, from the front of `text`.
bool TakePrefix(std::string_view& text, std::string_view prefix) {
    const auto sameLetter = [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
    };
    if (text.size() < prefix.size() ||
        !std::equal(prefix.begin(), prefix.end(), text.begin(),
                    [&](char wanted, char given) { return sameLetter(given, wanted); })) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

bool IsHostCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_';
}

bool IsAddressCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || c == ':' ||
           c == '.';
}

bool IsHost(std::string_view host) {
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        return std::all_of(host.begin() + 1, host.end() - 1, IsAddressCharacter);
    }
    return !host.empty() && std::all_of(host.begin(), host.end(), IsHostCharacter);
}

}  // namespace

Endpoint ParseEndpoint(std::string_view text) {
    Endpoint endpoint;
    if (TakePrefix(text, "https://")) {
        endpoint.https = true;
    } else if (TakePrefix(text, "http://")) {
        endpoint.https = false;
    }
    if (!text.empty() && text.back() == '/') {
        text.remove_suffix(1);
    }
    std::string_view host = text;
    const std::size_t colon = text.rfind(':');
    bool valid = true;
    // a colon within brackets belongs to an IPv6 address
    if (colon != std::string_view::npos && text.find(']', colon) == std::string_view::npos) {
        host = text.substr(0, colon);
        valid = ParseNumber(text.substr(colon + 1), 1, 65535).has_value();
    }
    if (!valid || !IsHost(host)) {
        throw Failure(ExitCode::Usage,
                      "the endpoint is not valid; it has to be a host, with a port and http:// or "
                      "https:// where needed, as in http://127.0.0.1:8000");
    }
    endpoint.host = text;
    return endpoint;
}

}  // namespace Mirqos::Tool
