#pragma once

#include <string>
#include <vector>

namespace Mirqos::Test {

/// Object keys that something on the way to the service might change: an encoding done twice or not
/// at all, a path made tidy, a length cut. All differ, also after a change of "@" to "+".
std::vector<std::string> KeyShapes();

}  // namespace Mirqos::Test
