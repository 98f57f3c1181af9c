#include "log/dbg/win32/MachineFacts.h"

#include <iterator>

#include "log/dbg/InstallKinds.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "log/dbg/win32/ProductInstall.h"
#include "log/dbg/win32/WindowsCalls.h"

namespace LOGUTILS {
namespace {

constexpr std::size_t kComputerNameRoom = 128;

// Where no component of the product is installed, its programs carry its version.
ProductVersion VersionOfExecutable() {
    const FileVersion file = VersionOfModule(nullptr).value_or(FileVersion{});
    return {file.m_dwMost >> 16, file.m_dwMost & 0xFFFF, file.m_dwLeast >> 8 & 0xFF};
}

ProductVersion VersionOfProduct(unsigned nInstallKinds) {
    const unsigned nKind = ReadComponentKind(nInstallKinds);
    if (nKind == kNoComponent || nKind == kWindowsPe) {
        return VersionOfExecutable();
    }
    return ReadProductVersion(nKind).value_or(ProductVersion{});
}

WideString ComputerName() {
    wchar_t szName[kComputerNameRoom] = {};
    auto dwRoom = static_cast<DWORD>(std::size(szName));
    return Windows().getComputerName(szName, &dwRoom) ? WideString(szName) : WideString();
}

// The extended record begins like the basic one, which old systems know alone.
bool QueryVersion(OSVERSIONINFOEXW& version) {
    auto* const pVersion = reinterpret_cast<OSVERSIONINFOW*>(&version);
    version.dwOSVersionInfoSize = sizeof(OSVERSIONINFOEXW);
    if (Windows().getVersion(pVersion)) {
        return true;
    }
    version.dwOSVersionInfoSize = sizeof(OSVERSIONINFOW);
    return Windows().getVersion(pVersion) != FALSE;
}

const char* Platform() {
    SYSTEM_INFO system = {};
    Windows().getNativeSystemInfo(&system);
    switch (system.wProcessorArchitecture) {
        case PROCESSOR_ARCHITECTURE_INTEL:
            return "X86";
        case PROCESSOR_ARCHITECTURE_AMD64:
            return "X64";
        case PROCESSOR_ARCHITECTURE_IA64:
            return "IA64";
        default:
            return "Unknown";
    }
}

}  // namespace

SummaryFacts ReadSummaryFacts(unsigned nInstallKinds) {
    SummaryFacts facts;
    facts.m_version = VersionOfProduct(nInstallKinds);
    facts.m_computerName = ComputerName();
    OSVERSIONINFOEXW version = {};
    if (QueryVersion(version)) {
        facts.m_nSystemMajor = static_cast<int>(version.dwMajorVersion);
        facts.m_nSystemMinor = static_cast<int>(version.dwMinorVersion);
    }
    facts.m_pszPlatform = Platform();
    return facts;
}

}  // namespace LOGUTILS
