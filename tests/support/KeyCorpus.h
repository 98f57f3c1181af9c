#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Mirqos::Test {

/// The most bytes that a service takes for a key.
inline constexpr std::size_t kLongestKey = 1024;

/// Object keys that something on the way to a service might change, refuse or take for another: an
/// encoding done twice or not at all, a path made tidy, blanks trimmed, characters composed, a
/// length cut. All differ, and a service keeps each. Without those that the SDK does not keep.
std::vector<std::string> KeyCorpus();

/// Whether the SDK in use sends the key as it is. An installed one drops its empty parts, and
/// libcurl follows the parts "." and ".." below it.
bool IsKeptBySdk(const std::string& key);

/// Those of `keys` that still differ when "@" is sent as "+": of two that fall together the first.
std::vector<std::string> DistinctWhenSubstituted(const std::vector<std::string>& keys);

/// Keys that a service may refuse: they are too long or no UTF-8.
std::vector<std::string> ImproperKeys();

/// The key as the service of a provider type that substitutes gets it, "+" for each "@".
std::string WithPlusForAt(std::string key);

/// Whether XML 1.0 can hold the key, so that a request's document can name it.
bool FitsXml(const std::string& key);

}  // namespace Mirqos::Test
