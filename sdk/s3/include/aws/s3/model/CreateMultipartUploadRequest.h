#pragma once

#include <aws/s3/S3Request.h>

namespace Aws::S3::Model {

/// Opens a multipart upload.
class CreateMultipartUploadRequest : public ObjectRequest<CreateMultipartUploadRequest> {
public:
    const char* GetServiceRequestName() const override { return "CreateMultipartUpload"; }
    Mirqos::Client::WireRequest Describe() const override;
};

}  // namespace Aws::S3::Model
