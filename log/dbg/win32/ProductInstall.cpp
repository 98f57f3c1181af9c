#include "log/dbg/win32/ProductInstall.h"

#include <algorithm>
#include <mutex>

#include "log/dbg/LogConfigBlock.h"
#include "log/dbg/ProductVersionText.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "log/dbg/win32/Registry.h"

namespace LOGUTILS {
namespace {

constexpr wchar_t kProductKey[] = L"SOFTWARE\\Quorvane\\Halvestor";
constexpr wchar_t kEngineKey[] = L"SOFTWARE\\Quorvane\\Halvestor\\Engine";
constexpr wchar_t kManagementKey[] = L"SOFTWARE\\Quorvane\\Halvestor\\Management";

WideString Below(const wchar_t* pszKey, const wchar_t* pszName) {
    return WideString(pszKey) + L"\\" + pszName;
}

// Windows PE starts its shell from the command line of the set-up.
bool RunsInWindowsPe() {
    const std::optional<WideString> commandLine = RegistryText(L"SYSTEM\\Setup", L"CmdLine");
    return commandLine && commandLine->find(L"winpeshl.exe") != WideString::npos;
}

std::uint32_t ReadUpdateNumber(const WideString& key) {
    return RegistryNumber(key, L"UpdateVersionNumber").value_or(0);
}

std::optional<ProductVersion> ReadEngineVersion() {
    const WideString key = Below(kEngineKey, L"Version");
    const std::optional<std::uint32_t> major = RegistryNumber(key, L"Major");
    const std::optional<std::uint32_t> minor = RegistryNumber(key, L"Minor");
    if (!major || !minor) {
        return std::nullopt;
    }
    return ProductVersion{*major, *minor, ReadUpdateNumber(key)};
}

// One value carries major and minor: as text ("12.5") or, as in a version resource, as a number
// with the major version in its high and the minor one in its low 16 bits.
std::optional<ProductVersion> ReadManagementVersion() {
    const WideString key = Below(kManagementKey, L"Console");
    std::optional<ProductVersion> version;
    if (const std::optional<WideString> text = RegistryText(key, L"Version")) {
        version = ParseProductVersion(*text);
    } else if (const std::optional<std::uint32_t> number = RegistryNumber(key, L"Version")) {
        version = ProductVersion{*number >> 16, *number & 0xFFFF, 0};
    }
    if (version) {
        version->m_dwUpdate = ReadUpdateNumber(key);
    }
    return version;
}

const wchar_t* ComponentKey(unsigned nKind) {
    switch (nKind) {
        case kEngine:
            return kEngineKey;
        case kManagement:
            return kManagementKey;
        case kUpdateManager:
            return kProductKey;
        default:
            return nullptr;
    }
}

std::int32_t ReadLevel(const WideString& name, unsigned nInstallKinds) {
    const wchar_t* pszKey = ComponentKey(ReadComponentKind(nInstallKinds));
    if (pszKey == nullptr) {
        return kNoLevel;
    }
    const std::optional<std::uint32_t> level = RegistryNumber(Below(pszKey, L"Debug"), name);
    return level ? static_cast<std::int32_t>(*level) : kNoLevel;
}

}  // namespace

unsigned ReadInstallKinds() {
    if (RunsInWindowsPe()) {
        return kWindowsPe;
    }
    unsigned nKinds = kNoComponent;
    if (RegistryKeyExists(kEngineKey)) {
        nKinds |= kEngine | kUpdateManager;
    }
    if (RegistryKeyExists(kManagementKey)) {
        nKinds |= kManagement | kUpdateManager;
    }
    return nKinds;
}

InstallPaths ReadInstallPaths() {
    InstallPaths paths;
    paths.m_engine = RegistryText(Below(kEngineKey, L"InstallPath"), L"Path").value_or(L"");
    paths.m_management = RegistryText(kManagementKey, L"Path").value_or(L"");
    if (const std::optional<WideString> root = RegistryText(kProductKey, L"RootPath")) {
        paths.m_updateManager = UpdateManagerPath(*root);
    }
    return paths;
}

std::optional<ProductVersion> ReadProductVersion(unsigned nKind) {
    std::optional<ProductVersion> version;
    if (nKind == kEngine || nKind == kUpdateManager) {
        version = ReadEngineVersion();
    }
    if (nKind == kManagement || (nKind == kUpdateManager && !version)) {
        version = ReadManagementVersion();
    }
    return version;
}

unsigned ReadComponentKind(unsigned nInstallKinds) {
    if (nInstallKinds == kWindowsPe) {
        return kWindowsPe;
    }
    return PromotedKind(ComponentKindOf(LibraryPath(), nInstallKinds, ReadInstallPaths()),
                        nInstallKinds);
}

std::int32_t RegistryLevels::LevelOf(const WideString& name, unsigned nInstallKinds) {
    const std::lock_guard<CriticalSection> lock(m_cs);
    const auto known = m_levels.find(name);
    if (known != m_levels.end()) {
        return known->second;
    }
    return m_levels.emplace(name, ReadLevel(name, nInstallKinds)).first->second;
}

DisableGlobalOption::DisableGlobalOption(unsigned nInstallKinds) {
    if (nInstallKinds != kWindowsPe) {
        m_names = SplitAtBlanks(
            RegistryText(Below(kEngineKey, L"Debug"), L"DisableGlobalOption").value_or(L""));
    }
}

bool DisableGlobalOption::Lists(const WideString& executableName) const {
    return std::any_of(m_names.begin(), m_names.end(), [&](const WideString& name) {
        return EqualIgnoringCase(name, executableName);
    });
}

// Neither of the two statics is ever destroyed: the process may log until its very end.

std::int32_t RegistryLevel(const WideString& name, unsigned nInstallKinds) {
    static RegistryLevels& levels = *new RegistryLevels;
    return levels.LevelOf(name, nInstallKinds);
}

bool IsGlobalPathDisabled(const WideString& executableName, unsigned nInstallKinds) {
    static const DisableGlobalOption& option = *new DisableGlobalOption(nInstallKinds);
    return option.Lists(executableName);
}

}  // namespace LOGUTILS
