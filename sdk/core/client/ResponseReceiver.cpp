#include "sdk/core/client/ResponseReceiver.h"

#include <algorithm>
#include <ios>

#include "sdk/core/xml/Xml.h"

namespace Mirqos::Client {

ResponseReceiver::ResponseReceiver(ResponseKind kind, const Aws::IOStreamFactory& streamFactory)
    : m_kind(kind), m_streamFactory(streamFactory) {
}

template <typename Step>
Http::Receiver::Want ResponseReceiver::Guarded(Step step) {
    try {
        return step();
    } catch (...) {
        m_failure = std::current_exception();
        return Want::enough;
    }
}

Http::Receiver::Want ResponseReceiver::OnHead(const Http::ResponseHead& head) {
    return Guarded([&] {
        m_head = head;
        if (IsSuccess() && m_kind == ResponseKind::stream) {
            Aws::IOStream* const stream = m_streamFactory ? m_streamFactory() : nullptr;
            if (stream == nullptr) {
                return Want::enough;
            }
            m_stream.emplace([stream] { return stream; });
            if (stream->rdbuf() == nullptr) {
                m_stream.reset();  // there was no memory for its buffer
                return Want::enough;
            }
        }
        return Want::more;
    });
}

Http::Receiver::Want ResponseReceiver::OnBody(const char* data, std::size_t size) {
    return Guarded([&] {
        m_bodyBytes += size;
        if (!IsSuccess()) {
            return AppendText(data, size, kMaxErrorBytes);
        }
        switch (m_kind) {
            case ResponseKind::xml:
                return AppendText(data, size, Xml::kMaxBytes);
            case ResponseKind::stream:
                return WriteStream(data, size);
            default:
                return AppendText(data, size, kMaxErrorBytes);
        }
    });
}

Http::Receiver::Want ResponseReceiver::AppendText(const char* data, std::size_t size,
                                                  std::size_t bound) {
    const std::size_t room = bound - m_text.size();
    m_text.append(data, std::min(size, room));
    m_textExceedsBound = size > room;
    return m_textExceedsBound ? Want::enough : Want::more;
}

Http::Receiver::Want ResponseReceiver::WriteStream(const char* data, std::size_t size) {
    Aws::IOStream& stream = m_stream->GetUnderlyingStream();
    // A stream of a fixed size takes what fits; its owner knows why it is shorter.
    const std::streamsize taken = stream.rdbuf()->sputn(data, static_cast<std::streamsize>(size));
    return taken == static_cast<std::streamsize>(size) ? Want::more : Want::enough;
}

void ResponseReceiver::RethrowIfFailed() const {
    if (m_failure) {
        std::rethrow_exception(m_failure);
    }
}

}  // namespace Mirqos::Client
