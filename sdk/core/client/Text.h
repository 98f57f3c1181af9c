#pragma once

#include <aws/core/utils/memory/stl/AWSString.h>

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

}  // namespace Mirqos
