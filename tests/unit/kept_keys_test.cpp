#include "store/KeptKeys.h"

#include <gtest/gtest.h>

namespace {

struct OptionsOfAnSdkThatChangesKeys {
    struct {
    } httpOptions;
};
struct OptionsOfAnSdkThatDoesNot {};

bool IsKeptInPath(std::string_view key) {
    return Mirqos::IsKeptInPath<OptionsOfAnSdkThatChangesKeys>(key);
}
bool IsKeptAsCopySource(std::string_view source) {
    return Mirqos::IsKeptAsCopySource<OptionsOfAnSdkThatChangesKeys>(source);
}
bool IsKeptAsBucket(std::string_view name) {
    return Mirqos::IsKeptAsBucket<OptionsOfAnSdkThatChangesKeys>(name);
}
bool IsKeptInDocument(std::string_view key) {
    return Mirqos::IsKeptInDocument<OptionsOfAnSdkThatChangesKeys>(key);
}

TEST(KeptKeys, EmptyPartsAreLostFromPaths) {
    for (const char* key : {"/", "//", "/a", "//a", "a//b", "a//", "a///b", "a/b//c", "http://h"}) {
        EXPECT_FALSE(IsKeptInPath(key)) << key;
    }
}

TEST(KeptKeys, DotsThatAreWholePartsAreFollowedInPaths) {
    for (const char* key :
         {".", "..", "./", "../", "./a", "../a", "a/.", "a/..", "a/./b", "a/../b", "a/b/.."}) {
        EXPECT_FALSE(IsKeptInPath(key)) << key;
    }
}

TEST(KeptKeys, EveryOtherKeyIsKeptInPaths) {
    for (const char* key : {"a", "a/", "a/b", "a/b/", "...", ".a", "a.", "..a", "a..", ". .",
                            "a/.../b", "a/.b/c.", "\\", " ", "\r", "%2F%2F", "..%2F", "?/#"}) {
        EXPECT_TRUE(IsKeptInPath(key)) << key;
    }
}

TEST(KeptKeys, CopySourcesLoseEmptyPartsButNoDots) {
    for (const char* source :
         {"bucket//a", "bucket//", "bucket/a//b", "//bucket/a", "/bucket//a"}) {
        EXPECT_FALSE(IsKeptAsCopySource(source)) << source;
    }
    for (const char* source : {"bucket/a", "/bucket/a", "bucket/a/", "bucket/", "bucket/../a",
                               "bucket/.", "bucket/a/./b", "bucket/\r"}) {
        EXPECT_TRUE(IsKeptAsCopySource(source)) << source;
    }
}

TEST(KeptKeys, BucketsEndAtASlashAndDotsAreFollowed) {
    for (const char* name : {"a/b", "/", "a/", "/a", ".", ".."}) {
        EXPECT_FALSE(IsKeptAsBucket(name)) << name;
    }
    for (const char* name : {"a", "a.b", "..a", "a b", "a?b", "..."}) {
        EXPECT_TRUE(IsKeptAsBucket(name)) << name;
    }
}

TEST(KeptKeys, DocumentsLoseCarriageReturnsAndNothingElse) {
    for (const char* key : {"\r", "\r\n", "a\rb", "a\r"}) {
        EXPECT_FALSE(IsKeptInDocument(key)) << key;
    }
    for (const char* key : {"a", "\n", "\t", "//", "..", "&#13;", "<>"}) {
        EXPECT_TRUE(IsKeptInDocument(key)) << key;
    }
}

TEST(KeptKeys, AnSdkThatSendsWhatItIsGivenKeepsAll) {
    for (const char* key : {"/", "a//b", ".", "a/../b", "\r"}) {
        EXPECT_TRUE(Mirqos::IsKeptInPath<OptionsOfAnSdkThatDoesNot>(key)) << key;
        EXPECT_TRUE(Mirqos::IsKeptAsCopySource<OptionsOfAnSdkThatDoesNot>(key)) << key;
        EXPECT_TRUE(Mirqos::IsKeptInDocument<OptionsOfAnSdkThatDoesNot>(key)) << key;
        EXPECT_TRUE(Mirqos::IsKeptAsBucket<OptionsOfAnSdkThatDoesNot>(key)) << key;
    }
}

}  // namespace
