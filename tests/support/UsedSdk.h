#pragma once

#include <aws/core/AmazonWebServiceRequest.h>
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

template <class Request, class = void>
struct KnowsEmbeddedErrors : std::false_type {};
template <class Request>
struct KnowsEmbeddedErrors<Request, std::void_t<decltype(&Request::HasEmbeddedError)>>
    : std::true_type {};

/// Whether the answer to a copy or to the completion of an upload fails where it has status 200 and
/// holds an error. With 1.7 it counts as a success.
inline constexpr bool kNoticesEmbeddedErrors =
    kBundledSdk || KnowsEmbeddedErrors<Aws::AmazonWebServiceRequest>::value;

/// Which generation an installed SDK is of. Both of them were seen, as 1.7.332 and 1.11.274.
inline constexpr bool kSdk1_7 = !kNoticesEmbeddedErrors;
inline constexpr bool kSdk1_11 = !kBundledSdk && !kSdk1_7;

}  // namespace Mirqos::Test
