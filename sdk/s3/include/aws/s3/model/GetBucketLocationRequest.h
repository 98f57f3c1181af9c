#pragma once

#include <aws/s3/S3Request.h>

namespace Aws::S3::Model {

/// Asks for a bucket's region.
class GetBucketLocationRequest : public BucketRequest<GetBucketLocationRequest> {
public:
    const char* GetServiceRequestName() const override { return "GetBucketLocation"; }
    Mirqos::Client::WireRequest Describe() const override;
};

}  // namespace Aws::S3::Model
