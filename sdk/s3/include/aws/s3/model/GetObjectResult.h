#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/core/utils/stream/ResponseStream.h>

namespace Mirqos::Client {
struct Answer;
}

namespace Aws::S3::Model {

/// Owns the stream that received the body; it can be moved, not copied.
class GetObjectResult {
public:
    GetObjectResult() = default;
    explicit GetObjectResult(Mirqos::Client::Answer&& answer);

    /// The stream that the request's response stream factory made; valid as long as this result.
    /// A stream shorter than the body took the first bytes and the rest was dropped.
    Aws::IOStream& GetBody() const { return m_body.GetUnderlyingStream(); }

    /// Length of the answer's body in bytes: its Content-Length header or, where the service sent
    /// none (a chunked body), the count of the bytes received. Never more than was sent.
    long long GetContentLength() const { return m_contentLength; }

    /// "bytes FIRST-LAST/SIZE"; empty where the service sent none.
    const Aws::String& GetContentRange() const { return m_contentRange; }

    const Aws::String& GetETag() const { return m_eTag; }

private:
    Aws::Utils::Stream::ResponseStream m_body;
    long long m_contentLength = 0;
    Aws::String m_contentRange;
    Aws::String m_eTag;
};

}  // namespace Aws::S3::Model
