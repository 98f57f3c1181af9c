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

void AddOneTooMany() {
    g_largest = g_largest + 1;
}

int ElementBeyondTheEnd() {
    const std::vector<int> none;
    return none[g_beyond];
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
    EXPECT_DEATH(ElementBeyondTheEnd(), AnyOf(IsReported(), HasSubstr("Assertion")));
}

}  // namespace
