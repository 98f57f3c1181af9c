#pragma once

#include <stdexcept>
#include <string>

namespace Mirqos::LogView {

/// What the program answers to its caller. The help text lists them, scripts rely on them.
enum class ExitCode : int {
    Success = 0,
    SystemRefused = 1,  ///< Windows refused or failed
    Usage = 2,          ///< the command line is wrong
    LocalFile = 3,      ///< the output could not be written
    OtherViewer = 4,    ///< another viewer runs
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

/// Throws Failure (SystemRefused) with the thread's last error unless `done`.
void Require(bool done, const char* what);

}  // namespace Mirqos::LogView
