#pragma once

#include <string_view>
#include <type_traits>

/// Which object keys reach a service as they are. An installed SDK drops the empty parts of a path,
/// the HTTP client below it follows the parts "." and ".." as in a path of files, and a carriage
/// return in a document of the SDK is a line feed to its reader: a request would be about another
/// object, or about the bucket.
namespace Mirqos {

/// Whether the SDK with these options does so: one does that leaves the choice of the HTTP client
/// to its host.
template <class Options, class = void>
struct ChangesKeys : std::false_type {};
template <class Options>
struct ChangesKeys<Options, std::void_t<decltype(Options::httpOptions)>> : std::true_type {};

/// "a/" has no empty part: the slash at the end stays.
inline bool HasEmptyPart(std::string_view key) {
    return key.substr(0, 1) == "/" || key.find("//") != key.npos;
}

inline bool HasDotPart(std::string_view key) {
    for (;;) {
        const auto slash = key.find('/');
        const std::string_view part = key.substr(0, slash);
        if (part == "." || part == "..") {
            return true;
        }
        if (slash == key.npos) {
            return false;
        }
        key.remove_prefix(slash + 1);
    }
}

template <class Options>
bool IsKeptInPath(std::string_view key) {
    return !ChangesKeys<Options>::value || !(HasEmptyPart(key) || HasDotPart(key));
}

template <class Options>
bool IsKeptAsBucket(std::string_view name) {
    return !ChangesKeys<Options>::value || (name.find('/') == name.npos && !HasDotPart(name));
}

/// For the source of a copy, "[/]BUCKET/KEY". It goes in a header, where nothing follows dots.
template <class Options>
bool IsKeptAsCopySource(std::string_view source) {
    return !ChangesKeys<Options>::value || source.find("//") == source.npos;
}

/// For a key in a request's XML document.
template <class Options>
bool IsKeptInDocument(std::string_view key) {
    return !ChangesKeys<Options>::value || key.find('\r') == key.npos;
}

}  // namespace Mirqos
