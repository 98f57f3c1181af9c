#include "tests/service/KeyShapes.h"

namespace Mirqos::Test {

std::vector<std::string> KeyShapes() {
    constexpr std::size_t longest = 1024;  // bytes, the most that S3 takes
    std::string longWide;
    while (longWide.size() + 3 <= longest) {
        longWide += "\xE2\x82\xAC";  // the euro sign
    }
    longWide.append(longest - longWide.size(), 'e');
    return {
        "plain",
        "with space",
        "with%20percent",
        "100%",
        "a+b",
        "sign@sign",
        "a/b/c",
        "a//b",
        "a///b",
        "/leading",
        "//twice",
        "trailing/",
        "trailing//",
        ".",
        "..",
        "./dot",
        "../dots",
        "a/./b",
        "a/../b",
        "a/.",
        "a/..",
        "quotes\"'`",
        "brackets<>&[]{}()",
        "query?x=1&y=2#fragment",
        "semi;colon:comma,equals=dollar$bang!star*tilde~bar|caret^back\\slash",
        "\xC3\xBC\x62\x65r/gr\xC3\xB6\xC3\x9F\x65",
        "\xD0\xBA\xD0\xBB\xD1\x8E\xD1\x87",
        "\xE6\x97\xA5\xE6\x9C\xAC",
        "\xF0\x9F\x97\x84",
        "with\ttab",
        std::string(longest, 'k'),
        longWide,
        "dir/" + std::string(longest - 8, '+') + "/end",
    };
}

}  // namespace Mirqos::Test
