#include "tools/mirqos/Listing.h"

#include <cassert>
#include <cstring>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/Paging.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/StoredKey.h"

namespace Mirqos::Tool {

ObjectPage::ObjectPage(MIRQOSInterface& store, const ObjectUrl& prefix, std::int32_t provider,
                       const std::string& token)
    : m_store(store), m_prefix(StoredKey(provider, prefix.key)) {
    assert(token.size() <= kLongestToken);
    // any text there means the store's own bucket
    m_record.m_pszBucket = prefix.bucket.c_str();
    m_record.m_pszPrefix = m_prefix.c_str();
    std::memcpy(m_record.m_szContinuationToken, token.c_str(), token.size() + 1);
    CheckStatus(store.ListObjectsSegmented(&m_record), "ListObjectsSegmented", {prefix.bucket, ""},
                store);
}

ObjectPage::~ObjectPage() {
    m_store.ReleaseObjectData(&m_record);
}

std::string ObjectPage::Next() const {
    std::string token = static_cast<const char*>(m_record.m_szContinuationToken);
    if (m_record.m_bTruncated && token.empty()) {
        throw Failure(ExitCode::OperationFailed,
                      "the service's listing does not go on: a page that is not the last names no "
                      "next one");
    }
    return token;
}

std::map<std::string, std::uint64_t> ListAll(MIRQOSInterface& store, const ObjectUrl& prefix,
                                             std::int32_t provider,
                                             const Interruption& interruption) {
    std::map<std::string, std::uint64_t> sizes;
    WalkPages([&](const std::string& token) {
        interruption.CheckPoint();
        const ObjectPage page(store, prefix, provider, token);
        for (const CloudStoreObjInfo& object : page) {
            sizes[StoredKey(provider, object.m_szKey)] = object.m_nSize;
        }
        return page.Next();
    });
    return sizes;
}

std::optional<std::uint64_t> ListedSize(MIRQOSInterface& store, const ObjectUrl& url,
                                        std::int32_t provider) {
    CloudStoreListObjectConext list;
    // the library ends the process over a listed key that does not fit its record
    if (url.key.size() >= sizeof CloudStoreObjInfo::m_szKey) {
        return std::nullopt;
    }
    const std::string stored = StoredKey(provider, url.key);
    list.m_pszBucket = url.bucket.c_str();
    list.m_pszPrefix = stored.c_str();
    // so that keys come as they are, not in a form for URLs
    list.m_bCheckProviderMarker = false;
    std::optional<std::uint64_t> size;
    if (store.ListObjects(&list) == 0) {
        for (std::uint64_t i = 0; i < list.m_nObjectCount && !size; ++i) {
            const CloudStoreObjInfo& object = list.m_pObjects[i];
            if (StoredKey(provider, object.m_szKey) == stored) {
                size = object.m_nSize;
            }
        }
        store.ReleaseObjectData(&list);
    }
    return size;
}

}  // namespace Mirqos::Tool
