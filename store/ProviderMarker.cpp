#include "store/ProviderMarker.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace Mirqos {

namespace {

// From the documented host names of that provider's service, ACCOUNT.r2.cloudflarestorage.com: long
// enough that no other host name is likely to hold it, and without the parts that differ between
// accounts and jurisdictions.
constexpr std::string_view kProviderMarker = "cloudflare";

constexpr bool IsLowerCase(std::string_view text) {
    for (const char c : text) {
        if (c < 'a' || c > 'z') {
            return false;
        }
    }
    return true;
}

// Endpoints are compared in lower case and in pieces of this length.
static_assert(kProviderMarker.size() == 10 && IsLowerCase(kProviderMarker));

}  // namespace

bool HasProviderMarker(const std::string& strEndPoint) {
    std::string strLower = strEndPoint;
    std::transform(strLower.begin(), strLower.end(), strLower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return strLower.find(kProviderMarker) != std::string::npos;
}

}  // namespace Mirqos
