#pragma once

#include <cstdint>

namespace Mirqos {

/// The operating system's number of this process, as its tools show it.
std::uint32_t CurrentProcessId();

/// The operating system's number of the calling thread, as its tools show it.
std::uint32_t CurrentThreadId();

/// Ends the process at once and abnormally; nothing is cleaned up, no handler of the host can
/// prevent it. `reason` goes to the standard error stream as one line.
[[noreturn]] void EndProcess(const char* reason);

}  // namespace Mirqos
