#include "tests/faults/ModelService.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "sdk/core/xml/Xml.h"
#include "tests/wire/Pages.h"

namespace Mirqos::Test {
namespace {

constexpr char kText[] = "text/plain";
constexpr char kXml[] = "application/xml";

Answer Empty(int status) {
    return Answer::Status(status).Header("Content-Type", kText);
}

Answer Document(const std::string& text) {
    return Answer::Status(200).Header("Content-Type", kXml).Body(text);
}

Answer Missing(const std::string& code) {
    return Answer::S3Error(404, code, "There is none.");
}

/// The value of a parameter of the query; nothing where there is none.
std::optional<std::string> Parameter(const RecordedRequest& request, const std::string& name) {
    const std::string query = "&" + request.Query() + "&";
    const std::size_t at = query.find("&" + name + "=");
    if (at == std::string::npos) {
        return std::nullopt;
    }
    const std::size_t start = at + name.size() + 2;
    return query.substr(start, query.find('&', start) - start);
}

/// The bytes that a "bytes=FIRST-LAST" asks for, or all of them.
std::string Ranged(const std::string& bytes, const std::string& range) {
    const std::size_t equals = range.find('=');
    const std::size_t dash = range.find('-');
    if (equals == std::string::npos || dash == std::string::npos) {
        return bytes;
    }
    const std::size_t first = std::stoull(range.substr(equals + 1, dash - equals - 1));
    const std::size_t last = std::stoull(range.substr(dash + 1));
    return first < bytes.size() ? bytes.substr(first, last - first + 1) : std::string();
}

std::optional<Xml::Document> Parsed(const RecordedRequest& request) {
    std::string error;
    return Xml::Parse(request.body.data(), request.body.size(), error);
}

Answer Malformed() {
    return Answer::S3Error(400, "MalformedXML", "The document cannot be read.");
}

}  // namespace

std::string ModelService::NewTag() {
    return "\"tag" + std::to_string(++m_tags) + "\"";
}

Answer ModelService::Take(const RecordedRequest& request) {
    const std::string path = request.Path().substr(1);
    const std::size_t slash = path.find('/');
    if (path.empty()) {
        return OnService();
    }
    if (slash == std::string::npos) {
        return OnBucket(request, path);
    }
    return OnObject(request, path);
}

Answer ModelService::OnService() const {
    Xml::Writer writer;
    writer.Open("ListAllMyBucketsResult");
    writer.Open("Buckets");
    for (const std::string& bucket : buckets) {
        writer.Open("Bucket");
        writer.Leaf("Name", bucket);
        writer.Close();
    }
    return Document(writer.Take());
}

Answer ModelService::OnBucket(const RecordedRequest& request, const std::string& bucket) {
    const std::string query = request.Query();
    if (request.method == "PUT" && query.empty()) {
        return buckets.insert(bucket).second
                   ? Empty(200)
                   : Answer::S3Error(409, "BucketAlreadyOwnedByYou", "It is yours already.");
    }
    if (buckets.count(bucket) == 0) {
        return Missing("NoSuchBucket");
    }
    if (request.method == "DELETE") {
        buckets.erase(bucket);
        return Empty(204);
    }
    if (request.method == "POST") {
        return DeleteAll(request, bucket);
    }
    if (request.method == "GET" && query == "location") {
        return Document("<LocationConstraint>eu-west-1</LocationConstraint>");
    }
    if (request.method == "GET" && ("&" + query).find("&uploads") != query.npos) {
        return UploadsPage({{"open", "id-of-open"}});
    }
    return request.method == "GET" ? List(request, bucket) : Empty(200);
}

Answer ModelService::List(const RecordedRequest& request, const std::string& bucket) const {
    const std::string prefix = bucket + "/" + Parameter(request, "prefix").value_or("");
    std::vector<std::string> keys;
    for (const auto& object : objects) {
        if (object.first.compare(0, prefix.size(), prefix) == 0) {
            keys.push_back(object.first.substr(bucket.size() + 1));
        }
    }
    const std::size_t start = std::min<std::size_t>(
        std::stoul(Parameter(request, "continuation-token").value_or("0")), keys.size());
    const std::size_t end = std::min(start + kPage, keys.size());
    using Step = std::vector<std::string>::difference_type;
    return ListingPage(
        {keys.begin() + static_cast<Step>(start), keys.begin() + static_cast<Step>(end)},
        end < keys.size() ? std::to_string(end) : "");
}

Answer ModelService::DeleteAll(const RecordedRequest& request, const std::string& bucket) {
    const std::optional<Xml::Document> asked = Parsed(request);
    if (!asked) {
        return Malformed();
    }
    Xml::Writer writer;
    writer.Open("DeleteResult");
    for (const Xml::Element& object : asked->Root().Children()) {
        objects.erase(bucket + "/" + std::string(object.TextOf("Key")));
        writer.Open("Deleted");
        writer.Leaf("Key", object.TextOf("Key"));
        writer.Close();
    }
    return Document(writer.Take());
}

Answer ModelService::OnObject(const RecordedRequest& request, const std::string& object) {
    if (request.method == "POST" && request.Query() == "uploads") {
        const std::string id = "upload-" + std::to_string(m_uploads.size() + 1);
        m_uploads[id].object = object;
        return Document("<InitiateMultipartUploadResult><UploadId>" + id +
                        "</UploadId></InitiateMultipartUploadResult>");
    }
    if (const auto id = Parameter(request, "uploadId")) {
        const auto upload = m_uploads.find(*id);
        if (upload == m_uploads.end()) {
            return Missing("NoSuchUpload");
        }
        if (request.method == "DELETE") {
            m_uploads.erase(upload);
            return Empty(204);
        }
        return request.method == "PUT" ? PutPart(request, upload->second)
                                       : Complete(request, upload->second);
    }
    if (request.method == "DELETE") {
        objects.erase(object);
        return Empty(204);
    }
    if (request.method == "PUT") {
        return Put(request, object);
    }
    return objects.count(object) != 0 ? Get(request, object) : Missing("NoSuchKey");
}

Answer ModelService::Get(const RecordedRequest& request, const std::string& object) const {
    if (request.Query() == "tagging") {
        return Document(
            "<Tagging><TagSet><Tag><Key>kind</Key><Value>test</Value></Tag></TagSet></Tagging>");
    }
    Answer answer = Answer::Status(request.method == "HEAD" ? 200 : 206)
                        .Header("Content-Type", kText)
                        .Header("ETag", "\"of the object\"")
                        .Body(Ranged(objects.at(object), request.Value("Range")));
    if (request.Header("Range") != nullptr) {
        answer.Header("Content-Range", "bytes " + request.Value("Range").substr(6) + "/" +
                                           std::to_string(objects.at(object).size()));
    }
    return answer;
}

Answer ModelService::Put(const RecordedRequest& request, const std::string& object) {
    if (request.Query() == "tagging") {
        return Empty(200);
    }
    const std::string source = request.Value("x-amz-copy-source");
    if (source.empty()) {
        objects[object] = request.body;
        return Empty(200).Header("ETag", NewTag());
    }
    if (objects.count(source) == 0) {
        return Missing("NoSuchKey");
    }
    objects[object] = objects.at(source);
    return Document("<CopyObjectResult><ETag>t</ETag></CopyObjectResult>");
}

Answer ModelService::PutPart(const RecordedRequest& request, Upload& upload) {
    Part& part = upload.parts[std::stoi(Parameter(request, "partNumber").value_or("0"))];
    part.eTag = NewTag();
    const std::string source = request.Value("x-amz-copy-source");
    if (source.empty()) {
        part.bytes = request.body;
        return Empty(200).Header("ETag", part.eTag);
    }
    part.bytes = Ranged(objects[source], request.Value("x-amz-copy-source-range"));
    Xml::Writer writer;
    writer.Open("CopyPartResult");
    writer.Leaf("ETag", part.eTag);
    return Document(writer.Take());
}

// A completion that is asked for again is answered again, as services do.
Answer ModelService::Complete(const RecordedRequest& request, Upload& upload) {
    const std::optional<Xml::Document> asked = Parsed(request);
    if (!asked) {
        return Malformed();
    }
    std::string bytes;
    for (const Xml::Element& element : asked->Root().Children()) {
        const auto part = upload.parts.find(std::stoi(std::string(element.TextOf("PartNumber"))));
        if (part == upload.parts.end() || part->second.eTag != element.TextOf("ETag")) {
            return Answer::S3Error(400, "InvalidPart", "A part is not what was sent.");
        }
        bytes += part->second.bytes;
    }
    if (!upload.completed) {
        objects[upload.object] = bytes;
        upload.completed = true;
    }
    Xml::Writer writer;
    writer.Open("CompleteMultipartUploadResult");
    writer.Leaf("ETag", NewTag());
    return Document(writer.Take());
}

}  // namespace Mirqos::Test
