#include "tools/mirqos/ObjectUrl.h"

#include <algorithm>

#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

constexpr std::string_view kScheme = "s3://";
// what S3 allows a key; a bucket of the oldest kind may have 255 characters
constexpr std::size_t kLongestKey = 1024;
constexpr std::size_t kLongestBucket = 255;

bool IsBucketCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_';
}

/// The service judges names in detail. Here only what could change the request's host or path is
/// refused.
void CheckBucket(std::string_view bucket) {
    if (bucket.empty()) {
        throw Failure(ExitCode::Usage, "the address names no bucket; it has to begin s3://bucket");
    }
    const bool onlyDots = bucket.find_first_not_of('.') == std::string_view::npos;
    if (bucket.size() > kLongestBucket || onlyDots ||
        !std::all_of(bucket.begin(), bucket.end(), IsBucketCharacter)) {
        throw Failure(ExitCode::Usage,
                      "the address does not name a valid bucket: up to 255 letters, digits, '-', "
                      "'.' and '_'");
    }
}

ObjectUrl Split(std::string_view text) {
    if (text.substr(0, kScheme.size()) != kScheme) {
        throw Failure(ExitCode::Usage, "an address has to begin with s3://, as in s3://bucket/key");
    }
    text.remove_prefix(kScheme.size());
    const std::size_t slash = text.find('/');
    ObjectUrl url;
    url.bucket = text.substr(0, slash);
    if (slash != std::string_view::npos) {
        url.key = text.substr(slash + 1);
    }
    CheckBucket(url.bucket);
    return url;
}

}  // namespace

std::string ObjectUrl::Shown() const {
    std::string shown(kScheme);
    shown += bucket;
    if (!key.empty()) {
        shown += '/' + Printable(key);
    }
    return shown;
}

std::string FaultOfKey(std::string_view key) {
    if (key.size() > kLongestKey) {
        return "the key is longer than 1024 bytes";
    }
    if (!IsUtf8(key)) {
        return "the key is not valid UTF-8";
    }
    // the library takes texts that end with one
    return key.find('\0') == std::string_view::npos ? "" : "the key holds a NUL";
}

ObjectUrl ParseObjectUrl(std::string_view text) {
    ObjectUrl url = ParsePrefixUrl(text);
    if (url.key.empty()) {
        throw Failure(ExitCode::Usage,
                      "the address names a bucket only; an object is s3://bucket/key");
    }
    return url;
}

ObjectUrl ParseBucketUrl(std::string_view text) {
    ObjectUrl url = Split(text);
    if (!url.key.empty()) {
        throw Failure(ExitCode::Usage, "the address names an object; a bucket is s3://bucket");
    }
    return url;
}

ObjectUrl ParsePrefixUrl(std::string_view text) {
    ObjectUrl url = Split(text);
    if (const std::string fault = FaultOfKey(url.key); !fault.empty()) {
        throw Failure(ExitCode::Usage, fault);
    }
    return url;
}

}  // namespace Mirqos::Tool
