#pragma once

#include <aws/s3/S3Request.h>

namespace Aws::S3::Model {

/// Asks for an object without its content.
class HeadObjectRequest : public ObjectRequest<HeadObjectRequest> {
public:
    const char* GetServiceRequestName() const override { return "HeadObject"; }
    Mirqos::Client::WireRequest Describe() const override;
};

}  // namespace Aws::S3::Model
