#include "tests/wire/AsyncReadTest.h"

#include <utility>

namespace Mirqos::Test {

AsyncRead::OneRead::OneRead(std::uint64_t start, std::uint64_t length, const char* key)
    : buffer(static_cast<std::size_t>(length) + 4, kUntouched) {
    context.m_pszBucket = kBucket;
    context.m_pszKey = key;
    context.m_pBuf = reinterpret_cast<unsigned char*>(buffer.data());
    context.m_nReadLen = length;
    context.m_nReadSize = 0;
    context.m_nRangeStart = start;
    context.m_nRangeEnd = start + length - 1;
}

AsyncRead::OneRead::OneRead(OneRead&& other) noexcept
    : buffer(std::move(other.buffer)), context(other.context) {
    context.m_pBuf = reinterpret_cast<unsigned char*>(buffer.data());
}

bool AsyncRead::OneRead::Untouched() const {
    return buffer == std::string(buffer.size(), kUntouched);
}

bool AsyncRead::OneRead::Delivered() const {
    return buffer == Filled(Digits(context.m_nRangeStart, context.m_nReadLen));
}

Answer AsyncRead::Bytes(const std::string& body, std::uint64_t first) {
    const std::string range = std::to_string(first) + "-" + std::to_string(first + body.size() - 1);
    return Answer::Status(206).Header("Content-Range", "bytes " + range + "/*").Body(body);
}

std::string AsyncRead::Digits(std::uint64_t first, std::uint64_t count) {
    std::string text;
    for (std::uint64_t i = first; i < first + count; ++i) {
        text += static_cast<char>('0' + i % 10);
    }
    return text;
}

Answer AsyncRead::DigitsFor(const RecordedRequest& request) {
    const std::string range = request.Value("range");
    const auto dash = range.find('-');
    const auto first = std::stoull(range.substr(6, dash - 6));
    const auto last = std::stoull(range.substr(dash + 1));
    return Bytes(Digits(first, last - first + 1), first);
}

void AsyncRead::ServeDigits(const char* key) {
    m_server.On("GET", std::string("/the-bucket/") + key).Call(DigitsFor);
}

}  // namespace Mirqos::Test
