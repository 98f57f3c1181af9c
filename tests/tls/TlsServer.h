#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace Mirqos::Test {

/// The port the test server gave to `name`; 0 when there is no such server.
std::uint16_t PortOf(const std::string& name);

/// What the server has seen on a port: so far for "NAME/now", once its connections are closed for
/// "NAME".
std::map<std::string, int> CountsOf(const std::string& name);

}  // namespace Mirqos::Test
