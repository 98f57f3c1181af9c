#include "tools/mirqos/Json.h"

#include <gtest/gtest.h>

namespace Mirqos::Tool {
namespace {

/// What a list writes with these members around and these entries in it.
std::string Written(const Json& head, const std::vector<Json>& entries, const Json& tail) {
    std::string text;
    JsonList list([&](std::string_view piece) { text += piece; }, head, "objects");
    for (const Json& entry : entries) {
        list.Add(entry);
    }
    list.End(tail);
    return text;
}

TEST(ToolJson, ATextStandsInTheDocumentToTheLetter) {
    Json document;
    AddText(document, "key", "a\"b\\c\n\x01\x7F/\xC3\xA4\xF0\x9F\x98\x80");
    EXPECT_EQ(Dump(document), "{\"key\":\"a\\\"b\\\\c\\n\\u0001\x7F/\xC3\xA4\xF0\x9F\x98\x80\"}\n");
    EXPECT_EQ(Json::parse(Dump(document))["key"], "a\"b\\c\n\x01\x7F/\xC3\xA4\xF0\x9F\x98\x80");
}

TEST(ToolJson, BytesThatAreNotUtf8AreEscapedVisiblyAndSaid) {
    Json document;
    AddText(document, "key", "a\xFF\\b\xC3");
    EXPECT_EQ(Dump(document), "{\"key\":\"a\\\\xFF\\\\\\\\b\\\\xC3\",\"keyEscaped\":true}\n");
    EXPECT_EQ(Json::parse(Dump(document))["key"], "a\\xFF\\\\b\\xC3");
}

TEST(ToolJson, EveryByteGivesAValidDocument) {
    for (int byte = 1; byte < 256; ++byte) {
        Json document;
        AddText(document, "key", std::string("x") + static_cast<char>(byte));
        EXPECT_TRUE(Json::accept(Dump(document))) << byte;
        EXPECT_EQ(document.contains("keyEscaped"), byte >= 0x80) << byte;
    }
}

TEST(ToolJson, MembersKeepTheirOrder) {
    Json document;
    document["z"] = 1;
    document["a"] = 2;
    EXPECT_EQ(Dump(document), "{\"z\":1,\"a\":2}\n");
}

TEST(ToolJson, AListIsOneDocumentWithHeadEntriesAndTail) {
    const std::string text = Written({{"bucket", "b"}}, {{{"n", 1}}, {{"n", 2}}}, {{"count", 2}});
    EXPECT_EQ(text, "{\"bucket\":\"b\",\"objects\":[\n{\"n\":1},\n{\"n\":2}\n],\"count\":2}\n");
    EXPECT_TRUE(Json::accept(text));
}

TEST(ToolJson, AnEmptyListIsADocumentToo) {
    EXPECT_EQ(Written({{"bucket", "b"}}, {}, {{"count", 0}}),
              "{\"bucket\":\"b\",\"objects\":[],\"count\":0}\n");
    EXPECT_EQ(Written(Json::object(), {}, Json::object()), "{\"objects\":[]}\n");
}

TEST(ToolJson, SizesPastTheRangeOfSignedNumbersStay) {
    EXPECT_EQ(Dump({{"size", 18446744073709551615U}}), "{\"size\":18446744073709551615}\n");
}

}  // namespace
}  // namespace Mirqos::Tool
