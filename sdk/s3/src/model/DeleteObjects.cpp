#include <aws/s3/model/DeleteObjectsRequest.h>
#include <aws/s3/model/DeleteObjectsResult.h>

#include "sdk/core/client/Answer.h"
#include "sdk/s3/src/Describe.h"
#include "sdk/s3/src/ReadXml.h"

namespace Aws::S3::Model {

void ObjectIdentifier::Write(Mirqos::Xml::Writer& writer) const {
    writer.Open("Object");
    writer.Leaf("Key", Mirqos::ToStd(GetKey()));
    writer.Close();
}

void Delete::Write(Mirqos::Xml::Writer& writer) const {
    for (const auto& object : GetObjects()) {
        object.Write(writer);
    }
}

Mirqos::Client::WireRequest DeleteObjectsRequest::Describe() const {
    Mirqos::Client::WireRequest wire = Mirqos::S3::ForBucket("POST", *this);
    wire.query.emplace_back("delete", "");
    Mirqos::S3::SetXmlBody(wire, "Delete", GetDelete());
    wire.needsContentMd5 = true;
    Mirqos::S3::ExpectXml(wire, "DeleteResult");
    return wire;
}

DeletedObject::DeletedObject(const Mirqos::Xml::Element& element)
    : m_key(Mirqos::ToAws(element.TextOf("Key"))) {
}

DeleteObjectsResult::DeleteObjectsResult(Mirqos::Client::Answer&& answer)
    : m_deleted(Mirqos::S3::ReadAll<DeletedObject>(answer.xml.Root(), "Deleted")) {
}

}  // namespace Aws::S3::Model
