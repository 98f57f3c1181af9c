#pragma once

#include <aws/s3/model/BucketLocationConstraint.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

class GetBucketLocationResult {
public:
    GetBucketLocationResult() = default;
    explicit GetBucketLocationResult(Mirqos::Client::Answer&& answer);

    /// NOT_SET for the service's default region.
    BucketLocationConstraint GetLocationConstraint() const { return m_locationConstraint; }

private:
    BucketLocationConstraint m_locationConstraint = BucketLocationConstraint::NOT_SET;
};

}  // namespace Aws::S3::Model
