#pragma once

#include <string>
#include <vector>

#include "tools/mirqos/Command.h"

namespace Mirqos::Tool {

/// `mirqos --help`.
std::string ProgramHelp(const std::vector<Command>& commands);

/// `mirqos help COMMAND`.
std::string CommandHelp(const Command& command);

}  // namespace Mirqos::Tool
