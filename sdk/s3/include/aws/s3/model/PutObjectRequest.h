#pragma once

#include <aws/core/AmazonStreamingWebServiceRequest.h>
#include <aws/s3/S3Request.h>

namespace Aws::S3::Model {

/// Stores the body as one object; without a body, an empty object.
class PutObjectRequest : public ObjectRequest<PutObjectRequest, AmazonStreamingWebServiceRequest> {
public:
    const char* GetServiceRequestName() const override { return "PutObject"; }
    Mirqos::Client::WireRequest Describe() const override;
};

}  // namespace Aws::S3::Model
