#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/s3/S3Request.h>

#include <utility>

namespace Aws::S3::Model {

/// Copies an object within the service.
class CopyObjectRequest : public ObjectRequest<CopyObjectRequest> {
public:
    const char* GetServiceRequestName() const override { return "CopyObject"; }
    Mirqos::Client::WireRequest Describe() const override;

    /// BUCKET/KEY of the source, plain text.
    const Aws::String& GetCopySource() const { return m_copySource; }
    void SetCopySource(Aws::String value) { m_copySource = std::move(value); }
    CopyObjectRequest& WithCopySource(Aws::String value) {
        SetCopySource(std::move(value));
        return *this;
    }

private:
    Aws::String m_copySource;
};

}  // namespace Aws::S3::Model
