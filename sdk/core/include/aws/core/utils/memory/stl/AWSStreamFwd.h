#pragma once

#include <aws/core/utils/memory/stl/AWSAllocator.h>

#include <iosfwd>

namespace Aws {

using IStream = std::basic_istream<char, std::char_traits<char>>;
using OStream = std::basic_ostream<char, std::char_traits<char>>;
using IOStream = std::basic_iostream<char, std::char_traits<char>>;
using OStringStream = std::basic_ostringstream<char, std::char_traits<char>, Allocator<char>>;
using StringStream = std::basic_stringstream<char, std::char_traits<char>, Allocator<char>>;
using StringBuf = std::basic_stringbuf<char, std::char_traits<char>, Allocator<char>>;

}  // namespace Aws
