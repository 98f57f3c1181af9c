#pragma once

#include <cstdint>

/// Statuses of the store's own, beside the SDK's error numbers. 14 is also the platform's number
/// for a lack of memory.
namespace Mirqos {

inline constexpr int32_t kOutOfMemory = 14;
inline constexpr int32_t kUnknownError = -1;

}  // namespace Mirqos
