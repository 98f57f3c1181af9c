#pragma once

#include <aws/s3/S3Request.h>

namespace Aws::S3::Model {

/// Reads an object's tags.
class GetObjectTaggingRequest : public ObjectRequest<GetObjectTaggingRequest> {
public:
    const char* GetServiceRequestName() const override { return "GetObjectTagging"; }
    Mirqos::Client::WireRequest Describe() const override;
};

}  // namespace Aws::S3::Model
