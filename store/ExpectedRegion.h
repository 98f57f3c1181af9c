#pragma once

#include <string>
#include <string_view>

namespace Mirqos {

/// The region that a service's message about a wrongly signed request expects, or an empty text
/// when the message is another one or is cut off.
std::string ExpectedRegion(std::string_view message);

}  // namespace Mirqos
