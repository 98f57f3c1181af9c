#include <csignal>

#include "tools/mirqos/Program.h"

int main(int argc, char** argv) {
    // writing to a pipe whose reader has gone is then an error of that write, not the end
    std::signal(SIGPIPE, SIG_IGN);
    return Mirqos::Tool::RunProgram({argv + (argc > 0 ? 1 : 0), argv + argc});
}
