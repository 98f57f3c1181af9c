#pragma once

#include <aws/core/utils/memory/stl/AWSStreamFwd.h>
#include <aws/core/utils/stream/ResponseStream.h>

#include <memory>

namespace Mirqos::Client {
struct WireRequest;
}

namespace Aws {

/// What the requests of all operations share. A request is a value: copies share only the body.
class AmazonWebServiceRequest {
public:
    virtual ~AmazonWebServiceRequest() = default;

    /// The operation's name, for log lines.
    virtual const char* GetServiceRequestName() const = 0;

    /// The body to send, or null.
    virtual std::shared_ptr<Aws::IOStream> GetBody() const { return nullptr; }

    /// Makes the stream that receives the body of a successful answer, where the operation has
    /// one: once for each attempt that gets so far, on the thread that runs the request. The answer
    /// owns the stream. The default is a stream in memory.
    void SetResponseStreamFactory(const IOStreamFactory& factory) {
        m_responseStreamFactory = factory;
    }
    const IOStreamFactory& GetResponseStreamFactory() const { return m_responseStreamFactory; }

    /// Inside this layer: what goes on the wire and what is expected back.
    virtual Mirqos::Client::WireRequest Describe() const = 0;

protected:
    AmazonWebServiceRequest() = default;
    AmazonWebServiceRequest(const AmazonWebServiceRequest&) = default;
    AmazonWebServiceRequest(AmazonWebServiceRequest&&) = default;
    AmazonWebServiceRequest& operator=(const AmazonWebServiceRequest&) = default;
    AmazonWebServiceRequest& operator=(AmazonWebServiceRequest&&) = default;

private:
    IOStreamFactory m_responseStreamFactory = Utils::Stream::DefaultResponseStreamFactoryMethod;
};

}  // namespace Aws
