#include "sdk/core/client/ByteRange.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "sdk/core/http/BodyLedger.h"

namespace Mirqos::Client {
namespace {

/// FIRST of a text that begins with `unit` and "FIRST-"; nothing for any other.
std::optional<std::uint64_t> FirstByte(std::string_view text, std::string_view unit) {
    if (text.substr(0, unit.size()) != unit) {
        return std::nullopt;
    }
    text.remove_prefix(unit.size());
    const std::size_t dash = text.find('-');
    std::uint64_t first = 0;
    if (dash == std::string_view::npos || !Http::ParseLength(text.substr(0, dash), first)) {
        return std::nullopt;
    }
    return first;
}

/// A range whose end lies before its beginning is none: services may pass it over.
bool IsInverted(std::string_view range, std::uint64_t first) {
    std::uint64_t last = 0;
    return Http::ParseLength(range.substr(range.find('-') + 1), last) && last < first;
}

}  // namespace

bool BeginsElsewhere(const Http::HeaderList& asked, const Http::ResponseHead& answered) {
    const std::string* const range = Http::FindHeader(asked, "Range");
    const auto first = range != nullptr ? FirstByte(*range, "bytes=") : std::nullopt;
    if (!first || IsInverted(*range, *first)) {
        return false;
    }
    const std::string* const sent = Http::FindHeader(answered.headers, "Content-Range");
    if (sent == nullptr) {
        const std::string* const length = Http::FindHeader(answered.headers, "Content-Length");
        const bool empty = length != nullptr && *length == "0";
        return answered.status == 200 && *first != 0 && !empty;
    }
    const auto begin = FirstByte(*sent, "bytes ");
    return begin && *begin != *first;
}

}  // namespace Mirqos::Client
