#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

#include <algorithm>
#include <string>
#include <string_view>

/// Between the SDK's strings, which may have an allocator of their own, and the standard ones.
namespace Mirqos {

inline std::string ToStd(const Aws::String& text) {
    return std::string(text.data(), text.size());
}

inline Aws::String ToAws(std::string_view text) {
    return Aws::String(text.data(), text.size());
}

/// A service that works long on an answer sends white space to keep the connection alive, before
/// the document, where XML allows none.
inline std::string_view WithoutLeadingBlanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
}

}  // namespace Mirqos
