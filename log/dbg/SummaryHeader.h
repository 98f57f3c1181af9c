#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "log/dbg/WideText.h"

namespace LOGUTILS {

struct ProductVersion {
    std::uint32_t m_dwMajor = 0;
    std::uint32_t m_dwMinor = 0;
    std::uint32_t m_dwUpdate = 0;  ///< 0: none
};

/// What the header of a log file tells of the machine.
struct SummaryFacts {
    ProductVersion m_version;
    WideString m_computerName;
    int m_nSystemMajor = -1;  ///< -1 where the system did not say
    int m_nSystemMinor = -1;
    const char* m_pszPlatform = "Unknown";  ///< "X86", "X64", "IA64" or "Unknown"
};

/// The line that names the columns; it carries no prefix.
WideString SummaryColumns();
/// The lines after it, each of which follows a prefix.
std::vector<WideString> SummaryLines(const SummaryFacts& facts);

}  // namespace LOGUTILS
