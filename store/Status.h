#pragma once

#include <cstdint>
#include <new>

/// Statuses of the store's own, beside the SDK's error numbers. 14 is also the platform's number
/// for a lack of memory.
namespace Mirqos {

inline constexpr int32_t kOutOfMemory = 14;
inline constexpr int32_t kUnknownError = -1;

/// The status of `step`, also where it runs out of memory: for what has to be followed by a
/// clean-up.
template <class Step>
int32_t StatusOrOutOfMemory(Step&& step) {
    try {
        return step();
    } catch (const std::bad_alloc&) {
        return kOutOfMemory;
    }
}

}  // namespace Mirqos
