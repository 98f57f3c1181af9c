#pragma once

#include <stdexcept>
#include <string>

namespace Mirqos::LogControl {

/// What the program answers to its caller. The help text lists them, scripts rely on them.
enum class ExitCode : int {
    Success = 0,
    SystemRefused = 1,  ///< Windows refused or failed
    Usage = 2,          ///< the command line is wrong
    NoBlock = 3,        ///< there is no such process, or it has no block
    NoModule = 4,       ///< no module of that name has registered in the block
    Damaged = 5,        ///< the block was overwritten
    Busy = 6,           ///< somebody held the block for too long
    NotFollowed = 7,    ///< the process ignores the path of all modules
};

/// Ends the program: `what()` is the one line that the user reads.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string& message)
        : std::runtime_error(message), m_code(code) {}
    ExitCode Code() const { return m_code; }

private:
    ExitCode m_code;
};

}  // namespace Mirqos::LogControl
