#pragma once

#include <cstdint>
#include <string>

namespace Mirqos::Tool {

/// What the S3 SDK answers when the service's code is none that it knows.
constexpr std::int32_t kStatusUnknown = 100;

/// What a question without a body is answered with where there is no such thing.
constexpr std::int32_t kStatusNotFound = 16;

/// What nobody answered gives, after every retry.
constexpr std::int32_t kStatusNoAnswer = 99;

/// Whether a status is S3's own: no such bucket, no such key and the like. Which number means which
/// differs between generations of the SDK; the numbers below are the same in all of them.
bool IsS3Status(std::int32_t status);

/// What a status means and what usually causes it, in a few words; never empty.
std::string ExplainStatus(std::int32_t status);

}  // namespace Mirqos::Tool
