#pragma once

#include <cstdint>
#include <optional>

#include "log/dbg/InstallKinds.h"
#include "log/dbg/SummaryHeader.h"
#include "log/dbg/WideText.h"

/// What the registry says of the product on this machine. Reads it anew at each call; CLogConfig
/// and the level cache keep what a process needs more than once.
namespace LOGUTILS {

/// The set of installed components, or kWindowsPe alone.
unsigned ReadInstallKinds();
InstallPaths ReadInstallPaths();

/// The version of the installed product as the component of `nKind` records it; nothing when there
/// is no record.
std::optional<ProductVersion> ReadProductVersion(unsigned nKind);

/// The component that this library belongs to, after promotion (PromotedKind).
unsigned ReadComponentKind(unsigned nInstallKinds);

/// The level that the registry sets for an executable or library of that file name; -1 when it sets
/// none. Read once for each name and process. Any thread.
std::int32_t RegistryLevel(const WideString& name, unsigned nInstallKinds);

/// Whether the option DisableGlobalOption lists that executable: then it ignores the log path that
/// all modules share. The option is read once in a process. Any thread.
bool IsGlobalPathDisabled(const WideString& executableName);

}  // namespace LOGUTILS
