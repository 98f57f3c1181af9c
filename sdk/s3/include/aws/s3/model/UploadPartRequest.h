#pragma once

#include <aws/core/AmazonStreamingWebServiceRequest.h>
#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/s3/S3Request.h>

#include <utility>

namespace Aws::S3::Model {

/// Sends one part of an open upload; its body is the part.
class UploadPartRequest
    : public ObjectRequest<UploadPartRequest, AmazonStreamingWebServiceRequest> {
public:
    const char* GetServiceRequestName() const override { return "UploadPart"; }
    Mirqos::Client::WireRequest Describe() const override;

    /// From 1 to 10,000.
    int GetPartNumber() const { return m_partNumber; }
    void SetPartNumber(int value) { m_partNumber = value; }
    UploadPartRequest& WithPartNumber(int value) {
        SetPartNumber(value);
        return *this;
    }

    const Aws::String& GetUploadId() const { return m_uploadId; }
    void SetUploadId(Aws::String value) { m_uploadId = std::move(value); }
    UploadPartRequest& WithUploadId(Aws::String value) {
        SetUploadId(std::move(value));
        return *this;
    }

private:
    int m_partNumber = 0;
    Aws::String m_uploadId;
};

}  // namespace Aws::S3::Model
