#include "log/dbg/FileVersion.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using LOGUTILS::FileVersion;
using LOGUTILS::ReadFileVersion;

void Append(std::string& bytes, std::uint32_t value, std::size_t size) {
    for (std::size_t n = 0; n < size; ++n) {
        bytes += static_cast<char>(value >> 8 * n & 0xFF);
    }
}

/// A version resource as compilers make it: the header, its key, padding and the fixed part.
std::string Resource(std::uint32_t signature = 0xFEEF04BD) {
    std::string bytes;
    Append(bytes, 92, 2);  // the length of all of it
    Append(bytes, 52, 2);  // and of the fixed part
    Append(bytes, 0, 2);   // which is binary
    for (const char c : std::string_view("VS_VERSION_INFO")) {
        Append(bytes, static_cast<unsigned char>(c), 2);
    }
    Append(bytes, 0, 2);
    Append(bytes, 0, 2);  // padding to a multiple of 4
    Append(bytes, signature, 4);
    Append(bytes, 0x00010000, 4);  // version of the structure
    Append(bytes, 0x00020003, 4);  // file version 2.3
    Append(bytes, 0xFFFE0005, 4);  // .65534.5
    Append(bytes, 0x000A000B, 4);  // product version 10.11.12.13, which is not asked for
    Append(bytes, 0x000C000D, 4);
    for (int n = 0; n < 7; ++n) {
        Append(bytes, 0x55555555, 4);  // flags, system, type, date
    }
    return bytes;
}

/// Reads from a block of exactly that size, so that a sanitizer sees a read beyond it.
std::optional<FileVersion> Read(std::string_view bytes) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    return ReadFileVersion({exact.data(), exact.size()});
}

TEST(FileVersion, TheFixedPartsFileVersionIsRead) {
    ASSERT_EQ(Resource().size(), 92u);
    const auto version = Read(Resource());
    ASSERT_TRUE(version.has_value());
    EXPECT_EQ(version->m_dwMost, 0x00020003u);
    EXPECT_EQ(version->m_dwLeast, 0xFFFE0005u);
}

TEST(FileVersion, AResourceIsReadOnceItHoldsTheFileVersionHoweverItIsCut) {
    const std::string whole = Resource();
    constexpr std::size_t behindTheVersion = 56;
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        EXPECT_EQ(Read(std::string_view(whole).substr(0, size)).has_value(),
                  size >= behindTheVersion)
            << size;
    }
}

TEST(FileVersion, WithoutTheSignatureThereIsNone) {
    for (const std::uint32_t signature : {0u, 0xFEEF04BCu, 0xBD04EFFEu, 0xFEEF0000u, 0x000004BDu}) {
        EXPECT_FALSE(Read(Resource(signature)).has_value()) << signature;
    }
    EXPECT_FALSE(Read(std::string(92, '\0')).has_value());
}

TEST(FileVersion, WhatFollowsTheFixedPartDoesNotMatter) {
    const auto version = Read(Resource() + std::string(1000, '\xFF'));
    ASSERT_TRUE(version.has_value());
    EXPECT_EQ(version->m_dwLeast, 0xFFFE0005u);
}

}  // namespace
