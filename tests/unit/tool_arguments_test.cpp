#include "tools/mirqos/Arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {
namespace {

using ::testing::ElementsAre;

const std::vector<Option>& SomeOptions() {
    static const std::vector<Option> options = {{"secret", "TEXT", "", ""},
                                                {"number", "N", "", ""},
                                                {"quiet", "", "", ""},
                                                {"help", "", "", "", 'h'}};
    return options;
}

Arguments Parse(const std::vector<std::string>& given) {
    return Arguments(given, SomeOptions());
}

std::string UsageMessage(const std::vector<std::string>& given) {
    try {
        Parse(given);
    } catch (const Failure& failure) {
        return failure.Code() == ExitCode::Usage ? failure.what() : "";
    }
    return "";
}

TEST(ToolArguments, OptionsMayStandAnywhere) {
    const Arguments arguments =
        Parse({"--quiet", "put", "--number", "4", "a", "--secret=x=y", "b"});
    EXPECT_THAT(arguments.Words(), ElementsAre("put", "a", "b"));
    EXPECT_TRUE(arguments.Has("quiet"));
    EXPECT_EQ(arguments.Value("number"), "4");
    EXPECT_EQ(arguments.Value("secret"), "x=y");
    EXPECT_FALSE(arguments.Has("help"));
    EXPECT_FALSE(arguments.Value("help"));
}

TEST(ToolArguments, OfOptionsWithTheSameLetterTheFirstHasIt) {
    const Arguments arguments({"-h"}, {{"human-readable", "", "", "", 'h'}, SomeOptions().back()});
    EXPECT_TRUE(arguments.Has("human-readable"));
    EXPECT_FALSE(arguments.Has("help"));
    EXPECT_NE(UsageMessage({"-q"}), "");
    EXPECT_NE(UsageMessage({"-hh"}), "");
}

TEST(ToolArguments, AValueMayBeginWithADashOrBeEmpty) {
    EXPECT_EQ(Parse({"--secret", "--quiet"}).Value("secret"), "--quiet");
    EXPECT_EQ(Parse({"--secret="}).Value("secret"), "");
}

TEST(ToolArguments, OfARepeatedOptionTheLastHolds) {
    EXPECT_EQ(Parse({"--number=1", "--number", "2"}).Value("number"), "2");
}

TEST(ToolArguments, TwoDashesEndTheOptions) {
    EXPECT_THAT(Parse({"put", "--", "--quiet", "--"}).Words(), ElementsAre("put", "--quiet", "--"));
}

TEST(ToolArguments, ALoneDashAndAnEmptyWordAreWords) {
    EXPECT_THAT(Parse({"-", ""}).Words(), ElementsAre("-", ""));
}

TEST(ToolArguments, TheShortFormOfHelpIsKnown) {
    EXPECT_TRUE(Parse({"-h"}).Has("help"));
}

TEST(ToolArguments, UnknownOptionsAndMissingValuesAreUsageErrors) {
    EXPECT_NE(UsageMessage({"--nothing"}), "");
    EXPECT_NE(UsageMessage({"-q"}), "");
    EXPECT_NE(UsageMessage({"---quiet"}), "");
    EXPECT_NE(UsageMessage({"--quie"}), "");
    EXPECT_NE(UsageMessage({"--secret"}), "");
    EXPECT_NE(UsageMessage({"--quiet=yes"}), "");
}

TEST(ToolArguments, ErrorsNameTheOptionButNeverItsValue) {
    const std::string message = UsageMessage({"--secert=topsecret"});
    EXPECT_NE(message.find("--secert"), std::string::npos);
    EXPECT_EQ(message.find("topsecret"), std::string::npos);
    EXPECT_EQ(UsageMessage({"--quiet=topsecret"}).find("topsecret"), std::string::npos);
}

}  // namespace
}  // namespace Mirqos::Tool
