#pragma once

#include <string>
#include <vector>

namespace Mirqos::LogView {

/// The whole program but the entry: reads the command line (UTF-8, without the program's name),
/// watches until it is told to end, and returns the exit code.
int RunProgram(const std::vector<std::string>& arguments) noexcept;

}  // namespace Mirqos::LogView
