#pragma once

#include <string>
#include <vector>

namespace Mirqos::Tool {

/// The program: `arguments` are UTF-8, without the program's name. Returns the exit code; nothing
/// is thrown.
int RunProgram(const std::vector<std::string>& arguments) noexcept;

}  // namespace Mirqos::Tool
