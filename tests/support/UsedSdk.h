#pragma once

#include <aws/core/Aws.h>

#include <type_traits>

namespace Mirqos::Test {

template <class Options, class = void>
struct HasHttpOptions : std::false_type {};
template <class Options>
struct HasHttpOptions<Options, std::void_t<decltype(Options::httpOptions)>> : std::true_type {};

/// Whether the store is built with the bundled SDK layer, whose options are only those that the
/// store sets. An installed SDK words its messages and some headers in its own way.
inline constexpr bool kBundledSdk = !HasHttpOptions<Aws::SDKOptions>::value;

}  // namespace Mirqos::Test
