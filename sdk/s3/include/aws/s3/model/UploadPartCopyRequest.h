#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/s3/S3Request.h>

#include <utility>

namespace Aws::S3::Model {

/// Makes one part out of a range of a stored object.
class UploadPartCopyRequest : public ObjectRequest<UploadPartCopyRequest> {
public:
    const char* GetServiceRequestName() const override { return "UploadPartCopy"; }
    Mirqos::Client::WireRequest Describe() const override;

    /// From 1 to 10,000.
    int GetPartNumber() const { return m_partNumber; }
    void SetPartNumber(int value) { m_partNumber = value; }
    UploadPartCopyRequest& WithPartNumber(int value) {
        SetPartNumber(value);
        return *this;
    }

    const Aws::String& GetUploadId() const { return m_uploadId; }
    void SetUploadId(Aws::String value) { m_uploadId = std::move(value); }
    UploadPartCopyRequest& WithUploadId(Aws::String value) {
        SetUploadId(std::move(value));
        return *this;
    }

    /// BUCKET/KEY of the source, plain text.
    const Aws::String& GetCopySource() const { return m_copySource; }
    void SetCopySource(Aws::String value) { m_copySource = std::move(value); }
    UploadPartCopyRequest& WithCopySource(Aws::String value) {
        SetCopySource(std::move(value));
        return *this;
    }

    /// "bytes=FIRST-LAST", both counted from 0 and included.
    const Aws::String& GetCopySourceRange() const { return m_copySourceRange; }
    bool CopySourceRangeHasBeenSet() const { return m_copySourceRangeHasBeenSet; }
    void SetCopySourceRange(Aws::String value) {
        m_copySourceRange = std::move(value);
        m_copySourceRangeHasBeenSet = true;
    }
    UploadPartCopyRequest& WithCopySourceRange(Aws::String value) {
        SetCopySourceRange(std::move(value));
        return *this;
    }

private:
    int m_partNumber = 0;
    Aws::String m_uploadId;
    Aws::String m_copySource;
    Aws::String m_copySourceRange;
    bool m_copySourceRangeHasBeenSet = false;
};

}  // namespace Aws::S3::Model
