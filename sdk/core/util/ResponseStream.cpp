#include <aws/core/utils/memory/AWSMemory.h>
#include <aws/core/utils/stream/ResponseStream.h>

#include <utility>

namespace Aws::Utils::Stream {
namespace {

constexpr char kTag[] = "Aws::Utils::Stream";

}  // namespace

ResponseStream::ResponseStream(const Aws::IOStreamFactory& factory) : m_stream(factory()) {
}

ResponseStream::ResponseStream(ResponseStream&& other) noexcept
    : m_stream(std::exchange(other.m_stream, nullptr)) {
}

ResponseStream& ResponseStream::operator=(ResponseStream&& other) noexcept {
    if (this != &other) {
        Release();
        m_stream = std::exchange(other.m_stream, nullptr);
    }
    return *this;
}

ResponseStream::~ResponseStream() {
    Release();
}

void ResponseStream::Release() noexcept {
    Aws::Delete(m_stream);
    m_stream = nullptr;
}

DefaultUnderlyingStream::DefaultUnderlyingStream()
    : DefaultUnderlyingStream(Aws::MakeUnique<Aws::StringBuf>(kTag)) {
}

DefaultUnderlyingStream::DefaultUnderlyingStream(Aws::UniquePtr<std::streambuf> buffer)
    : Aws::IOStream(buffer.release()) {
}

DefaultUnderlyingStream::~DefaultUnderlyingStream() {
    Aws::Delete(rdbuf(nullptr));
}

Aws::IOStream* DefaultResponseStreamFactoryMethod() {
    return Aws::New<DefaultUnderlyingStream>(kTag);
}

}  // namespace Aws::Utils::Stream
