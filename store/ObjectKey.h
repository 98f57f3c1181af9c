#pragma once

#include "store/AwsSdk.h"

/// Provider types, the values of CloudStoreConfigInfo::m_nProviderType that change behaviour. Any
/// other value is plain S3.
namespace Mirqos::ProviderType {
inline constexpr int32_t kEndpointService = 2;     ///< S3-compatible, reached through the endpoint
inline constexpr int32_t kPlusForAt = 5;           ///< takes the key substitution
inline constexpr int32_t kGoogleCloudStorage = 6;  ///< takes the key substitution
}  // namespace Mirqos::ProviderType

/// Replaces, for each pair of the substitution table in order, every occurrence of its first text
/// by its second: each "@" of a key is sent as "+".
void EncodeObjectKey(Aws::String& key);

/// The reverse, for listed keys: each "+" becomes "@". A key that held a "+" of its own comes back
/// with "@"; which of the two a key had cannot be told apart.
void DecodeObjectKey(Aws::String& key);

/// Whether keys pass through the substitution for this provider type.
bool SubstitutesKeys(int32_t nProviderType);

/// Names an object in a request. Without a key the SDK refuses a request; an empty one an installed
/// SDK sends, and the request is then about the bucket: a deletion would be the bucket's.
template <class Request>
void SetObjectKey(Request& request, const Aws::String& key) {
    if (!key.empty()) {
        request.SetKey(key);
    }
}
