#pragma once

#include "sdk/core/client/Text.h"
#include "sdk/core/client/WireRequest.h"
#include "sdk/core/util/UrlEncode.h"
#include "sdk/core/xml/Xml.h"

/// What most descriptions of requests begin with.
namespace Mirqos::S3 {

/// The value of a field that the request cannot do without.
inline std::string Required(Client::WireRequest& wire, const char* field,
                            const Aws::String& value) {
    if (value.empty() && wire.missingField == nullptr) {
        wire.missingField = field;
    }
    return ToStd(value);
}

template <typename Request>
Client::WireRequest ForBucket(const char* method, const Request& request) {
    Client::WireRequest wire;
    wire.method = method;
    wire.bucket = Required(wire, "Bucket", request.GetBucket());
    return wire;
}

template <typename Request>
Client::WireRequest ForObject(const char* method, const Request& request) {
    Client::WireRequest wire = ForBucket(method, request);
    wire.key = Required(wire, "Key", request.GetKey());
    return wire;
}

template <typename Request>
void AddUploadId(Client::WireRequest& wire, const Request& request) {
    wire.query.emplace_back("uploadId", Required(wire, "UploadId", request.GetUploadId()));
}

/// The source of a copy, BUCKET/KEY in plain text: the header carries it percent-encoded.
inline void AddCopySource(Client::WireRequest& wire, const Aws::String& source) {
    wire.headers.emplace_back("x-amz-copy-source",
                              EncodePath(Required(wire, "CopySource", source)));
}

/// The answer is a document with this root.
inline void ExpectXml(Client::WireRequest& wire, const char* root) {
    wire.response = Client::ResponseKind::xml;
    wire.xmlRoot = root;
}

/// The namespace that S3 wants on the root of the documents it is sent.
inline constexpr char kXmlNamespace[] = "http://s3.amazonaws.com/doc/2006-03-01/";
inline constexpr char kXmlContentType[] = "application/xml";

/// `document` as the body: a value with a Write(Xml::Writer&), under the root `root`.
template <typename Document>
void SetXmlBody(Client::WireRequest& wire, const char* root, const Document& document) {
    Xml::Writer writer;
    writer.Open(root, {{"xmlns", kXmlNamespace}});
    document.Write(writer);
    wire.xml = writer.Take();
    wire.contentType = kXmlContentType;
}

}  // namespace Mirqos::S3
