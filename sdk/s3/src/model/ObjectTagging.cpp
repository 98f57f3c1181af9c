#include <aws/s3/model/GetObjectTaggingRequest.h>
#include <aws/s3/model/GetObjectTaggingResult.h>
#include <aws/s3/model/PutObjectTaggingRequest.h>
#include <aws/s3/model/PutObjectTaggingResult.h>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"
#include "sdk/s3/src/ReadXml.h"

namespace Aws::S3::Model {

Tag::Tag(const Mirqos::Xml::Element& element)
    : m_key(Mirqos::ToAws(element.TextOf("Key"))), m_value(Mirqos::ToAws(element.TextOf("Value"))) {
}

void Tag::Write(Mirqos::Xml::Writer& writer) const {
    writer.Open("Tag");
    writer.Leaf("Key", Mirqos::ToStd(GetKey()));
    writer.Leaf("Value", Mirqos::ToStd(GetValue()));
    writer.Close();
}

void Tagging::Write(Mirqos::Xml::Writer& writer) const {
    if (!m_tagSetHasBeenSet) {
        return;
    }
    writer.Open("TagSet");
    for (const auto& tag : m_tagSet) {
        tag.Write(writer);
    }
    writer.Close();
}

Mirqos::Client::WireRequest PutObjectTaggingRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForObject("PUT", *this);
    wire.query.emplace_back("tagging", "");
    Mirqos::S3::SetXmlBody(wire, "Tagging", GetTagging());
    wire.needsContentMd5 = true;
    return wire;
}

PutObjectTaggingResult::PutObjectTaggingResult(Mirqos::Client::Answer&& answer)
    : m_versionId(answer.Header("x-amz-version-id")) {
}

Mirqos::Client::WireRequest GetObjectTaggingRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForObject("GET", *this);
    wire.query.emplace_back("tagging", "");
    Mirqos::S3::ExpectXml(wire, "Tagging");
    return wire;
}

GetObjectTaggingResult::GetObjectTaggingResult(Mirqos::Client::Answer&& answer)
    : m_tagSet(Mirqos::S3::ReadAll<Tag>(answer.xml.Root().Child("TagSet"), "Tag")) {
}

}  // namespace Aws::S3::Model
