// The head of an answer, as one piece and line by line, and the ranges and lengths that it tells.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "sdk/core/http/Ascii.h"
#include "sdk/core/http/BodyLedger.h"
#include "sdk/core/http/HeadReader.h"
#include "store/ObjectBody.h"
#include "tests/fuzz/Require.h"

namespace {

using Mirqos::Test::Require;
using State = Mirqos::Http::HeadReader::State;
namespace Http = Mirqos::Http;

bool IsOneLine(const std::string& text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == text.npos;
}

std::ptrdiff_t CountOf(const Http::ResponseHead& head, std::string_view name) {
    return std::count_if(head.headers.begin(), head.headers.end(), [name](const auto& header) {
        return Http::EqualNoCase(header.first, name);
    });
}

void CheckComplete(const Http::ResponseHead& head) {
    Require(head.status >= 200 && head.status <= 999, "an interim head is none");
    for (const auto& [name, value] : head.headers) {
        Require(!name.empty() && name.find_first_of(" \t:") == name.npos, "a name is a token");
        Require(IsOneLine(name) && IsOneLine(value), "a header is one line");
    }
    Require(CountOf(head, "Content-Length") <= 1, "a body has one length");
    const std::string* const length = Http::FindHeader(head.headers, "Content-Length");
    std::uint64_t number = 0;
    Require(length == nullptr || Http::ParseLength(*length, number), "a length is a number");
    Require(CountOf(head, "Transfer-Encoding") <= 1, "a body has one coding");
}

/// As a reader of the standard's words would do it.
std::optional<std::string> BeginOf(const std::string& contentRange) {
    const std::size_t space = contentRange.find(' ');
    const std::size_t dash = contentRange.find('-', std::min(space, contentRange.size()));
    if (dash == contentRange.npos) {
        return std::nullopt;
    }
    const std::string digits = contentRange.substr(space + 1, dash - space - 1);
    const std::size_t significant = digits.find_first_not_of('0');
    if (digits.empty() || digits.find_first_not_of("0123456789") != digits.npos) {
        return std::nullopt;
    }
    const std::string number = significant == digits.npos ? "0" : digits.substr(significant);
    const std::string most = std::to_string(UINT64_MAX);
    const bool fits =
        number.size() < most.size() || (number.size() == most.size() && number <= most);
    return fits ? std::optional(number) : std::nullopt;
}

void CheckRange(const Http::ResponseHead& head) {
    if (const std::string* const range = Http::FindHeader(head.headers, "Content-Range")) {
        const auto read = Mirqos::ReadContentRange(*range);
        const auto text = read ? std::optional(std::to_string(read->nFirst)) : std::nullopt;
        Require(text == BeginOf(*range), "a range begins with the number before its dash");
    }
}

/// The state after the same head line by line.
State ByLines(const std::string& bytes) {
    Http::HeadReader reader;
    for (std::size_t at = 0; at < bytes.size() && reader.GetState() == State::reading;) {
        const std::size_t end = bytes.find('\n', at);
        const std::size_t size = (end == bytes.npos ? bytes.size() : end + 1) - at;
        reader.AddLine(std::string_view(bytes).substr(at, size));
        at += size;
    }
    return reader.GetState();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Http::HeadReader reader;
    const State state = reader.AddHead(bytes);
    Require((state == State::refused) == !reader.Error().empty(), "a refused head has its reason");
    Require(IsOneLine(reader.Error()), "a reason is one line");
    if (state == State::complete) {
        CheckComplete(reader.Head());
        CheckRange(reader.Head());
        Require(ByLines(bytes) == State::complete, "lines make the same head");
    }
    ByLines(bytes);
    return 0;
}
