#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Mirqos::Tool {

/// A service's address as the user gives it: [http://|https://]host[:port][/].
struct Endpoint {
    std::string host;           ///< "host" or "host:port", what the library takes
    std::optional<bool> https;  ///< what the scheme said; nothing without a scheme
};

/// Throws Failure (Usage) for anything else; the text is not repeated, it may hold a password.
Endpoint ParseEndpoint(std::string_view text);

}  // namespace Mirqos::Tool
