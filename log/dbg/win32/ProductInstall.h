#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "log/dbg/InstallKinds.h"
#include "log/dbg/SummaryHeader.h"
#include "log/dbg/WideText.h"
#include "log/dbg/win32/CriticalSection.h"

/// What the registry says of the product on this machine. In Windows PE (kWindowsPe) no key of the
/// product is looked at.
namespace LOGUTILS {

// These read the registry anew at each call.

/// The set of installed components, or kWindowsPe alone.
unsigned ReadInstallKinds();
InstallPaths ReadInstallPaths();

/// The version of the installed product as the component of `nKind` records it; nothing when there
/// is no record. A record without an update number is of a release without updates.
std::optional<ProductVersion> ReadProductVersion(unsigned nKind);

/// The component that this library belongs to, after promotion (PromotedKind).
unsigned ReadComponentKind(unsigned nInstallKinds);

// These read it once in a process. Any thread may call them.

/// The level that the registry sets for an executable or library of that file name; -1 when it sets
/// none. Read once for each name.
std::int32_t RegistryLevel(const WideString& name, unsigned nInstallKinds);

/// Whether the option DisableGlobalOption lists that executable: then it ignores the log path that
/// all modules share.
bool IsGlobalPathDisabled(const WideString& executableName, unsigned nInstallKinds);

/// The levels that were read, by name; what RegistryLevel keeps for the process. Any thread.
class RegistryLevels {
public:
    std::int32_t LevelOf(const WideString& name, unsigned nInstallKinds);

private:
    CriticalSection m_cs;
    std::map<WideString, std::int32_t> m_levels;
};

/// The executables that the option DisableGlobalOption lists, as it stood when this was made; what
/// IsGlobalPathDisabled keeps for the process.
class DisableGlobalOption {
public:
    explicit DisableGlobalOption(unsigned nInstallKinds);
    /// Whether it lists that executable, letter case aside.
    bool Lists(const WideString& executableName) const;

private:
    std::vector<WideString> m_names;
};

}  // namespace LOGUTILS
