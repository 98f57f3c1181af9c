#include <gmock/gmock.h>

#include <cstddef>
#include <limits>
#include <thread>
#include <vector>

namespace {

using testing::AnyOf;
using testing::HasSubstr;

// volatile, so that the compiler does not foresee what comes
volatile int g_largest = std::numeric_limits<int>::max();
volatile std::size_t g_beyond = 3;
volatile int g_read = 0;

void AddOneTooMany() {
    g_largest = g_largest + 1;
}

void ReadBeyondTheEnd() {
    const std::vector<int> three(3);
    g_read = three[g_beyond];
}

// What the sanitizer's own runtime says, and what a test program says of a trap.
auto IsReported() {
    return AnyOf(HasSubstr("runtime error: "), HasSubstr("undefined behaviour"));
}

TEST(UndefinedBehaviourDeathTest, EndsTheProgramAndIsNamed) {
    EXPECT_DEATH(AddOneTooMany(), IsReported());
}

TEST(UndefinedBehaviourDeathTest, EndsTheProgramOnEveryThread) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(std::thread(AddOneTooMany).join(), IsReported());
}

TEST(UndefinedBehaviourDeathTest, IsFoundBehindTheStandardLibrarysContainers) {
    // the standard library's own check or, where that is off, the one of each access to memory
    EXPECT_DEATH(ReadBeyondTheEnd(), AnyOf(HasSubstr("Assertion"), HasSubstr("AddressSanitizer")));
}

}  // namespace
