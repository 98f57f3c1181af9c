#pragma once

#include <aws/s3/S3Request.h>

namespace Aws::S3::Model {

/// Deletes one object. Deleting a key that does not exist is a success.
class DeleteObjectRequest : public ObjectRequest<DeleteObjectRequest> {
public:
    const char* GetServiceRequestName() const override { return "DeleteObject"; }
    Mirqos::Client::WireRequest Describe() const override;
};

}  // namespace Aws::S3::Model
