#pragma once

#include <aws/s3/S3Request.h>
#include <aws/s3/model/CreateBucketConfiguration.h>

namespace Aws::S3::Model {

class CreateBucketRequest : public BucketRequest<CreateBucketRequest> {
public:
    const char* GetServiceRequestName() const override { return "CreateBucket"; }
    Mirqos::Client::WireRequest Describe() const override;

    const CreateBucketConfiguration& GetCreateBucketConfiguration() const {
        return m_configuration;
    }
    bool CreateBucketConfigurationHasBeenSet() const { return m_configurationHasBeenSet; }
    /// Without a configuration the request has no body and the service's default region is meant.
    void SetCreateBucketConfiguration(const CreateBucketConfiguration& value) {
        m_configuration = value;
        m_configurationHasBeenSet = true;
    }
    CreateBucketRequest& WithCreateBucketConfiguration(const CreateBucketConfiguration& value) {
        SetCreateBucketConfiguration(value);
        return *this;
    }

private:
    CreateBucketConfiguration m_configuration;
    bool m_configurationHasBeenSet = false;
};

}  // namespace Aws::S3::Model
