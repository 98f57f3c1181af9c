#include "tools/mirqos/ObjectRemoval.h"

#include <algorithm>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/PackedTexts.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/StoredKey.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

// what S3 takes in one request
constexpr std::size_t kKeysPerRequest = 1000;

}  // namespace

void RemoveObjects(MIRQOSInterface& store, std::int32_t provider, const std::string& bucket,
                   const std::vector<std::string>& keys, const Interruption& interruption) {
    for (std::size_t done = 0; done < keys.size(); done += kKeysPerRequest) {
        interruption.CheckPoint();
        std::vector<std::string> batch;
        const std::size_t end = std::min(keys.size(), done + kKeysPerRequest);
        for (std::size_t i = done; i < end; ++i) {
            batch.push_back(StoredKey(provider, keys[i]));
        }
        const std::string packed = PackTexts(batch);
        CloudStoreDeleteObjectsContextV2 remove;
        remove.m_pszBucket = bucket.c_str();
        remove.m_pKeys = packed.data();
        try {
            CheckStatus(store.DeleteObjectsV2(&remove), "DeleteObjectsV2", {bucket, ""}, store);
        } catch (const Failure& failure) {
            throw Failure(failure.Code(),
                          std::string(failure.what()) + "; " + std::to_string(done) + " of " +
                              CountOf(keys.size(), "object") + " had been accepted before");
        }
    }
}

}  // namespace Mirqos::Tool
