#pragma once

#include <string>
#include <vector>

#include "log/dbg/LogConfigBlock.h"
#include "tools/mirqos-logctl/Processes.h"

namespace Mirqos::LogControl {

/// What is shown of a process. The block is a copy: nobody waits while it is being shown.
struct BlockState {
    Process process;
    bool ignoresGlobalPath = false;
    const LOGUTILS::LogConfigBlock& block;
};

// Each is UTF-8 and ends with a line end; the text ones are for people, the JSON ones one document.

std::string ListAsText(const std::vector<Process>& processes);
std::string ListAsJson(const std::vector<Process>& processes);
std::string StateAsText(const BlockState& state);
std::string StateAsJson(const BlockState& state);

}  // namespace Mirqos::LogControl
