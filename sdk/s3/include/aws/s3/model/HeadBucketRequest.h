#pragma once

#include <aws/s3/S3Request.h>

namespace Aws::S3::Model {

/// Asks whether the bucket exists and may be used.
class HeadBucketRequest : public BucketRequest<HeadBucketRequest> {
public:
    const char* GetServiceRequestName() const override { return "HeadBucket"; }
    Mirqos::Client::WireRequest Describe() const override;
};

}  // namespace Aws::S3::Model
