#pragma once

#include <aws/s3/S3Request.h>
#include <aws/s3/model/BucketLifecycleConfiguration.h>

#include <utility>

namespace Aws::S3::Model {

/// Replaces all of a bucket's lifecycle rules.
class PutBucketLifecycleConfigurationRequest
    : public BucketRequest<PutBucketLifecycleConfigurationRequest> {
public:
    const char* GetServiceRequestName() const override { return "PutBucketLifecycleConfiguration"; }
    Mirqos::Client::WireRequest Describe() const override;

    const BucketLifecycleConfiguration& GetLifecycleConfiguration() const {
        return m_lifecycleConfiguration;
    }
    void SetLifecycleConfiguration(BucketLifecycleConfiguration value) {
        m_lifecycleConfiguration = std::move(value);
    }
    PutBucketLifecycleConfigurationRequest& WithLifecycleConfiguration(
        BucketLifecycleConfiguration value) {
        SetLifecycleConfiguration(std::move(value));
        return *this;
    }

private:
    BucketLifecycleConfiguration m_lifecycleConfiguration;
};

}  // namespace Aws::S3::Model
