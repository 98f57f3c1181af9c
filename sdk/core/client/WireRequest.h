#pragma once

#include <aws/core/utils/memory/stl/AWSStreamFwd.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sdk/core/http/Transport.h"

namespace Mirqos::Client {

/// What becomes of the body of a successful answer. Error bodies are always read as XML.
enum class ResponseKind {
    none,   ///< usually empty; an error document or a page for people makes it a failure
    xml,    ///< parsed; it has to be a document whose root is WireRequest::xmlRoot
    stream  ///< goes into a stream of the request's response stream factory
};

/// One operation as a request describes itself: what the pipeline needs to know of it, and all that
/// differs between operations.
struct WireRequest {
    using Query = std::vector<std::pair<std::string, std::string>>;

    std::string method;
    std::optional<std::string> bucket;  ///< of operations on a bucket or an object
    std::optional<std::string> key;     ///< of operations on an object
    /// A field that is empty and without which this would be another request, one on the bucket
    /// instead of an object for instance: it is not sent. Null where nothing lacks.
    const char* missingField = nullptr;
    Query query;                          ///< plain text; a sub-resource has an empty value
    Http::HeaderList headers;             ///< beyond those that every request has
    std::shared_ptr<Aws::IOStream> body;  ///< sent from its position to its end
    std::string xml;                      ///< the body, where there is no stream
    std::string contentType;              ///< sent with a body
    bool needsContentMd5 = false;
    ResponseKind response = ResponseKind::none;
    /// The root's name. Any other document, also one that reports an error under status 200, is a
    /// failure.
    std::string xmlRoot;
};

}  // namespace Mirqos::Client
