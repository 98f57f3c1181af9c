#include <algorithm>
#include <cstddef>
#include <string_view>

#include "tests/support/KeyCorpus.h"

namespace Mirqos::Test {

bool IsKeptBySdk(const std::string& key) {
    std::string_view rest = key;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('/'), rest.size());
        if (end == 0 || rest.substr(0, end) == "." || rest.substr(0, end) == "..") {
            return false;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return true;
}

bool IsKeptInDocumentsBySdk(const std::string& key) {
    return key.find('\r') == key.npos;
}

bool IsListedBySdk(const std::string& key) {
    return key.find_first_not_of(" \t\n") != key.npos;
}

}  // namespace Mirqos::Test
