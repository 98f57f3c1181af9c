#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Mirqos::Tool {

/// A tag of an object.
struct Tag {
    std::string name;
    std::string value;

    /// "name:value", as the library's records have it.
    std::string Packed() const { return name + ":" + value; }
};

/// Takes "name=value" or "name:value" apart at the first of these characters, so that a value may
/// hold more of them. Throws Failure (Usage) where there is neither, or no name, or no UTF-8.
Tag ParseTag(std::string_view argument);

/// Takes the library's "name:value" apart.
Tag UnpackTag(std::string_view packed);

}  // namespace Mirqos::Tool
