#include <aws/s3/model/GetBucketLocationRequest.h>
#include <aws/s3/model/GetBucketLocationResult.h>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"
#include "sdk/s3/src/ReadXml.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest GetBucketLocationRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForBucket("GET", *this);
    wire.query.emplace_back("location", "");
    Mirqos::S3::ExpectXml(wire, "LocationConstraint");
    return wire;
}

GetBucketLocationResult::GetBucketLocationResult(Mirqos::Client::Answer&& answer)
    : m_locationConstraint(BucketLocationConstraintMapper::GetBucketLocationConstraintForName(
          Mirqos::ToAws(Mirqos::S3::Trimmed(answer.xml.Root().Text())))) {
}

}  // namespace Aws::S3::Model
