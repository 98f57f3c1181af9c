#pragma once

#include <string>
#include <string_view>

namespace Mirqos::Tool {

/// An address of the form s3://bucket/key.
struct ObjectUrl {
    std::string bucket;
    /// Everything after the slash behind the bucket, to the letter: slashes, blanks, "%", "+", "?"
    /// and "#" have no meaning in it. 1 to 1024 bytes of UTF-8, or empty for a bucket's address.
    std::string key;

    /// As the user wrote it, safe to show.
    std::string Shown() const;
};

/// What is wrong with a text that is to be a key, which may be empty here; empty where nothing is.
std::string FaultOfKey(std::string_view key);

/// The address of an object. Throws Failure (Usage) that says what is wrong and, because an address
/// of the wrong form may hold anything, does not repeat it.
ObjectUrl ParseObjectUrl(std::string_view text);

/// The address of a bucket: s3://bucket, with or without a slash at the end.
ObjectUrl ParseBucketUrl(std::string_view text);

/// The address of a bucket and what keys in it have to begin with, which may be empty.
ObjectUrl ParsePrefixUrl(std::string_view text);

}  // namespace Mirqos::Tool
