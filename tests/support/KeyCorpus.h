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

/// The others, which a store refuses: none where the SDK keeps every key.
std::vector<std::string> KeysNotKeptBySdk();

/// Whether the SDK in use sends the key as it is. An installed one drops its empty parts, and
/// libcurl follows the parts "." and ".." below it.
bool IsKeptBySdk(const std::string& key);

/// Whether the SDK in use writes the key into a document as it is. An installed one does not escape
/// carriage returns, and a reader takes them for line feeds.
bool IsKeptInDocumentsBySdk(const std::string& key);

/// Whether the SDK in use gives the key of a listing back. To the XML reader of an installed one a
/// text of nothing but blanks is none.
bool IsListedBySdk(const std::string& key);

/// Those of `keys` that still differ when "@" is sent as "+": of two that fall together the first.
std::vector<std::string> DistinctWhenSubstituted(const std::vector<std::string>& keys);

/// Keys that a service may refuse: they are too long or no UTF-8.
std::vector<std::string> ImproperKeys();

/// The key as the service of a provider type that substitutes gets it, "+" for each "@".
std::string WithPlusForAt(std::string key);

/// Whether a request's document can name the key: XML 1.0 can hold it, and the SDK keeps it there.
bool FitsXml(const std::string& key);

}  // namespace Mirqos::Test
