#include "tests/support/RequestHead.h"

#include <cstddef>
#include <string>

namespace Mirqos::Test {
namespace {

std::string WithoutBlanks(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace

// Beast's own container puts headers of one name side by side, so it does not tell the order.
bool SplitHead(const std::string& head, RecordedRequest& request) {
    const std::size_t lineEnd = head.find("\r\n");
    const std::string line = head.substr(0, lineEnd);
    const std::size_t first = line.find(' ');
    const std::size_t last = line.rfind(' ');
    if (first == std::string::npos || first == last) {
        return false;
    }
    request.method = line.substr(0, first);
    request.target = line.substr(first + 1, last - first - 1);
    request.version = line.substr(last + 1);
    std::size_t at = lineEnd + 2;
    while (at + 2 < head.size()) {
        const std::size_t end = head.find("\r\n", at);
        const std::string header = head.substr(at, end - at);
        const std::size_t colon = header.find(':');
        if (colon == std::string::npos) {
            return false;
        }
        request.headers.emplace_back(header.substr(0, colon),
                                     WithoutBlanks(header.substr(colon + 1)));
        at = end + 2;
    }
    return true;
}

}  // namespace Mirqos::Test
