#include <aws/s3/model/UploadPartCopyRequest.h>
#include <aws/s3/model/UploadPartCopyResult.h>
#include <aws/s3/model/UploadPartRequest.h>
#include <aws/s3/model/UploadPartResult.h>

#include <string>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"

namespace Aws::S3::Model {

namespace {

template <typename Request>
Mirqos::Client::WireRequest ForPart(const Request& request) {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForObject("PUT", request);
    wire.query.emplace_back("partNumber", std::to_string(request.GetPartNumber()));
    Mirqos::S3::AddUploadId(wire, request);
    return wire;
}

}  // namespace

Mirqos::Client::WireRequest UploadPartRequest::Describe() const {
    Mirqos::Client::WireRequest wire = ForPart(*this);
    wire.body = GetBody();
    wire.contentType = Mirqos::ToStd(GetContentType());
    return wire;
}

UploadPartResult::UploadPartResult(Mirqos::Client::Answer&& answer)
    : m_eTag(answer.Header("ETag")) {
}

Mirqos::Client::WireRequest UploadPartCopyRequest::Describe() const {
    Mirqos::Client::WireRequest wire = ForPart(*this);
    Mirqos::S3::AddCopySource(wire, GetCopySource());
    if (CopySourceRangeHasBeenSet()) {
        wire.headers.emplace_back("x-amz-copy-source-range", Mirqos::ToStd(GetCopySourceRange()));
    }
    Mirqos::S3::ExpectXml(wire, "CopyPartResult");
    return wire;
}

CopyPartResult::CopyPartResult(const Mirqos::Xml::Element& element)
    : m_eTag(Mirqos::ToAws(element.TextOf("ETag"))) {
}

UploadPartCopyResult::UploadPartCopyResult(Mirqos::Client::Answer&& answer)
    : m_copyPartResult(answer.xml.Root()) {
}

}  // namespace Aws::S3::Model
