#pragma once

#include "store/AwsSdk.h"
#include "store/KeptKeys.h"

namespace Mirqos {

/// Names the bucket of a request. Without one the SDK refuses a request; an empty one an installed
/// SDK sends by path as none, and the key is then the bucket: its deletion would be one of that. A
/// name with a slash would there be a bucket and an object.
template <class Request>
void SetBucketName(Request& request, const char* pszBucket) {
    if (*pszBucket != '\0' && IsKeptAsBucket<Aws::SDKOptions>(pszBucket)) {
        request.SetBucket(pszBucket);
    }
}

}  // namespace Mirqos
