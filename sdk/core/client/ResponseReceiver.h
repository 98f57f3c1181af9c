#pragma once

#include <aws/core/utils/stream/ResponseStream.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>

#include "sdk/core/client/WireRequest.h"
#include "sdk/core/http/Transport.h"

namespace Mirqos::Client {

/// Bodies of errors and of answers that are passed over are read up to this many bytes.
inline constexpr std::size_t kMaxErrorBytes = 1024 * 1024;

/// Takes one answer in. The body of a success goes where its kind says; every other body goes into
/// a bounded buffer of its own, so that it never meets the caller's stream.
class ResponseReceiver : public Http::Receiver {
public:
    /// Both have to outlive the receiver.
    ResponseReceiver(ResponseKind kind, const Aws::IOStreamFactory& streamFactory);

    Want OnHead(const Http::ResponseHead& head) override;
    Want OnBody(const char* data, std::size_t size) override;

    /// Throws what the stream factory or the stream threw: exceptions must not pass through the
    /// transport, which may be a C library.
    void RethrowIfFailed() const;

    bool IsSuccess() const { return m_head.IsSuccess(); }
    /// Status 0 before any head.
    Http::ResponseHead& Head() { return m_head; }
    const Http::ResponseHead& Head() const { return m_head; }
    /// The body of an error or of a success without a stream, as far as it was read.
    const std::string& Text() const { return m_text; }
    /// Whether that body is longer than can be read.
    bool TextExceedsBound() const { return m_textExceedsBound; }
    /// Set for a success of ResponseKind::stream, unless the factory made none or one without a
    /// buffer.
    std::optional<Aws::Utils::Stream::ResponseStream>& Stream() { return m_stream; }
    std::uint64_t BodyBytes() const { return m_bodyBytes; }

private:
    template <typename Step>
    Want Guarded(Step step);
    Want AppendText(const char* data, std::size_t size, std::size_t bound);
    Want WriteStream(const char* data, std::size_t size);

    const ResponseKind m_kind;
    const Aws::IOStreamFactory& m_streamFactory;
    Http::ResponseHead m_head;
    std::string m_text;
    bool m_textExceedsBound = false;
    std::optional<Aws::Utils::Stream::ResponseStream> m_stream;
    std::uint64_t m_bodyBytes = 0;
    std::exception_ptr m_failure;
};

}  // namespace Mirqos::Client
