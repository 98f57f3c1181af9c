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

/// The status that the boundary reports for a failed outcome: the SDK's number of its error type.
template <class Outcome>
int32_t StatusOf(const Outcome& outcome) {
    return static_cast<int32_t>(outcome.GetError().GetErrorType());
}

/// Names the library's allocations to the SDK's memory system.
inline constexpr char kAllocationTag[] = "MIRQOS";

}  // namespace Mirqos
