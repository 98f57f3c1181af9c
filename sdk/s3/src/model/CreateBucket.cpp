#include <aws/s3/model/CreateBucketConfiguration.h>
#include <aws/s3/model/CreateBucketRequest.h>
#include <aws/s3/model/CreateBucketResult.h>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"

namespace Aws::S3::Model {

void CreateBucketConfiguration::Write(Mirqos::Xml::Writer& writer) const {
    if (LocationConstraintHasBeenSet()) {
        writer.Leaf(
            "LocationConstraint",
            Mirqos::ToStd(BucketLocationConstraintMapper::GetNameForBucketLocationConstraint(
                GetLocationConstraint())));
    }
}

Mirqos::Client::WireRequest CreateBucketRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForBucket("PUT", *this);
    if (CreateBucketConfigurationHasBeenSet()) {
        Mirqos::S3::SetXmlBody(wire, "CreateBucketConfiguration", GetCreateBucketConfiguration());
    }
    return wire;
}

CreateBucketResult::CreateBucketResult(Mirqos::Client::Answer&& answer)
    : m_location(answer.Header("Location")) {
}

}  // namespace Aws::S3::Model
