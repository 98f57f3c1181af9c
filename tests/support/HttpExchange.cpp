#include "tests/support/HttpExchange.h"

#include <algorithm>
#include <cstring>

namespace Mirqos::Test {

Http::Receiver::Want KeptAnswer::OnHead(const Http::ResponseHead& arrived) {
    ++heads;
    head = arrived;
    return enoughAtHead ? Want::enough : Want::more;
}

Http::Receiver::Want KeptAnswer::OnBody(const char* data, std::size_t size) {
    body.append(data, size);
    return enoughAtBody ? Want::enough : Want::more;
}

Http::Request LoopbackRequest(std::uint16_t port, const std::string& method,
                              const std::string& target) {
    Http::Request request;
    request.method = method;
    request.https = false;
    request.host = "127.0.0.1";
    request.port = port;
    request.target = target;
    request.headers = {{"Host", "bucket.example.com"}};
    return request;
}

LongStream::LongStream(std::uint64_t size) : std::istream(nullptr), m_buffer(size) {
    rdbuf(&m_buffer);
}

LongStream::Buffer::int_type LongStream::Buffer::underflow() {
    return m_at < m_size ? traits_type::to_int_type('x') : traits_type::eof();
}

std::streamsize LongStream::Buffer::xsgetn(char* to, std::streamsize count) {
    const std::uint64_t taken = std::min(static_cast<std::uint64_t>(count), m_size - m_at);
    std::memset(to, 'x', static_cast<std::size_t>(taken));
    m_at += taken;
    return static_cast<std::streamsize>(taken);
}

LongStream::Buffer::pos_type LongStream::Buffer::seekoff(off_type offset,
                                                         std::ios_base::seekdir from,
                                                         std::ios_base::openmode which) {
    const off_type base = from == std::ios_base::beg   ? 0
                          : from == std::ios_base::cur ? static_cast<off_type>(m_at)
                                                       : static_cast<off_type>(m_size);
    return seekpos(base + offset, which);
}

LongStream::Buffer::pos_type LongStream::Buffer::seekpos(pos_type to, std::ios_base::openmode) {
    const auto at = static_cast<std::uint64_t>(static_cast<off_type>(to));
    if (at > m_size) {
        return pos_type(off_type(-1));
    }
    m_at = at;
    return to;
}

}  // namespace Mirqos::Test
