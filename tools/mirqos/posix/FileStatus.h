#pragma once

#include <sys/stat.h>

#include <ctime>
#include <string>

#include "tools/mirqos/LocalFile.h"

namespace Mirqos::Tool {

FileState StateOf(const struct stat& info);
timespec TimespecOf(FileTime time);

/// Throws Failure (LocalFile): "cannot `doing` 'name'" and what the system says of `error`.
[[noreturn]] void FailWith(int error, const std::string& doing, const std::string& name);

}  // namespace Mirqos::Tool
