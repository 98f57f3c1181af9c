#pragma once

#include <optional>

#include "log/dbg/FileVersion.h"
#include "log/dbg/WideText.h"

namespace LOGUTILS {

/// The full path of this library, found from an address inside it; empty when the system does not
/// say.
WideString LibraryPath();
/// The full path of the running executable.
WideString ExecutablePath();

/// Their file names; empty when the path has no "\".
WideString LibraryName();
WideString ExecutableName();

/// The file version of a loaded module, by its file name; that of the executable when `pszName` is
/// null. Nothing when it carries none.
std::optional<FileVersion> VersionOfModule(const wchar_t* pszName);

}  // namespace LOGUTILS
