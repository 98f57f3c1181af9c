#include "tools/mirqos/KeyList.h"

#include <algorithm>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/ObjectUrl.h"

namespace Mirqos::Tool {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view TakeLine(std::string_view& text) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return line;
}

}  // namespace

std::vector<std::string> ParseKeyLines(std::string_view text) {
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        text.remove_prefix(kByteOrderMark.size());
    }
    std::vector<std::string> keys;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = TakeLine(text);
        if (const std::string fault = FaultOfKey(line); !fault.empty()) {
            throw Failure(ExitCode::Usage,
                          "line " + std::to_string(number) + " of the keys: " + fault);
        }
        if (!line.empty()) {
            keys.emplace_back(line);
        }
    }
    return keys;
}

}  // namespace Mirqos::Tool
