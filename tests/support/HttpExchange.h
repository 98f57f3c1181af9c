#pragma once

#include <cstdint>
#include <istream>
#include <streambuf>
#include <string>

#include "sdk/core/http/Transport.h"

namespace Mirqos::Test {

/// Keeps what an exchange delivers, and ends it early when told to.
class KeptAnswer final : public Http::Receiver {
public:
    Want OnHead(const Http::ResponseHead& head) override;
    Want OnBody(const char* data, std::size_t size) override;

    int heads = 0;
    Http::ResponseHead head;
    std::string body;
    bool enoughAtHead = false;
    bool enoughAtBody = false;
};

/// A request to a server on the loopback address.
Http::Request LoopbackRequest(std::uint16_t port, const std::string& method,
                              const std::string& target);

/// A stream of `size` bytes that takes no memory; every byte is 'x'. It can seek to its start.
class LongStream final : public std::istream {
public:
    explicit LongStream(std::uint64_t size);

private:
    class Buffer final : public std::streambuf {
    public:
        explicit Buffer(std::uint64_t size) : m_size(size) {}

    protected:
        int_type underflow() override;
        std::streamsize xsgetn(char* to, std::streamsize count) override;
        pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                         std::ios_base::openmode which) override;
        pos_type seekpos(pos_type to, std::ios_base::openmode which) override;

    private:
        std::uint64_t m_size;
        std::uint64_t m_at = 0;
    };
    Buffer m_buffer;
};

}  // namespace Mirqos::Test
