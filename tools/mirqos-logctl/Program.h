#pragma once

#include <string>
#include <vector>

namespace Mirqos::LogControl {

/// Runs the program with a command line in UTF-8, without the program's name, and returns its exit
/// code.
int RunProgram(const std::vector<std::string>& arguments) noexcept;

}  // namespace Mirqos::LogControl
