#include "tools/mirqos/Text.h"

#include <array>
#include <charconv>

namespace Mirqos::Tool {

namespace {

unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}

bool IsContinuation(char c) {
    return (Byte(c) & 0xC0U) == 0x80U;
}

/// Length of the well-formed character at the front of `text`; 0 when there is none.
std::size_t CharacterLength(std::string_view text) {
    const unsigned lead = Byte(text.front());
    if (lead < 0x80U) {
        return 1;
    }
    std::size_t length = 0;
    std::uint32_t value = 0;
    std::uint32_t least = 0;
    if (lead >= 0xC0U && lead < 0xE0U) {
        length = 2;
        value = lead & 0x1FU;
        least = 0x80U;
    } else if (lead >= 0xE0U && lead < 0xF0U) {
        length = 3;
        value = lead & 0x0FU;
        least = 0x800U;
    } else if (lead >= 0xF0U && lead < 0xF8U) {
        length = 4;
        value = lead & 0x07U;
        least = 0x10000U;
    }
    if (length == 0 || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (!IsContinuation(text[i])) {
            return 0;
        }
        value = (value << 6U) | (Byte(text[i]) & 0x3FU);
    }
    const bool surrogate = value >= 0xD800U && value <= 0xDFFFU;
    return value < least || value > 0x10FFFFU || surrogate ? 0 : length;
}

std::string TwoDigits(std::uint64_t value) {
    const std::string digits = std::to_string(value);
    return digits.size() < 2 ? "0" + digits : digits;
}

}  // namespace

std::string FormatSize(std::uint64_t bytes) {
    static constexpr std::array<const char*, 6> kUnits = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    if (bytes < 1024) {
        return std::to_string(bytes) + " B";
    }
    std::uint64_t unit = 1024;
    for (std::size_t i = 0;; ++i, unit *= 1024) {
        std::uint64_t whole = bytes / unit;
        // fits: the remainder is below 2^60
        std::uint64_t tenths = (bytes % unit * 10 + unit / 2) / unit;
        if (tenths >= 10) {
            ++whole;
            tenths = 0;
        }
        if (whole < 1024 || i + 1 == kUnits.size()) {
            return std::to_string(whole) + "." + std::to_string(tenths) + " " + kUnits[i];
        }
    }
}

std::string CountOf(std::uint64_t count, const std::string& thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string FormatDuration(std::uint64_t seconds) {
    const std::uint64_t minutes = seconds / 60;
    if (minutes < 60) {
        return std::to_string(minutes) + ":" + TwoDigits(seconds % 60);
    }
    return std::to_string(minutes / 60) + ":" + TwoDigits(minutes % 60) + ":" +
           TwoDigits(seconds % 60);
}

std::optional<std::uint64_t> ParseNumber(std::string_view text, std::uint64_t least,
                                         std::uint64_t most) {
    std::uint64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc() || stop != end || value < least || value > most) {
        return std::nullopt;
    }
    return value;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string FormatHex(const unsigned char* bytes, std::size_t count) {
    static constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += kDigits[bytes[i] >> 4U];
        text += kDigits[bytes[i] & 0x0FU];
    }
    return text;
}

std::string PadLeft(const std::string& text, std::size_t columns) {
    return text.size() < columns ? std::string(columns - text.size(), ' ') + text : text;
}

std::size_t CountCharacters(std::string_view text) {
    std::size_t count = 0;
    for (const char c : text) {
        count += IsContinuation(c) ? 0U : 1U;
    }
    return count;
}

std::string_view LastCharacters(std::string_view text, std::size_t count) {
    std::size_t begin = text.size();
    while (begin > 0 && count > 0) {
        --begin;
        while (begin > 0 && IsContinuation(text[begin])) {
            --begin;
        }
        --count;
    }
    return text.substr(begin);
}

std::string Printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        const bool control = Byte(text.front()) < 0x20U || Byte(text.front()) == 0x7FU;
        // U+0080 to U+009F are control characters too
        const bool highControl =
            length == 2 && Byte(text.front()) == 0xC2U && Byte(text[1]) < 0xA0U;
        if (length == 0 || control || highControl) {
            result += '?';
        } else {
            result += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

std::string EscapeForeignBytes(std::string_view text) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string result;
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        if (length == 0) {
            result += "\\x";
            result += kDigits[Byte(text.front()) >> 4U];
            result += kDigits[Byte(text.front()) & 0x0FU];
        } else if (text.front() == '\\') {
            result += "\\\\";
        } else {
            result += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

}  // namespace Mirqos::Tool
