#pragma once

#include <aws/core/utils/memory/stl/AWSAllocator.h>

#include <string>

namespace Aws {

using String = std::basic_string<char, std::char_traits<char>, Allocator<char>>;

}  // namespace Aws
