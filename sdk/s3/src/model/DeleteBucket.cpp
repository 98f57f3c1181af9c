#include <aws/s3/model/DeleteBucketRequest.h>

#include "sdk/s3/src/Describe.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest DeleteBucketRequest::Describe() const {
    return Mirqos::S3::ForBucket("DELETE", *this);
}

}  // namespace Aws::S3::Model
