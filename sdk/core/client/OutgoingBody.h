#pragma once

#include <aws/core/utils/memory/stl/AWSStreamFwd.h>

#include <cstdint>
#include <istream>
#include <memory>
#include <string>

#include "sdk/core/client/WireRequest.h"

namespace Mirqos::Client {

/// The bytes that a request sends: from the stream's position at construction to its end, as often
/// as asked. Belongs to one call.
class OutgoingBody {
public:
    explicit OutgoingBody(const WireRequest& wire);

    /// Whether there is a body at all, be it an empty one.
    bool Exists() const { return m_stream != nullptr; }
    /// False for a stream that cannot tell or change its position: it cannot be sent.
    bool Usable() const { return m_usable; }
    std::uint64_t Length() const { return m_length; }

    /// Puts the stream back to the first byte. False where that fails.
    bool Rewind();
    /// Null without a body.
    std::istream* Stream() const { return m_stream.get(); }

    /// The digests read the whole body and leave the stream anywhere. Nothing where the stream ends
    /// early.
    std::optional<std::string> Sha256Hex();
    std::optional<std::string> Md5Base64();

private:
    /// The body's bytes where they can be read without the stream, else null.
    const unsigned char* InMemory() const;
    template <typename Hash>
    bool Feed(Hash& hash);

    std::shared_ptr<std::istream> m_stream;
    std::streampos m_start = 0;
    std::uint64_t m_length = 0;
    bool m_usable = true;
};

}  // namespace Mirqos::Client
