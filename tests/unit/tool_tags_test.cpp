#include "tools/mirqos/Tags.h"

#include <gtest/gtest.h>

#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {
namespace {

void ExpectTag(const Tag& tag, const std::string& name, const std::string& value) {
    EXPECT_EQ(tag.name, name);
    EXPECT_EQ(tag.value, value);
}

TEST(ToolTags, EqualsSignAndColonBothSeparate) {
    ExpectTag(ParseTag("place=Rome"), "place", "Rome");
    ExpectTag(ParseTag("place:Rome"), "place", "Rome");
}

TEST(ToolTags, TheFirstSeparatorEndsTheName) {
    ExpectTag(ParseTag("a=b=c:d"), "a", "b=c:d");
    ExpectTag(ParseTag("a:b=c:d"), "a", "b=c:d");
}

TEST(ToolTags, AValueMayBeEmpty) {
    ExpectTag(ParseTag("a="), "a", "");
    ExpectTag(ParseTag("a:"), "a", "");
}

TEST(ToolTags, WithoutNameOrSeparatorOrUtf8ItIsAUsageError) {
    for (const char* const wrong : {"", "name", "=value", ":value", "a=\xFF"}) {
        try {
            ParseTag(wrong);
            ADD_FAILURE() << wrong;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Code(), ExitCode::Usage) << wrong;
        }
    }
}

TEST(ToolTags, ATagThatIsPackedAndUnpackedIsTheSame) {
    EXPECT_EQ(ParseTag("a=b:c").Packed(), "a:b:c");
    ExpectTag(UnpackTag("a:b:c"), "a", "b:c");
    ExpectTag(UnpackTag("a:"), "a", "");
}

}  // namespace
}  // namespace Mirqos::Tool
