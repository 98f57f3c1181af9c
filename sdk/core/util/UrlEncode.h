#pragma once

#include <string>
#include <string_view>

/// Percent-encoding byte by byte, with upper-case digits. A-Z a-z 0-9 - . _ ~ stay as they are;
/// nothing is merged, resolved or dropped.
namespace Mirqos {

/// For an object key in a request path: '/' stays as it is.
std::string EncodePath(std::string_view key);
/// For names and values of a query string: '/' is encoded too.
std::string EncodeQuery(std::string_view text);

}  // namespace Mirqos
