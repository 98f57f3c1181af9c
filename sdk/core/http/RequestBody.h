#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>

#include "sdk/core/http/Transport.h"

namespace Mirqos::Http {

/// What is wrong with a request that must not reach the wire (a line break in a header, a blank in
/// the target, ...); empty: nothing.
std::string RequestProblem(const Request& request);

/// Whether the request announces a length: it has a body, or its method is expected to have one.
bool AnnouncesLength(const Request& request);

/// The bytes of a request's body, which can be sent a second time when its stream can seek.
class RequestBody {
public:
    explicit RequestBody(const Request& request);

    std::uint64_t Length() const { return m_length; }
    std::uint64_t Taken() const { return m_taken; }
    std::uint64_t Left() const { return m_length - m_taken; }
    /// Reads up to `size` bytes. 0 before Length() bytes were read means that the stream ended
    /// early.
    std::size_t Read(char* buffer, std::size_t size);
    /// Goes to `offset` from the body's first byte. False: the stream cannot.
    bool Rewind(std::uint64_t offset = 0);

private:
    std::istream* m_stream;
    std::uint64_t m_length;
    std::uint64_t m_taken = 0;
    std::istream::pos_type m_start = std::istream::pos_type(-1);
};

}  // namespace Mirqos::Http
