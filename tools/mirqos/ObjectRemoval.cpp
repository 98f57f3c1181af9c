#include "tools/mirqos/ObjectRemoval.h"

#include <algorithm>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/PackedTexts.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/StoredKey.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

// what S3 takes in one request
constexpr std::size_t kKeysPerRequest = 1000;

void RemoveTogether(MIRQOSInterface& store, const std::string& bucket,
                    const std::vector<std::string>& storedKeys) {
    const std::string packed = PackTexts(storedKeys);
    CloudStoreDeleteObjectsContextV2 remove;
    remove.m_pszBucket = bucket.c_str();
    remove.m_pKeys = packed.data();
    CheckStatus(store.DeleteObjectsV2(&remove), "DeleteObjectsV2", {bucket, ""}, store);
}

}  // namespace

void RemoveObject(MIRQOSInterface& store, const ObjectUrl& url) {
    CloudStoreDeleteObjectContext remove;
    remove.m_pszBucket = url.bucket.c_str();
    remove.m_pszKey = url.key.c_str();
    const std::int32_t status = store.DeleteObject(&remove);
    // some services call it an error that there is none
    if ((IsS3Status(status) || status == kStatusNotFound) && BucketAnswers(store, url.bucket) &&
        !ObjectAnswers(store, url)) {
        return;
    }
    CheckStatus(status, "DeleteObject", url, store);
}

void RemoveObjects(MIRQOSInterface& store, std::int32_t provider, const std::string& bucket,
                   const std::vector<std::string>& keys, const Interruption& interruption) {
    // for this one the library's own loop passes over keys that the service refuses
    const bool oneByOne = IsGoogleCloudStorage(provider);
    const std::size_t step = oneByOne ? 1 : kKeysPerRequest;
    for (std::size_t done = 0; done < keys.size(); done += step) {
        interruption.CheckPoint();
        try {
            if (oneByOne) {
                RemoveObject(store, {bucket, keys[done]});
                continue;
            }
            std::vector<std::string> batch;
            const std::size_t end = std::min(keys.size(), done + step);
            for (std::size_t i = done; i < end; ++i) {
                batch.push_back(StoredKey(provider, keys[i]));
            }
            RemoveTogether(store, bucket, batch);
        } catch (const Failure& failure) {
            throw Failure(failure.Code(),
                          std::string(failure.what()) + "; " + std::to_string(done) + " of " +
                              CountOf(keys.size(), "object") + " had been accepted before");
        }
    }
}

}  // namespace Mirqos::Tool
