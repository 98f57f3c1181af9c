#pragma once

// The SDK's own headers declare members that Windows headers rename by macro; whichever came first,
// the names are the SDK's from here on.
#include "platform/undo_windows_macros.h"

// clang-format off
#include <aws/core/Aws.h>
#include <aws/core/auth/AWSCredentials.h>
#include <aws/core/client/ClientConfiguration.h>
#include <aws/core/utils/Array.h>
#include <aws/core/utils/memory/stl/AWSString.h>
#include <aws/s3/S3Client.h>
// clang-format on

#include <cstdint>

namespace Mirqos {

/// The status that the boundary reports for an error: the SDK's number of its type. One type has
/// the number 0, which hosts take for a success: as an unknown error it stays a failure.
template <class Error>
int32_t StatusOfError(const Error& error) {
    const auto nType = static_cast<int32_t>(error.GetErrorType());
    return nType != 0 ? nType : static_cast<int32_t>(Aws::S3::S3Errors::UNKNOWN);
}

/// The same for a failed outcome.
template <class Outcome>
int32_t StatusOf(const Outcome& outcome) {
    return StatusOfError(outcome.GetError());
}

/// Names the library's allocations to the SDK's memory system.
inline constexpr char kAllocationTag[] = "MIRQOS";

}  // namespace Mirqos
