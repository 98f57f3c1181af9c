#pragma once

#include <string_view>

/// Character tests of HTTP's grammar. The C library's depend on the host's locale.
namespace Mirqos::Http {

inline char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline bool EqualNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (LowerAscii(a[i]) != LowerAscii(b[i])) {
            return false;
        }
    }
    return true;
}

inline bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// A character of a method or of a header's name.
inline bool IsTokenChar(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           (c != '\0' && std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos);
}

inline bool IsToken(std::string_view text) {
    for (const char c : text) {
        if (!IsTokenChar(c)) {
            return false;
        }
    }
    return !text.empty();
}

/// Whether `text` holds what some reader of HTTP takes for the end of a line.
inline bool HasLineBreak(std::string_view text) {
    // not find_first_of, which searches the set anew for each character: this sees every header
    const auto has = [text](char c) { return text.find(c) != std::string_view::npos; };
    return has('\r') || has('\n') || has('\0');
}

inline std::string_view TrimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace Mirqos::Http
