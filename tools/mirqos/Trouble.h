#pragma once

#include <string>
#include <vector>

#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {

/// One file that a command could not deal with, while it went on with the others.
struct Trouble {
    std::string path;
    std::string why;
    ExitCode code = ExitCode::LocalFile;
};

using Troubles = std::vector<Trouble>;

}  // namespace Mirqos::Tool
