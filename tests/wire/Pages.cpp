#include "tests/wire/Pages.h"

#include "sdk/core/xml/Xml.h"

namespace Mirqos::Test {
namespace {

Answer Document(Xml::Writer& writer) {
    return Answer::Status(200).Header("Content-Type", "application/xml").Body(writer.Take());
}

}  // namespace

std::vector<std::string> NumberedKeys(std::size_t count, std::size_t first) {
    std::vector<std::string> keys;
    for (std::size_t i = first; i < first + count; ++i) {
        const std::string number = std::to_string(i);
        keys.push_back("k" + std::string(4 - number.size(), '0') + number);
    }
    return keys;
}

Answer ListingPage(const std::vector<std::string>& keys, const std::string& nextToken) {
    Xml::Writer writer;
    writer.Open("ListBucketResult", {{"xmlns", "http://s3.amazonaws.com/doc/2006-03-01/"}});
    writer.Leaf("IsTruncated", nextToken.empty() ? "false" : "true");
    for (const std::string& key : keys) {
        writer.Open("Contents");
        writer.Leaf("Key", key);
        writer.Leaf("Size", std::to_string(key.size()));
        writer.Close();
    }
    if (!nextToken.empty()) {
        writer.Leaf("NextContinuationToken", nextToken);
    }
    return Document(writer);
}

Answer UploadsPage(const std::vector<Upload>& uploads, bool truncated,
                   const std::string& nextKeyMarker) {
    Xml::Writer writer;
    writer.Open("ListMultipartUploadsResult");
    for (const Upload& upload : uploads) {
        writer.Open("Upload");
        writer.Leaf("Key", upload.key);
        writer.Leaf("UploadId", upload.id);
        writer.Close();
    }
    writer.Leaf("IsTruncated", truncated ? "true" : "false");
    if (!nextKeyMarker.empty()) {
        writer.Leaf("NextKeyMarker", nextKeyMarker);
    }
    return Document(writer);
}

}  // namespace Mirqos::Test
