#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace LOGUTILS {

/// The file version of an executable or library.
struct FileVersion {
    std::uint32_t m_dwMost = 0;   ///< major in the high, minor in the low 16 bits
    std::uint32_t m_dwLeast = 0;  ///< build in the high, revision in the low 16 bits
};

/// Reads the fixed part of a version resource (VS_VERSIONINFO); nothing when it is cut or does not
/// carry the signature of one.
std::optional<FileVersion> ReadFileVersion(std::string_view resource);

}  // namespace LOGUTILS
