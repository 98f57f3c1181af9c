#include "log/dbg/FileVersion.h"

#include <cstddef>

namespace LOGUTILS {
namespace {

// The fixed part follows three 16-bit numbers and the text "VS_VERSION_INFO", all aligned to 32
// bits.
constexpr std::size_t kFixedPart = 40;
constexpr std::size_t kMostOffset = kFixedPart + 8;
constexpr std::size_t kLeastOffset = kFixedPart + 12;
constexpr std::uint32_t kSignature = 0xFEEF04BD;

std::uint32_t NumberAt(std::string_view bytes, std::size_t nOffset) {
    std::uint32_t dwValue = 0;
    for (std::size_t n = 4; n > 0; --n) {
        dwValue = dwValue << 8 | static_cast<unsigned char>(bytes[nOffset + n - 1]);
    }
    return dwValue;
}

}  // namespace

std::optional<FileVersion> ReadFileVersion(std::string_view resource) {
    if (resource.size() < kLeastOffset + 4 || NumberAt(resource, kFixedPart) != kSignature) {
        return std::nullopt;
    }
    return FileVersion{NumberAt(resource, kMostOffset), NumberAt(resource, kLeastOffset)};
}

}  // namespace LOGUTILS
