#include <aws/s3/model/HeadBucketRequest.h>

#include "sdk/s3/src/Describe.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest HeadBucketRequest::Describe() const {
    return Mirqos::S3::ForBucket("HEAD", *this);
}

}  // namespace Aws::S3::Model
