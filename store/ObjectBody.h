#pragma once

#include <cstdint>
#include <streambuf>

#include "store/AwsSdk.h"

namespace Mirqos {

/// The range of a request: "bytes=FIRST-LAST", both decimal and inclusive.
Aws::String RangeText(uint64_t nFirst, uint64_t nLast);

/// Copies what the service sent from `body`, the response stream of a read, to `pDestination` and
/// returns its length. A stream over a preallocated buffer reports its whole length as available
/// also when the answer was shorter, so the answer's content length is the second bound: no byte
/// that the service did not send reaches the caller.
uint64_t CopyBody(std::streambuf& body, int64_t nContentLength, unsigned char* pDestination);

}  // namespace Mirqos
