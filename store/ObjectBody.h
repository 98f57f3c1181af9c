#pragma once

#include <aws/s3/model/GetObjectResult.h>

#include <cstdint>
#include <optional>
#include <streambuf>
#include <string_view>

#include "mirqos/records.h"
#include "store/AwsSdk.h"

namespace Mirqos {

/// The range of a request: "bytes=FIRST-LAST", both decimal and inclusive.
Aws::String RangeText(uint64_t nFirst, uint64_t nLast);

/// The first byte that a Content-Range header (RFC 9110) tells: FIRST of "bytes FIRST-LAST/SIZE".
std::optional<uint64_t> FirstByteOf(std::string_view contentRange);

/// Whether the answer to `read` holds bytes from the place asked for; `body` is its response
/// stream. Without a Content-Range header it is the whole object, as from a service or a proxy that
/// passes ranges over. An empty object is the same from any place, and a range that ends before it
/// begins is none.
bool HoldsRange(const Aws::S3::Model::GetObjectResult& answer, std::streambuf& body,
                const CloudStoreReadObjectContext& read);

/// What a read that HoldsRange refuses fails with: to deliver its bytes would alter the caller's
/// data, and to ask again would bring them again.
inline constexpr Aws::S3::S3Errors kOtherRange = Aws::S3::S3Errors::UNKNOWN;
inline constexpr char kOtherRangeText[] = "The answer holds other bytes than the range asked for.";

/// Copies what was received into `body`, the response stream of a read, to `pDestination` and
/// returns its length.
uint64_t CopyBody(std::streambuf& body, unsigned char* pDestination);

}  // namespace Mirqos
