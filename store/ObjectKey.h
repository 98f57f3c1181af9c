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

/// Whether a request's path, a copy's header, a deletion's document can name an object. None can
/// where the SDK would change the key and the request be about another object, or about the bucket;
/// a line of the log says so. A path cannot where the key is empty: a deletion would be the
/// bucket's.
bool CanNameInPath(const Aws::String& key);
bool CanNameAsCopySource(const Aws::String& source);
bool CanNameInDocument(const Aws::String& key);

/// Each names an object in a request that can name it. Without the name the SDK refuses a request.
template <class Request>
void SetObjectKey(Request& request, const Aws::String& key) {
    if (CanNameInPath(key)) {
        request.SetKey(key);
    }
}
template <class Request>
void SetCopySource(Request& request, const Aws::String& source) {
    if (CanNameAsCopySource(source)) {
        request.SetCopySource(source);
    }
}
