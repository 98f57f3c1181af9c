#include "tools/mirqos/KeyList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string UsageMessage(const std::string& text) {
    try {
        ParseKeyLines(text);
    } catch (const Failure& failure) {
        return failure.Code() == ExitCode::Usage ? failure.what() : "";
    }
    return "";
}

TEST(ToolKeyList, EachLineIsAKeyToTheLetter) {
    EXPECT_THAT(ParseKeyLines("a b\n/x//\n \n\xC3\xA4#%20\n"),
                ElementsAre("a b", "/x//", " ", "\xC3\xA4#%20"));
}

TEST(ToolKeyList, TheLastLineNeedsNoEnd) {
    EXPECT_THAT(ParseKeyLines("a\nb"), ElementsAre("a", "b"));
}

TEST(ToolKeyList, LinesOfWindowsProgramsAreRead) {
    EXPECT_THAT(ParseKeyLines("\xEF\xBB\xBF"
                              "a\r\nb\r\n"),
                ElementsAre("a", "b"));
}

TEST(ToolKeyList, EmptyLinesAreSkipped) {
    EXPECT_THAT(ParseKeyLines("\n\r\na\n\n"), ElementsAre("a"));
    EXPECT_THAT(ParseKeyLines(""), IsEmpty());
}

TEST(ToolKeyList, ALineThatIsNoKeyIsNamedByItsNumber) {
    EXPECT_THAT(UsageMessage("a\n\n\xFF\n"), HasSubstr("line 3"));
    EXPECT_THAT(UsageMessage(std::string(1025, 'k')), HasSubstr("line 1"));
    EXPECT_THAT(ParseKeyLines(std::string(1024, 'k')), ElementsAre(std::string(1024, 'k')));
}

TEST(ToolKeyList, ANulIsRefusedBecauseItWouldMakeTwoKeysOfOne) {
    using namespace std::string_literals;
    EXPECT_THAT(UsageMessage("a\nb\0c\n"s), HasSubstr("line 2"));
}

}  // namespace
}  // namespace Mirqos::Tool
