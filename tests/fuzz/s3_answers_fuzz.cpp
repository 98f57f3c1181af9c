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
using Mirqos::Xml::Document;
using Mirqos::Xml::Element;
namespace Model = Aws::S3::Model;

std::size_t CheckTree(const Element& element, std::size_t depth) {
    Require(depth <= Mirqos::Xml::kMaxDepth, "trees are bounded in depth");
    Require(!element.Name().empty(), "elements have names");
    std::size_t elements = 1;
    for (const Element& child : element.Children()) {
        elements += CheckTree(child, depth + 1);
    }
    Require(elements == 1 || element.Text().empty(), "only leaves have texts");
    return elements;
}

/// Whether the names are such as every XML reader takes: Wine's takes more than others.
bool HasPlainNames(const Element& element) {
    const std::string_view name = element.Name();
    const Element::Range children = element.Children();
    return std::all_of(name.begin(), name.end(), [](char c) { return c > ' ' && c < 0x7F; }) &&
           std::all_of(children.begin(), children.end(), HasPlainNames);
}

void Write(const Element& element, Mirqos::Xml::Writer& writer) {
    const Element::Range children = element.Children();
    if (children.begin() == children.end()) {
        writer.Leaf(element.Name(), element.Text());
        return;
    }
    writer.Open(element.Name());
    for (const Element& child : children) {
        Write(child, writer);
    }
    writer.Close();
}

bool Equal(const Element& a, const Element& b) {
    const Element::Range ofA = a.Children();
    const Element::Range ofB = b.Children();
    return a.Name() == b.Name() && a.Text() == b.Text() &&
           std::equal(ofA.begin(), ofA.end(), ofB.begin(), ofB.end(), Equal);
}

void WriteAndReadBack(const Element& root) {
    Mirqos::Xml::Writer writer;
    Write(root, writer);
    const std::string document = writer.Take();
    std::string error;
    const auto again = Mirqos::Xml::Parse(document.data(), document.size(), error);
    Require(again.has_value() && Equal(again->Root(), root), "what was written is read back");
}

template <class Result>
Result Make(const Document& document) {
    Mirqos::Client::Answer answer;
    answer.head.status = 200;
    answer.xml = document;
    return Result(std::move(answer));
}

void MakeResults(const Document& document, std::size_t elements) {
    const auto page = Make<Model::ListObjectsV2Result>(document);
    Require(page.GetContents().size() < elements, "each object has an element");
    for (const auto& object : page.GetContents()) {
        Require(object.GetSize() >= 0, "no size is negative");
    }
    Require(Make<Model::ListMultipartUploadsResult>(document).GetUploads().size() < elements,
            "each upload has an element");
    Require(Make<Model::GetObjectTaggingResult>(document).GetTagSet().size() < elements,
            "each tag has an element");
    Require(Make<Model::DeleteObjectsResult>(document).GetDeleted().size() < elements,
            "each deleted object has an element");
    Require(Make<Model::ListBucketsResult>(document).GetBuckets().size() < elements,
            "each bucket has an element");
    Model::BucketLocationConstraintMapper::GetNameForBucketLocationConstraint(
        Make<Model::GetBucketLocationResult>(document).GetLocationConstraint());
}

void MakeError(const std::string& body) {
    const auto error = Mirqos::Client::ErrorFromAnswer(400, body, Mirqos::S3::FindServiceError);
    const std::string region = Mirqos::ExpectedRegion(error.GetMessage());
    Require(region.find('\'', 1) == std::string::npos, "a region ends at its quote");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string answer(reinterpret_cast<const char*>(data), size);
    std::string error;
    const auto parsed = Mirqos::Xml::Parse(answer.data(), answer.size(), error);
    Require(parsed.has_value() == error.empty(), "a refused document has its reason");
    if (parsed) {
        const std::size_t elements = CheckTree(parsed->Root(), 1);
        Require(elements <= size, "trees are bounded in size");
        if (HasPlainNames(parsed->Root())) {
            WriteAndReadBack(parsed->Root());
        }
        MakeResults(*parsed, elements);
    }
    MakeError(answer);
    return 0;
}
