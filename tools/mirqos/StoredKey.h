#pragma once

#include <cstdint>
#include <string>

namespace Mirqos::Tool {

bool IsGoogleCloudStorage(std::int32_t provider);

/// Some kinds of provider store "@" in keys as "+", and listings of theirs come back with "@" for
/// every "+". Most of the library's operations do so by themselves; for those that pass a key or a
/// prefix on as it is (listings, multi-object delete, tags, lifecycle) this gives the name that the
/// service knows.
std::string StoredKey(std::int32_t provider, std::string key);

/// The other way: how a key that the service gave is shown everywhere else.
std::string ListedKey(std::int32_t provider, std::string key);

}  // namespace Mirqos::Tool
