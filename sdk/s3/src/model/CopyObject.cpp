#include <aws/s3/model/CopyObjectRequest.h>
#include <aws/s3/model/CopyObjectResult.h>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest CopyObjectRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForObject("PUT", *this);
    Mirqos::S3::AddCopySource(wire, GetCopySource());
    Mirqos::S3::ExpectXml(wire, "CopyObjectResult");
    return wire;
}

CopyObjectResultDetails::CopyObjectResultDetails(const Mirqos::Xml::Element& element)
    : m_eTag(Mirqos::ToAws(element.TextOf("ETag"))) {
}

CopyObjectResult::CopyObjectResult(Mirqos::Client::Answer&& answer)
    : m_copyObjectResultDetails(answer.xml.Root()) {
}

}  // namespace Aws::S3::Model
