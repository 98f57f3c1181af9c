#include "tools/mirqos/Manifest.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Sha256.h"

namespace Mirqos::Tool {
namespace {

FileRecord RecordOf(std::uint64_t size, FileTime modified) {
    FileRecord record;
    record.state = {size, modified};
    record.sha256 = Sha256Of(std::to_string(size));
    return record;
}

Manifest Example() {
    Manifest manifest;
    manifest.files["a/b.txt"] = RecordOf(5, 17'000'000'000'000'000);
    manifest.files["before 1970"] = RecordOf(0, -1);
    manifest.files["\u00e4 \"quoted\" \\ back\nline"] =
        RecordOf(std::numeric_limits<std::uint64_t>::max(), std::numeric_limits<FileTime>::min());
    manifest.files["gone"] = RecordOf(7, 1);
    manifest.files["gone"].deleted = true;
    manifest.files["new"] = RecordOf(8, 2);
    manifest.files["new"].recent = true;
    manifest.files["replaced"] = RecordOf(9, 3);
    manifest.files["replaced"].unsure = true;
    manifest.emptyFolders = {"d", "e/f"};
    manifest.runEnded = false;
    return manifest;
}

/// Gives changed lines the end that belongs to them.
std::string Sealed(const std::string& lines, std::size_t count) {
    return lines + R"({"lines":)" + std::to_string(count) + R"(,"sha256":")" + Sha256Of(lines) +
           "\"}\n";
}

constexpr const char* kHead = R"({"format":"mirqos-manifest","version":1,"runEnded":true})"
                              "\n";

/// How the parser refuses it; Success where it does not.
ExitCode Refusal(const std::string& text) {
    try {
        ParseManifest(text);
    } catch (const Failure& failure) {
        return failure.Code();
    }
    return ExitCode::Success;
}

TEST(ToolManifest, ComesBackAsItWas) {
    EXPECT_EQ(ParseManifest(FormatManifest(Example())), Example());
    EXPECT_EQ(ParseManifest(FormatManifest(Manifest())), Manifest());
}

TEST(ToolManifest, IsWrittenAsItIsDocumented) {
    Manifest manifest;
    manifest.files["a"] = RecordOf(5, 17);
    manifest.emptyFolders = {"d"};
    const std::string lines = std::string(kHead) +
                              R"({"path":"a","size":5,"modified":17,"sha256":")" + Sha256Of("5") +
                              "\"}\n" + R"({"emptyFolder":"d"})" + "\n";
    EXPECT_EQ(FormatManifest(manifest), Sealed(lines, 2));
}

TEST(ToolManifest, AnyByteCutOffOrChangedIsNoticed) {
    const std::string whole = FormatManifest(Example());
    for (std::size_t length = 0; length < whole.size(); ++length) {
        ASSERT_EQ(Refusal(whole.substr(0, length)), ExitCode::OperationFailed) << length;
    }
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string changed = whole;
        changed[at] = static_cast<char>(changed[at] ^ 1);
        ASSERT_EQ(Refusal(changed), ExitCode::OperationFailed) << at;
    }
    EXPECT_EQ(Refusal(whole + whole), ExitCode::OperationFailed);
}

TEST(ToolManifest, WhatNobodyWroteIsRefusedAlsoWithTheRightDigest) {
    const std::string digest = Sha256Of("5");
    const std::string good = R"({"path":"a","size":5,"modified":17,"sha256":")" + digest + "\"}\n";
    ASSERT_EQ(Refusal(Sealed(kHead + good, 1)), ExitCode::Success);
    for (const std::string& line : std::initializer_list<std::string>{
             good + good, "\n", "[]\n", "{}\n", "5\n", "{\n",
             R"({"path":5,"size":5,"modified":17,"sha256":")" + digest + "\"}\n",
             R"({"path":"a","size":-5,"modified":17,"sha256":")" + digest + "\"}\n",
             R"({"path":"a","size":"5","modified":17,"sha256":")" + digest + "\"}\n",
             R"({"path":"a","size":5.5,"modified":17,"sha256":")" + digest + "\"}\n",
             R"({"path":"a","size":5,"sha256":")" + digest + "\"}\n",
             R"({"path":"a","size":5,"modified":17,"sha256":"abc"})" + std::string("\n"),
             R"({"path":"a","size":5,"modified":17,"sha256":")" + digest +
                 "\",\"deleted\":\"yes\"}\n",
             R"({"path":"a","size":5,"modified":17,"sha256":")" + digest + "\",\"unsure\":1}\n",
             R"({"emptyFolder":5})" + std::string("\n"), std::string(100000, '[') + "\n"}) {
        const auto lines = static_cast<std::size_t>(line == good + good ? 2 : 1);
        EXPECT_EQ(Refusal(Sealed(kHead + line, lines)), ExitCode::OperationFailed)
            << line.substr(0, 80);
    }
    EXPECT_EQ(Refusal(Sealed(good, 0)), ExitCode::OperationFailed);
    EXPECT_EQ(Refusal(Sealed("", 0)), ExitCode::OperationFailed);
}

TEST(ToolManifest, AnotherVersionIsToldFromDamage) {
    const std::string head = R"({"format":"mirqos-manifest","version":2})"
                             "\n";
    try {
        ParseManifest(Sealed(head, 0));
        FAIL() << "was taken";
    } catch (const Failure& failure) {
        EXPECT_NE(std::string(failure.what()).find("version"), std::string::npos);
    }
}

}  // namespace
}  // namespace Mirqos::Tool
