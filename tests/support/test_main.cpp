#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

#include "tests/support/Watchdog.h"

namespace {

std::string RunningTest() {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    return test == nullptr ? std::string()
                           : std::string(test->test_suite_name()) + "." + test->name();
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    const Mirqos::Test::Watchdog watchdog(
        Mirqos::Test::Watchdog::LimitOf(std::getenv("MIRQOS_TEST_LIMIT_SECONDS")), RunningTest);
    return RUN_ALL_TESTS();
}
