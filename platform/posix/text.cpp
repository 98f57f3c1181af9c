#include "platform/text.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

// UTF-8 by hand: the C library's conversions depend on the process's locale, which belongs to the
// host.
namespace Mirqos {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::uint32_t kMaxCodePoint = 0x10FFFF;

bool IsCodePoint(std::uint32_t value) {
    return value <= kMaxCodePoint && (value < 0xD800 || value > 0xDFFF);
}

// Takes one code point from the front of `text`; a byte that begins none gives the replacement.
std::uint32_t TakeCodePoint(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    if (lead < 0x80) {
        return lead;
    }
    const std::size_t count = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < count) {
        return kReplacement;
    }
    std::uint32_t value = lead & (0x3Fu >> count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0u) != 0x80) {
            return kReplacement;
        }
        value = (value << 6) | (next & 0x3Fu);
    }
    constexpr std::uint32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    if (value < kSmallest[count] || !IsCodePoint(value)) {
        return kReplacement;
    }
    text.remove_prefix(count);
    return value;
}

void AppendCodePoint(std::string& text, std::uint32_t value) {
    const auto append = [&text](std::uint32_t byte) {
        text.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
    };
    if (value < 0x80) {
        append(value);
        return;
    }
    if (value < 0x800) {
        append(0xC0 | (value >> 6));
    } else {
        if (value < 0x10000) {
            append(0xE0 | (value >> 12));
        } else {
            append(0xF0 | (value >> 18));
            append(0x80 | ((value >> 12) & 0x3F));
        }
        append(0x80 | ((value >> 6) & 0x3F));
    }
    append(0x80 | (value & 0x3F));
}

}  // namespace

std::wstring WidenText(const char* text) {
    if (text == nullptr) {
        return L"(null)";
    }
    std::wstring wide;
    for (std::string_view rest = text; !rest.empty();) {
        wide.push_back(static_cast<wchar_t>(TakeCodePoint(rest)));
    }
    return wide;
}

std::string NarrowText(const wchar_t* text) {
    if (text == nullptr) {
        return "(null)";
    }
    std::string narrow;
    for (; *text != 0; ++text) {
        const std::uint32_t value = static_cast<char32_t>(*text);
        AppendCodePoint(narrow, IsCodePoint(value) ? value : kReplacement);
    }
    return narrow;
}

}  // namespace Mirqos
