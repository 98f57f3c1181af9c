// Whatever a service answers: reading XML, and what listings, tags, deletions, buckets, locations,
// uploads and errors are made from.
#include <aws/s3/model/BucketLocationConstraint.h>
#include <aws/s3/model/DeleteObjectsResult.h>
#include <aws/s3/model/GetBucketLocationResult.h>
#include <aws/s3/model/GetObjectTaggingResult.h>
#include <aws/s3/model/ListBucketsResult.h>
#include <aws/s3/model/ListMultipartUploadsResult.h>
#include <aws/s3/model/ListObjectsV2Result.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "sdk/core/client/Answer.h"
#include "sdk/core/client/ServiceErrors.h"
#include "sdk/core/xml/Xml.h"
#include "sdk/s3/src/ServiceCodes.h"
#include "store/ExpectedRegion.h"
#include "tests/fuzz/Require.h"

namespace {

using Mirqos::Test::Require;
using Mirqos::Xml::Element;
namespace Model = Aws::S3::Model;

std::size_t CheckTree(const Element& element, std::size_t depth) {
    Require(depth <= Mirqos::Xml::kMaxDepth, "trees are bounded in depth");
    Require(!element.name.empty(), "elements have names");
    Require(element.children.empty() || element.text.empty(), "only leaves have texts");
    std::size_t elements = 1;
    for (const Element& child : element.children) {
        elements += CheckTree(child, depth + 1);
    }
    return elements;
}

/// Whether the names are such as every XML reader takes: Wine's takes more than others.
bool HasPlainNames(const Element& element) {
    return std::all_of(element.name.begin(), element.name.end(),
                       [](char c) { return c > ' ' && c < 0x7F; }) &&
           std::all_of(element.children.begin(), element.children.end(), HasPlainNames);
}

void Write(const Element& element, Mirqos::Xml::Writer& writer) {
    if (element.children.empty()) {
        writer.Leaf(element.name, element.text);
        return;
    }
    writer.Open(element.name);
    for (const Element& child : element.children) {
        Write(child, writer);
    }
    writer.Close();
}

bool Equal(const Element& a, const Element& b) {
    return a.name == b.name && a.text == b.text &&
           std::equal(a.children.begin(), a.children.end(), b.children.begin(), b.children.end(),
                      Equal);
}

void WriteAndReadBack(const Element& root) {
    Mirqos::Xml::Writer writer;
    Write(root, writer);
    const std::string document = writer.Take();
    std::string error;
    const auto again = Mirqos::Xml::Parse(document.data(), document.size(), error);
    Require(again.has_value() && Equal(*again, root), "what was written is read back");
}

template <class Result>
Result Make(const Element& root) {
    Mirqos::Client::Answer answer;
    answer.head.status = 200;
    answer.xml = root;
    return Result(std::move(answer));
}

void MakeResults(const Element& root, std::size_t elements) {
    const auto page = Make<Model::ListObjectsV2Result>(root);
    Require(page.GetContents().size() < elements, "each object has an element");
    for (const auto& object : page.GetContents()) {
        Require(object.GetSize() >= 0, "no size is negative");
    }
    Require(Make<Model::ListMultipartUploadsResult>(root).GetUploads().size() < elements,
            "each upload has an element");
    Require(Make<Model::GetObjectTaggingResult>(root).GetTagSet().size() < elements,
            "each tag has an element");
    Require(Make<Model::DeleteObjectsResult>(root).GetDeleted().size() < elements,
            "each deleted object has an element");
    Require(Make<Model::ListBucketsResult>(root).GetBuckets().size() < elements,
            "each bucket has an element");
    Model::BucketLocationConstraintMapper::GetNameForBucketLocationConstraint(
        Make<Model::GetBucketLocationResult>(root).GetLocationConstraint());
}

void MakeError(const std::string& body) {
    const auto error = Mirqos::Client::ErrorFromAnswer(400, body, Mirqos::S3::FindServiceError);
    const std::string region = Mirqos::ExpectedRegion(error.GetMessage());
    Require(region.find('\'', 1) == std::string::npos, "a region ends at its quote");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string document(reinterpret_cast<const char*>(data), size);
    std::string error;
    const auto root = Mirqos::Xml::Parse(document.data(), document.size(), error);
    Require(root.has_value() == error.empty(), "a refused document has its reason");
    if (root) {
        const std::size_t elements = CheckTree(*root, 1);
        Require(elements <= size, "trees are bounded in size");
        if (HasPlainNames(*root)) {
            WriteAndReadBack(*root);
        }
        MakeResults(*root, elements);
    }
    MakeError(document);
    return 0;
}
