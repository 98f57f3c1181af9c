// The version resource of a library or executable.
#include "log/dbg/FileVersion.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "tests/fuzz/Require.h"

namespace {

using Mirqos::Test::Require;

constexpr std::size_t kSignatureAt = 40;
constexpr std::size_t kVersionAt = 48;
constexpr std::size_t kVersionEnd = 56;

std::uint32_t NumberAt(const std::uint8_t* bytes) {
    return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
           std::uint32_t{bytes[3]} << 24;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto version =
        LOGUTILS::ReadFileVersion(std::string_view(reinterpret_cast<const char*>(data), size));
    const bool expected =
        size >= kVersionEnd && std::memcmp(data + kSignatureAt, "\xBD\x04\xEF\xFE", 4) == 0;
    Require(version.has_value() == expected, "a version needs the signature and all its bytes");
    if (version) {
        Require(version->m_dwMost == NumberAt(data + kVersionAt) &&
                    version->m_dwLeast == NumberAt(data + kVersionAt + 4),
                "it is the one that stands there");
    }
    return 0;
}
