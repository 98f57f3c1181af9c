#include "sdk/core/http/BodyLedger.h"

#include <limits>

#include "sdk/core/http/Ascii.h"

namespace Mirqos::Http {

bool ParseLength(std::string_view text, std::uint64_t& length) {
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    length = 0;
    for (const char c : text) {
        if (!IsDigit(c)) {
            return false;
        }
        const std::uint64_t digit = static_cast<std::uint64_t>(c - '0');
        if (length > (most - digit) / 10) {
            return false;
        }
        length = length * 10 + digit;
    }
    return !text.empty();
}

BodyLedger::BodyLedger(const std::string& method, const ResponseHead& head) {
    if (method == "HEAD" || head.status == 204 || head.status == 304) {
        m_framing = Framing::none;
    } else if (FindHeader(head.headers, "Transfer-Encoding") != nullptr) {
        m_framing = Framing::chunked;  // overrules a Content-Length beside it
    } else if (const std::string* text = FindHeader(head.headers, "Content-Length");
               text != nullptr && ParseLength(*text, m_expected)) {
        m_framing = Framing::length;
    }
}

bool BodyLedger::IsComplete(bool lastChunkSeen) const {
    switch (m_framing) {
        case Framing::none:
            return m_arrived == 0;
        case Framing::length:
            return m_arrived == m_expected;
        case Framing::chunked:
            return lastChunkSeen;
        case Framing::untilClose:
            return true;
    }
    return false;
}

std::string BodyLedger::Shortfall() const {
    std::string text = "the answer's body ended after " + std::to_string(m_arrived);
    return m_framing == Framing::length ? text + " of " + std::to_string(m_expected) + " bytes"
                                        : text + " bytes, before its last chunk";
}

}  // namespace Mirqos::Http
