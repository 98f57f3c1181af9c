#include <aws/s3/model/ListObjectsV2Request.h>
#include <aws/s3/model/ListObjectsV2Result.h>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"
#include "sdk/s3/src/ReadXml.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest ListObjectsV2Request::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForBucket("GET", *this);
    wire.query.emplace_back("list-type", "2");
    if (PrefixHasBeenSet()) {
        wire.query.emplace_back("prefix", Mirqos::ToStd(GetPrefix()));
    }
    if (ContinuationTokenHasBeenSet()) {
        wire.query.emplace_back("continuation-token", Mirqos::ToStd(GetContinuationToken()));
    }
    if (GetEncodingType() == EncodingType::url) {
        wire.query.emplace_back("encoding-type", "url");
    }
    Mirqos::S3::ExpectXml(wire, "ListBucketResult");
    return wire;
}

Object::Object(const Mirqos::Xml::Element& element)
    : m_key(Mirqos::ToAws(element.TextOf("Key"))),
      m_size(Mirqos::S3::SizeOf(element.TextOf("Size"))) {
}

ListObjectsV2Result::ListObjectsV2Result(Mirqos::Client::Answer&& answer)
    : m_contents(Mirqos::S3::ReadAll<Object>(answer.xml.Root(), "Contents")),
      m_isTruncated(Mirqos::S3::IsTrue(answer.xml.Root().TextOf("IsTruncated"))),
      m_nextContinuationToken(Mirqos::ToAws(answer.xml.Root().TextOf("NextContinuationToken"))) {
}

}  // namespace Aws::S3::Model
