#pragma once

#include <string>
#include <string_view>

namespace Mirqos::Tool {

// How files of a folder and keys under a prefix belong together. A path is relative to the folder,
// in UTF-8, with "/" between its parts on every system.

/// The part of the folder, and of the prefix, that belongs to the program itself.
constexpr std::string_view kOwnFolder = ".mirqos";

/// Whether the path is that, or lies in it.
bool IsOwn(std::string_view path);

/// What every key of the backup begins with: the prefix with a slash behind it, or nothing.
std::string KeyBase(const std::string& prefix);

/// Where under the base the manifest lies.
std::string ManifestKey(const std::string& base);

/// What is wrong with a path of a file to back up under this base; empty where nothing is.
std::string FaultOfSource(const std::string& base, const std::string& path);

/// Which names a system's files can have.
enum class NameRules { Posix, Windows };
NameRules OwnNameRules();

/// Why the system takes the name of a file or folder for something else than one of that name.
/// Empty where it does not.
std::string FaultOfName(std::string_view name, NameRules rules);

/// What is wrong with a path under which something is to be restored: it would leave the folder, or
/// a part of it has a fault. Empty where nothing is.
std::string FaultOfTarget(std::string_view path, NameRules rules);

}  // namespace Mirqos::Tool
