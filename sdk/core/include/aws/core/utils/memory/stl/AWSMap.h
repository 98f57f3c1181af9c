#pragma once

#include <aws/core/utils/memory/stl/AWSAllocator.h>

#include <functional>
#include <map>
#include <utility>

namespace Aws {

template <typename K, typename V>
using Map = std::map<K, V, std::less<K>, Allocator<std::pair<const K, V>>>;

}  // namespace Aws
