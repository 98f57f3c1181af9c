#include <aws/s3/model/AbortMultipartUploadRequest.h>
#include <aws/s3/model/CompleteMultipartUploadRequest.h>
#include <aws/s3/model/CompleteMultipartUploadResult.h>
#include <aws/s3/model/CreateMultipartUploadRequest.h>
#include <aws/s3/model/CreateMultipartUploadResult.h>

#include <string>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"

namespace Aws::S3::Model {

Mirqos::Client::WireRequest CreateMultipartUploadRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForObject("POST", *this);
    wire.query.emplace_back("uploads", "");
    Mirqos::S3::ExpectXml(wire, "InitiateMultipartUploadResult");
    return wire;
}

CreateMultipartUploadResult::CreateMultipartUploadResult(Mirqos::Client::Answer&& answer)
    : m_uploadId(Mirqos::ToAws(answer.xml.Root().TextOf("UploadId"))) {
}

void CompletedPart::Write(Mirqos::Xml::Writer& writer) const {
    writer.Open("Part");
    if (ETagHasBeenSet()) {
        writer.Leaf("ETag", Mirqos::ToStd(GetETag()));
    }
    writer.Leaf("PartNumber", std::to_string(GetPartNumber()));
    writer.Close();
}

void CompletedMultipartUpload::Write(Mirqos::Xml::Writer& writer) const {
    for (const auto& part : GetParts()) {
        part.Write(writer);
    }
}

Mirqos::Client::WireRequest CompleteMultipartUploadRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForObject("POST", *this);
    Mirqos::S3::AddUploadId(wire, *this);
    Mirqos::S3::SetXmlBody(wire, "CompleteMultipartUpload", GetMultipartUpload());
    Mirqos::S3::ExpectXml(wire, "CompleteMultipartUploadResult");
    return wire;
}

CompleteMultipartUploadResult::CompleteMultipartUploadResult(Mirqos::Client::Answer&& answer)
    : m_eTag(Mirqos::ToAws(answer.xml.Root().TextOf("ETag"))) {
}

Mirqos::Client::WireRequest AbortMultipartUploadRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForObject("DELETE", *this);
    Mirqos::S3::AddUploadId(wire, *this);
    return wire;
}

}  // namespace Aws::S3::Model
