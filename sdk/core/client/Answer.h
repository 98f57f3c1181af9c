#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/core/utils/stream/ResponseStream.h>

#include <cstdint>
#include <string>

#include "sdk/core/client/Text.h"
#include "sdk/core/http/Transport.h"
#include "sdk/core/xml/Xml.h"

namespace Mirqos::Client {

/// A successful answer: what results are made from.
struct Answer {
    Http::ResponseHead head;
    Xml::Document xml;                          ///< for ResponseKind::xml
    Aws::Utils::Stream::ResponseStream stream;  ///< the body, for ResponseKind::stream
    std::uint64_t bodyBytes = 0;                ///< offered to the stream, taken or not

    /// The body's length in bytes: the Content-Length header or, without one, the bytes received.
    long long ContentLength() const;
    /// The header's value; an empty text where there is none.
    Aws::String Header(const std::string& name) const;
};

}  // namespace Mirqos::Client
