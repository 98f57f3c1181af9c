#include "tools/mirqos/StoredKey.h"

#include <algorithm>

namespace Mirqos::Tool {

namespace {

// the kinds of provider for which the library substitutes (CloudStoreConfigInfo::m_nProviderType)
constexpr std::int32_t kPlusForAt = 5;
constexpr std::int32_t kGoogleCloudStorage = 6;

void ReplaceFor(std::int32_t provider, std::string& key, char from, char to) {
    if (provider == kPlusForAt || provider == kGoogleCloudStorage) {
        std::replace(key.begin(), key.end(), from, to);
    }
}

}  // namespace

bool IsGoogleCloudStorage(std::int32_t provider) {
    return provider == kGoogleCloudStorage;
}

std::string StoredKey(std::int32_t provider, std::string key) {
    ReplaceFor(provider, key, '@', '+');
    return key;
}

std::string ListedKey(std::int32_t provider, std::string key) {
    ReplaceFor(provider, key, '+', '@');
    return key;
}

}  // namespace Mirqos::Tool
