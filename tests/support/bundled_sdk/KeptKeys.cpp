#include "tests/support/KeyCorpus.h"

namespace Mirqos::Test {

bool IsKeptBySdk(const std::string& /*key*/) {
    return true;
}

bool IsKeptInDocumentsBySdk(const std::string& /*key*/) {
    return true;
}

bool IsListedBySdk(const std::string& /*key*/) {
    return true;
}

}  // namespace Mirqos::Test
