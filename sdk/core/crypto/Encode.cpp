#include "sdk/core/crypto/Hash.h"

namespace Mirqos::Crypto {

std::string ToHex(const std::uint8_t* data, std::size_t size) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text(size * 2, '0');
    for (std::size_t i = 0; i < size; ++i) {
        text[2 * i] = digits[data[i] >> 4];
        text[2 * i + 1] = digits[data[i] & 15];
    }
    return text;
}

std::string ToBase64(const std::uint8_t* data, std::size_t size) {
    static constexpr char digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((size + 2) / 3 * 4);
    for (std::size_t i = 0; i < size; i += 3) {
        const std::size_t left = size - i;
        const std::uint32_t group = static_cast<std::uint32_t>(data[i]) << 16 |
                                    (left > 1 ? static_cast<std::uint32_t>(data[i + 1]) << 8 : 0u) |
                                    (left > 2 ? data[i + 2] : 0u);
        text += digits[group >> 18 & 63];
        text += digits[group >> 12 & 63];
        text += left > 1 ? digits[group >> 6 & 63] : '=';
        text += left > 2 ? digits[group & 63] : '=';
    }
    return text;
}

}  // namespace Mirqos::Crypto
