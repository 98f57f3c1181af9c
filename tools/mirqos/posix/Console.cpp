#include "tools/mirqos/Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "tools/mirqos/posix/FileStatus.h"

namespace Mirqos::Tool {

namespace {

/// 0, or the error after which the rest was not written.
int Write(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

constexpr unsigned kUsualColumns = 80;

}  // namespace

bool WriteOutput(std::string_view text) {
    const int error = Write(STDOUT_FILENO, text);
    if (error != 0 && error != EPIPE) {
        FailWith(error, "write", "standard output");
    }
    return error == 0;
}

void WriteError(std::string_view text) {
    Write(STDERR_FILENO, text);
}

std::optional<std::size_t> ReadInput(char* to, std::size_t size) {
    ssize_t count = 0;
    do {
        count = ::read(STDIN_FILENO, to, size);
    } while (count < 0 && errno == EINTR);
    return count < 0 ? std::nullopt : std::optional<std::size_t>(static_cast<std::size_t>(count));
}

std::optional<unsigned> ErrorColumns() {
    if (::isatty(STDERR_FILENO) == 0) {
        return std::nullopt;
    }
    winsize size{};
    const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : kUsualColumns;
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    const char* const value = std::getenv(name.c_str());
    return value == nullptr || *value == '\0' ? std::nullopt : std::optional<std::string>(value);
}

}  // namespace Mirqos::Tool
