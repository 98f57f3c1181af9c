#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/s3/S3Request.h>
#include <aws/s3/model/CompletedMultipartUpload.h>

#include <utility>

namespace Aws::S3::Model {

/// Joins the parts of an upload to one object.
class CompleteMultipartUploadRequest : public ObjectRequest<CompleteMultipartUploadRequest> {
public:
    const char* GetServiceRequestName() const override { return "CompleteMultipartUpload"; }
    Mirqos::Client::WireRequest Describe() const override;

    const Aws::String& GetUploadId() const { return m_uploadId; }
    void SetUploadId(Aws::String value) { m_uploadId = std::move(value); }
    CompleteMultipartUploadRequest& WithUploadId(Aws::String value) {
        SetUploadId(std::move(value));
        return *this;
    }

    const CompletedMultipartUpload& GetMultipartUpload() const { return m_multipartUpload; }
    void SetMultipartUpload(CompletedMultipartUpload value) {
        m_multipartUpload = std::move(value);
    }
    CompleteMultipartUploadRequest& WithMultipartUpload(CompletedMultipartUpload value) {
        SetMultipartUpload(std::move(value));
        return *this;
    }

private:
    Aws::String m_uploadId;
    CompletedMultipartUpload m_multipartUpload;
};

}  // namespace Aws::S3::Model
