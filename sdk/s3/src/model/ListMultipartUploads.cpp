#include <aws/s3/model/ListMultipartUploadsRequest.h>
#include <aws/s3/model/ListMultipartUploadsResult.h>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"
#include "sdk/s3/src/ReadXml.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest ListMultipartUploadsRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForBucket("GET", *this);
    wire.query.emplace_back("uploads", "");
    if (PrefixHasBeenSet()) {
        wire.query.emplace_back("prefix", Mirqos::ToStd(GetPrefix()));
    }
    if (KeyMarkerHasBeenSet()) {
        wire.query.emplace_back("key-marker", Mirqos::ToStd(GetKeyMarker()));
    }
    Mirqos::S3::ExpectXml(wire, "ListMultipartUploadsResult");
    return wire;
}

MultipartUpload::MultipartUpload(const Mirqos::Xml::Element& element)
    : m_key(Mirqos::ToAws(element.TextOf("Key"))),
      m_uploadId(Mirqos::ToAws(element.TextOf("UploadId"))) {
}

ListMultipartUploadsResult::ListMultipartUploadsResult(Mirqos::Client::Answer&& answer)
    : m_uploads(Mirqos::S3::ReadAll<MultipartUpload>(answer.xml.Root(), "Upload")),
      m_isTruncated(Mirqos::S3::IsTrue(answer.xml.Root().TextOf("IsTruncated"))),
      m_nextKeyMarker(Mirqos::ToAws(answer.xml.Root().TextOf("NextKeyMarker"))) {
}

}  // namespace Aws::S3::Model
