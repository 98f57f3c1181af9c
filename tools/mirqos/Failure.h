#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace Mirqos::Tool {

/// What the program answers to its caller. The help text lists them, scripts rely on them.
enum class ExitCode : int {
    Success = 0,
    OperationFailed = 1,  ///< the service or the network refused or failed
    Usage = 2,            ///< the command line or the environment is wrong
    LocalFile = 3,        ///< a file of this machine could not be read or written
    NotFound = 4,         ///< the answer is "no": what was asked about is not there
    Differs = 5,          ///< what is stored is not what the backup says
    Interrupted = 130,    ///< Ctrl-C, as shells report it
};

/// Ends a command: `what()` is the one line that the user reads. It never holds a secret.
class Failure : public std::runtime_error {
public:
    /// `status`: the library's, where it is the reason.
    Failure(ExitCode code, const std::string& message, std::int32_t status = 0)
        : std::runtime_error(message), m_code(code), m_status(status) {}
    ExitCode Code() const { return m_code; }
    std::int32_t Status() const { return m_status; }

private:
    ExitCode m_code;
    std::int32_t m_status;
};

}  // namespace Mirqos::Tool
