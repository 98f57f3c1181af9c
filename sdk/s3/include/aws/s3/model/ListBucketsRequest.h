#pragma once

#include <aws/core/AmazonWebServiceRequest.h>

namespace Aws::S3::Model {

/// Inside this layer: S3Client::ListBuckets takes no request.
class ListBucketsRequest : public AmazonWebServiceRequest {
public:
    const char* GetServiceRequestName() const override { return "ListBuckets"; }
    Mirqos::Client::WireRequest Describe() const override;
};

}  // namespace Aws::S3::Model
