#pragma once

#include <aws/s3/S3Request.h>
#include <aws/s3/model/Tagging.h>

#include <utility>

namespace Aws::S3::Model {

/// Replaces all of an object's tags.
class PutObjectTaggingRequest : public ObjectRequest<PutObjectTaggingRequest> {
public:
    const char* GetServiceRequestName() const override { return "PutObjectTagging"; }
    Mirqos::Client::WireRequest Describe() const override;

    const Tagging& GetTagging() const { return m_tagging; }
    void SetTagging(Tagging value) { m_tagging = std::move(value); }
    PutObjectTaggingRequest& WithTagging(Tagging value) {
        SetTagging(std::move(value));
        return *this;
    }

private:
    Tagging m_tagging;
};

}  // namespace Aws::S3::Model
