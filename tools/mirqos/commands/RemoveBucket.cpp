#include "tools/mirqos/Answer.h"
#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/Session.h"
#include "tools/mirqos/Statuses.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

/// The service's code for a bucket that still holds something has no number of its own.
bool HoldsObjects(MIRQOSInterface& store, const std::string& bucket) {
    CloudStoreSearchObjectConext search;
    search.m_pszBucket = bucket.c_str();
    search.m_pszKey = "";
    return store.SearchObject(&search) == 0 && search.m_bExists;
}

void Run(const Invocation& invocation) {
    const ObjectUrl url = ParseBucketUrl(invocation.operands[0]);
    const Session session(invocation.settings);
    const StorePointer store = session.OpenStore(url.bucket, 0);
    CloudStoreDeleteBucketContext remove;
    remove.m_pszBucket = url.bucket.c_str();
    const std::int32_t status = store->DeleteBucket(&remove);
    if (status == kStatusUnknown && HoldsObjects(*store, url.bucket)) {
        FailOperation(status, "DeleteBucket", url,
                      "the bucket still holds objects; remove them first");
    }
    CheckStatus(status, "DeleteBucket", url, *store);
    Report(invocation, {{"bucket", url.bucket}}, "removed bucket " + url.Shown());
}

}  // namespace

Command RemoveBucketCommand() {
    return {"rb",
            "s3://BUCKET",
            "remove a bucket",
            "Removes a bucket without objects. One that still holds some stays as it is.\n"
            "\n"
            "Example:\n"
            "  mirqos rb s3://photos\n",
            1,
            1,
            {JsonOption()},
            &Run};
}

}  // namespace Mirqos::Tool
