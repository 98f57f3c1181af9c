#include "sdk/core/xml/HiddenCharacters.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>

namespace Mirqos::Xml {
namespace {

constexpr auto npos = std::string_view::npos;

/// A hidden character is this mark, its number in hexadecimal digits and a semicolon; so is the
/// mark itself where a document has it. U+F8FF is for private use, in texts as rare as any.
constexpr std::string_view kMark = "\xEF\xA3\xBF";
constexpr std::uint32_t kMarkNumber = 0xF8FF;
constexpr std::string_view kNoCharacters[] = {"\xEF\xBF\xBE", "\xEF\xBF\xBF"};
constexpr std::uint32_t kFirstNoCharacter = 0xFFFE;

constexpr std::string_view kReference = "&#";
constexpr std::string_view kCDataStart = "<![CDATA[";
constexpr std::string_view kCDataEnd = "]]>";

bool BeginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

bool IsCharacter(std::uint32_t number) {
    return number != 0 && number <= 0x10FFFF && (number < 0xD800 || number > 0xDFFF);
}

/// A character, and how many bytes of the document stand for it.
struct Found {
    std::uint32_t number;
    std::size_t size;
};

/// The number of digits before a semicolon, which `text` begins with.
std::optional<Found> ReadNumber(std::string_view text, int base) {
    Found found{};
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), found.number, base);
    found.size = static_cast<std::size_t>(end - text.data()) + 1;
    const bool ended = end != text.data() + text.size() && *end == ';';
    return error == std::errc() && ended ? std::optional(found) : std::nullopt;
}

std::optional<Found> ReadReference(std::string_view text) {
    text.remove_prefix(kReference.size());
    const bool hexadecimal = BeginsWith(text, "x");
    auto found = ReadNumber(text.substr(hexadecimal ? 1 : 0), hexadecimal ? 16 : 10);
    if (!found || !IsCharacter(found->number)) {
        return std::nullopt;  // the reader will say so
    }
    found->size += kReference.size() + (hexadecimal ? 1 : 0);
    return found;
}

/// What has to be hidden at the beginning of `text`. References are none in a CDATA section.
std::optional<Found> ToHide(std::string_view text, bool inCData) {
    if (BeginsWith(text, kReference)) {
        return inCData ? std::nullopt : ReadReference(text);
    }
    if (BeginsWith(text, kMark)) {
        return Found{kMarkNumber, kMark.size()};
    }
    for (std::uint32_t i = 0; i < std::size(kNoCharacters); ++i) {
        if (BeginsWith(text, kNoCharacters[i])) {
            return Found{kFirstNoCharacter + i, kNoCharacters[i].size()};
        }
    }
    return std::nullopt;
}

void AppendHidden(std::string& to, std::uint32_t number) {
    char digits[8];
    const auto end = std::to_chars(digits, digits + sizeof digits, number, 16).ptr;
    to.append(kMark).append(digits, static_cast<std::size_t>(end - digits)).append(";");
}

void AppendUtf8(std::string& to, std::uint32_t number) {
    const auto more = [number](unsigned shift) {
        return static_cast<char>(0x80 | (number >> shift & 0x3F));
    };
    if (number < 0x80) {
        to += static_cast<char>(number);
    } else if (number < 0x800) {
        to += {static_cast<char>(0xC0 | number >> 6), more(0)};
    } else if (number < 0x10000) {
        to += {static_cast<char>(0xE0 | number >> 12), more(6), more(0)};
    } else {
        to += {static_cast<char>(0xF0 | number >> 18), more(12), more(6), more(0)};
    }
}

}  // namespace

std::string_view HideCharacters(std::string_view document, std::string& room) {
    if (document.find(kReference) == npos && document.find(kMark.front()) == npos) {
        return document;
    }
    room.clear();
    std::size_t done = 0;
    std::size_t cdataEnd = 0;
    for (std::size_t at = 0; (at = document.find_first_of("&\xEF<", at)) != npos;) {
        const std::string_view rest = document.substr(at);
        if (at >= cdataEnd && BeginsWith(rest, kCDataStart)) {
            cdataEnd = document.find(kCDataEnd, at);
        }
        const auto found = ToHide(rest, at < cdataEnd);
        if (!found) {
            ++at;
            continue;
        }
        room.append(document, done, at - done);
        AppendHidden(room, found->number);
        done = at += found->size;
    }
    room.append(document, done);
    return room;
}

void RestoreCharacters(std::string& text, std::size_t from) {
    if (text.find(kMark, from) == npos) {
        return;
    }
    const std::string hidden = text.substr(from);
    text.resize(from);
    std::size_t done = 0;
    for (std::size_t at; (at = hidden.find(kMark, done)) != npos;) {
        const auto found = ReadNumber(std::string_view(hidden).substr(at + kMark.size()), 16);
        text.append(hidden, done, at - done);
        done = at + kMark.size();
        if (found) {
            AppendUtf8(text, found->number);
            done += found->size;
        }
    }
    text.append(hidden, done);
}

}  // namespace Mirqos::Xml
