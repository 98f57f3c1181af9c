#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "log/dbg/WideText.h"

namespace Mirqos::LogControl {

struct Process {
    std::uint32_t id = 0;
    LOGUTILS::WideString executable;  ///< its file name
};

/// The processes of this machine, in the system's order. Throws Failure (SystemRefused).
std::vector<Process> RunningProcesses();

/// Throws Failure (NoBlock) when there is no process of that id.
Process FindProcess(std::uint32_t id);

}  // namespace Mirqos::LogControl
