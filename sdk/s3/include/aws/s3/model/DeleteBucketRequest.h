#pragma once

#include <aws/s3/S3Request.h>

namespace Aws::S3::Model {

/// Deletes a bucket, which has to be empty.
class DeleteBucketRequest : public BucketRequest<DeleteBucketRequest> {
public:
    const char* GetServiceRequestName() const override { return "DeleteBucket"; }
    Mirqos::Client::WireRequest Describe() const override;
};

}  // namespace Aws::S3::Model
