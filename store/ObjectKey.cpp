#include "store/ObjectKey.h"

#include <aws/core/utils/StringUtils.h>

#include <map>
#include <string>

namespace {

// Texts of the standard library, not of the SDK: the table is built when the library is loaded,
// before the SDK's memory system is started.
const std::map<std::string, std::string> g_KeySubstitutions = {{"@", "+"}};

}  // namespace

void EncodeObjectKey(Aws::String& key) {
    for (const auto& [from, to] : g_KeySubstitutions) {
        Aws::Utils::StringUtils::Replace(key, from.c_str(), to.c_str());
    }
}

void DecodeObjectKey(Aws::String& key) {
    for (const auto& [from, to] : g_KeySubstitutions) {
        Aws::Utils::StringUtils::Replace(key, to.c_str(), from.c_str());
    }
}

bool SubstitutesKeys(int32_t nProviderType) {
    return nProviderType == Mirqos::ProviderType::kPlusForAt ||
           nProviderType == Mirqos::ProviderType::kGoogleCloudStorage;
}
