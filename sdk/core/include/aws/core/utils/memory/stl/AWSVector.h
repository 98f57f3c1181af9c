#pragma once

#include <aws/core/utils/memory/stl/AWSAllocator.h>

#include <vector>

namespace Aws {

template <typename T>
using Vector = std::vector<T, Allocator<T>>;

}  // namespace Aws
