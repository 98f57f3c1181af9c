#include "tools/mirqos/Paging.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {
namespace {

using ::testing::ElementsAre;

/// The tokens that a walk asks for where the pages answer `answers` one after another.
std::vector<std::string> Asked(const std::vector<std::string>& answers) {
    std::vector<std::string> asked;
    WalkPages([&](const std::string& token) {
        asked.push_back(token);
        return answers.at(asked.size() - 1);
    });
    return asked;
}

TEST(ToolPaging, AnOnlyPageIsFetchedOnce) {
    EXPECT_THAT(Asked({""}), ElementsAre(""));
}

TEST(ToolPaging, EachPageIsAskedForWithTheTokenOfTheOneBefore) {
    EXPECT_THAT(Asked({"t1", "t2", ""}), ElementsAre("", "t1", "t2"));
}

TEST(ToolPaging, APageThatNamesItselfAsTheNextEndsTheWalk) {
    int pages = 0;
    try {
        WalkPages([&](const std::string&) {
            ++pages;
            return std::string("same");
        });
        ADD_FAILURE() << "no failure";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::OperationFailed);
    }
    EXPECT_EQ(pages, 2);
}

TEST(ToolPaging, AFailureOfAPageComesOut) {
    EXPECT_THROW(WalkPages([](const std::string&) -> std::string {
                     throw Failure(ExitCode::Interrupted, "interrupted");
                 }),
                 Failure);
}

}  // namespace
}  // namespace Mirqos::Tool
