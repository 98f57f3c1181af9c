#include <aws/s3/model/ListBucketsRequest.h>
#include <aws/s3/model/ListBucketsResult.h>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"
#include "sdk/s3/src/ReadXml.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest ListBucketsRequest::Describe() const {
    Mirqos::Client::WireRequest wire;
    wire.method = "GET";
    Mirqos::S3::ExpectXml(wire, "ListAllMyBucketsResult");
    return wire;
}

Bucket::Bucket(const Mirqos::Xml::Element& element)
    : m_name(Mirqos::ToAws(element.TextOf("Name"))) {
}

ListBucketsResult::ListBucketsResult(Mirqos::Client::Answer&& answer)
    : m_buckets(Mirqos::S3::ReadAll<Bucket>(answer.xml.Root().Child("Buckets"), "Bucket")) {
}

}  // namespace Aws::S3::Model
