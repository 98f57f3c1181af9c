#include <gmock/gmock.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/Watchdog.h"

namespace {

std::string RunningTest() {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    return test == nullptr ? std::string()
                           : std::string(test->test_suite_name()) + "." + test->name();
}

// A sanitizer without a runtime to report with has the program run into an illegal instruction.
// After this it meets it again, and then it is the system's, which may print the stack.
void SayWhatTrapsMean(int signal) {
    std::signal(signal, SIG_DFL);
    std::fputs("\nIllegal instruction: undefined behaviour, if the build traps it.\n", stderr);
    std::fflush(stderr);
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    std::signal(SIGILL, SayWhatTrapsMean);
    const Mirqos::Test::Watchdog watchdog(
        Mirqos::Test::Watchdog::LimitOf(std::getenv("MIRQOS_TEST_LIMIT_SECONDS")), RunningTest);
    return RUN_ALL_TESTS();
}
