#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "sdk/core/http/Transport.h"

namespace Mirqos::Http {

/// Reads a Content-Length: digits only, below 2^64. False for anything else.
bool ParseLength(std::string_view text, std::uint64_t& length);

/// Compares the body bytes that arrived with what the answer's head announced.
class BodyLedger {
public:
    enum class Framing {
        none,       ///< no body by rule: HEAD, 204, 304
        length,     ///< Content-Length bytes
        chunked,    ///< until the last chunk
        untilClose  ///< until the connection closes; a cut cannot be told from an end
    };

    /// `head` has passed a HeadReader.
    BodyLedger(const std::string& method, const ResponseHead& head);

    void Add(std::size_t size) { m_arrived += size; }
    Framing GetFraming() const { return m_framing; }
    std::uint64_t Arrived() const { return m_arrived; }
    /// Whether the body is whole. `lastChunkSeen` matters to chunked bodies only.
    bool IsComplete(bool lastChunkSeen) const;
    /// What is missing, for a log line.
    std::string Shortfall() const;

private:
    Framing m_framing = Framing::untilClose;
    std::uint64_t m_expected = 0;
    std::uint64_t m_arrived = 0;
};

}  // namespace Mirqos::Http
