#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "tools/mirqos/LocalFile.h"

namespace Mirqos::Tool {

/// The name as system calls take it. A long one gets the prefix that lifts their limit of 260
/// characters.
std::wstring SystemPath(const std::string& name);

/// Nothing where the system does not tell; GetLastError says why.
std::optional<FileState> StateOf(HANDLE file);

FileTime FileTimeOf(const FILETIME& time);
FILETIME SystemTimeOf(FileTime time);

/// Throws Failure (LocalFile): "cannot `doing` 'name'" and what the system says of `error`.
[[noreturn]] void FailWith(DWORD error, const std::string& doing, const std::string& name);

}  // namespace Mirqos::Tool
