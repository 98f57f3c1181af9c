#include "store/ObjectKey.h"

#include <aws/core/utils/StringUtils.h>

#include <map>
#include <string>

#include "log/ModuleLog.h"
#include "store/KeptKeys.h"

namespace {

// Texts of the standard library, not of the SDK: the table is built when the library is loaded,
// before the SDK's memory system is started.
const std::map<std::string, std::string> g_KeySubstitutions = {{"@", "+"}};

bool Kept(bool bKept, const Aws::String& key) {
    if (!bKept) {
        ModuleLog(&g_ModuleLog, 1, "The SDK cannot send the key [%s] as it stands.", key.c_str());
    }
    return bKept;
}

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

bool CanNameInPath(const Aws::String& key) {
    return !key.empty() && Kept(Mirqos::IsKeptInPath<Aws::SDKOptions>(key), key);
}

bool CanNameAsCopySource(const Aws::String& source) {
    return Kept(Mirqos::IsKeptAsCopySource<Aws::SDKOptions>(source), source);
}

bool CanNameInDocument(const Aws::String& key) {
    return Kept(Mirqos::IsKeptInDocument<Aws::SDKOptions>(key), key);
}
