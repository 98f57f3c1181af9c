#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "tools/mirqos/Program.h"

namespace {

/// A standard stream that the caller has closed leaves its number to the next file or connection
/// that is opened, and what is meant for the user would end up in there.
void OccupyClosedStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) < 0) {
            // takes the lowest free number, this one
            static_cast<void>(::open("/dev/null", O_RDWR));
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    OccupyClosedStreams();
    // writing to a pipe whose reader has gone is then an error of that write, not the end
    std::signal(SIGPIPE, SIG_IGN);
    return Mirqos::Tool::RunProgram({argv + (argc > 0 ? 1 : 0), argv + argc});
}
