#include "sdk/core/util/UrlEncode.h"

namespace Mirqos {
namespace {

// Not isalnum: that follows the locale of the process.
bool IsUnreserved(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

std::string Encode(std::string_view text, bool keepSlash) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(text.size() + text.size() / 4);
    for (const char c : text) {
        if (IsUnreserved(c) || (keepSlash && c == '/')) {
            encoded += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            encoded += '%';
            encoded += digits[byte >> 4];
            encoded += digits[byte & 15];
        }
    }
    return encoded;
}

}  // namespace

std::string EncodePath(std::string_view key) {
    return Encode(key, true);
}

std::string EncodeQuery(std::string_view text) {
    return Encode(text, false);
}

}  // namespace Mirqos
