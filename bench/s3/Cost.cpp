#include "bench/s3/Cost.h"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <fstream>
#include <stdexcept>
#include <string>

extern char** environ;

namespace Mirqos::Bench {

long OwnPeakKib() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            long kib = 0;
            status >> kib;
            return kib;
        }
    }
    throw std::runtime_error("the system does not tell of this process's memory");
}

Cost CostOfProgram(char** arguments) {
    int status = 0;
    Cost cost = CostOf([&] {
        pid_t child = 0;
        if (posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments, environ) != 0) {
            throw std::runtime_error(std::string("cannot start ") + arguments[0]);
        }
        waitpid(child, &status, 0);
    });
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error(std::string(arguments[0]) + " failed");
    }
    // of all that were waited for, by us or by a shell in between
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    cost.peakKib = usage.ru_maxrss;
    return cost;
}

}  // namespace Mirqos::Bench
