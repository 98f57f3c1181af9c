#include "tools/mirqos/Endpoint.h"

#include <gtest/gtest.h>

#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {
namespace {

TEST(ToolEndpoint, TheSchemeIsTakenOffAndRemembered) {
    const Endpoint http = ParseEndpoint("http://127.0.0.1:8000");
    EXPECT_EQ(http.host, "127.0.0.1:8000");
    EXPECT_EQ(http.https, false);
    const Endpoint https = ParseEndpoint("HTTPS://s3.example.com/");
    EXPECT_EQ(https.host, "s3.example.com");
    EXPECT_EQ(https.https, true);
}

TEST(ToolEndpoint, WithoutASchemeNothingIsSaidAboutIt) {
    const Endpoint endpoint = ParseEndpoint("storage.example.com:9000");
    EXPECT_EQ(endpoint.host, "storage.example.com:9000");
    EXPECT_FALSE(endpoint.https);
}

TEST(ToolEndpoint, AddressesOfVersionSixNeedBrackets) {
    EXPECT_EQ(ParseEndpoint("http://[::1]:8000").host, "[::1]:8000");
    EXPECT_EQ(ParseEndpoint("[fe80::1]").host, "[fe80::1]");
    EXPECT_THROW(ParseEndpoint("::1"), Failure);
}

TEST(ToolEndpoint, WhatIsNoHostIsRefusedAndNotRepeated) {
    for (const char* const wrong :
         {"", "http://", "http:///", "host:0", "host:65536", "host:", "host:80x", "host/path",
          "ftp://host", "user:topsecret@host", "http://topsecret@host:80", "ho st", "host?q", "[]",
          "host//"}) {
        try {
            ParseEndpoint(wrong);
            FAIL() << wrong;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Code(), ExitCode::Usage);
            EXPECT_EQ(std::string(failure.what()).find("topsecret"), std::string::npos);
        }
    }
}

}  // namespace
}  // namespace Mirqos::Tool
