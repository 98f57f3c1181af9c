#pragma once

#include <aws/core/utils/memory/AWSMemory.h>
#include <aws/core/utils/memory/stl/AWSStringStream.h>

#include <functional>

namespace Aws {

/// Makes a stream with Aws::New; who calls it owns the stream and destroys it with Aws::Delete.
using IOStreamFactory = std::function<Aws::IOStream*()>;

namespace Utils::Stream {

/// The stream that an answer's body was written to, with its owner. Can be moved, not copied.
class ResponseStream {
public:
    /// Without a stream.
    ResponseStream() = default;
    explicit ResponseStream(const Aws::IOStreamFactory& factory);
    ResponseStream(ResponseStream&& other) noexcept;
    ResponseStream& operator=(ResponseStream&& other) noexcept;
    ~ResponseStream();

    /// Lives as long as this object. Undefined without a stream: after the default constructor, for
    /// a factory that answered null and after a move.
    Aws::IOStream& GetUnderlyingStream() const { return *m_stream; }

private:
    void Release() noexcept;

    Aws::IOStream* m_stream = nullptr;
};

/// A stream that owns its buffer.
class DefaultUnderlyingStream : public Aws::IOStream {
public:
    /// Over a buffer in memory that grows.
    DefaultUnderlyingStream();
    DefaultUnderlyingStream(Aws::UniquePtr<std::streambuf> buffer);
    DefaultUnderlyingStream(const DefaultUnderlyingStream&) = delete;
    DefaultUnderlyingStream& operator=(const DefaultUnderlyingStream&) = delete;
    ~DefaultUnderlyingStream() override;
};

/// A new DefaultUnderlyingStream in memory.
Aws::IOStream* DefaultResponseStreamFactoryMethod();

}  // namespace Utils::Stream
}  // namespace Aws
