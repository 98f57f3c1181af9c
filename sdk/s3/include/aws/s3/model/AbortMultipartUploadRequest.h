#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/s3/S3Request.h>

#include <utility>

namespace Aws::S3::Model {

/// Discards an open upload and its parts.
class AbortMultipartUploadRequest : public ObjectRequest<AbortMultipartUploadRequest> {
public:
    const char* GetServiceRequestName() const override { return "AbortMultipartUpload"; }
    Mirqos::Client::WireRequest Describe() const override;

    const Aws::String& GetUploadId() const { return m_uploadId; }
    void SetUploadId(Aws::String value) { m_uploadId = std::move(value); }
    AbortMultipartUploadRequest& WithUploadId(Aws::String value) {
        SetUploadId(std::move(value));
        return *this;
    }

private:
    Aws::String m_uploadId;
};

}  // namespace Aws::S3::Model
