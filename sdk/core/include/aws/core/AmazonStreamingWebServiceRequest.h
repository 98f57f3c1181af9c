#pragma once

#include <aws/core/AmazonWebServiceRequest.h>
#include <aws/core/utils/memory/stl/AWSString.h>

#include <memory>
#include <utility>

namespace Aws {

/// A request whose body is the caller's stream.
class AmazonStreamingWebServiceRequest : public AmazonWebServiceRequest {
public:
    /// The stream is read from its position at the call to its end, and again from there for each
    /// further attempt, so it has to be seekable. Nobody else may use it until the call has ended;
    /// bytes that it merely refers to have to live as long.
    void SetBody(const std::shared_ptr<Aws::IOStream>& body) { m_body = body; }
    std::shared_ptr<Aws::IOStream> GetBody() const override { return m_body; }

    void SetContentType(Aws::String contentType) { m_contentType = std::move(contentType); }
    const Aws::String& GetContentType() const { return m_contentType; }

private:
    std::shared_ptr<Aws::IOStream> m_body;
    Aws::String m_contentType = "binary/octet-stream";
};

}  // namespace Aws
