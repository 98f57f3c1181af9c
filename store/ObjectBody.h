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

/// What a Content-Range header (RFC 9110) tells: "bytes FIRST-LAST/SIZE", both inclusive.
struct AnsweredRange {
    uint64_t nFirst = 0;
    uint64_t nLength = 0;  ///< 0 where LAST cannot be read or is before FIRST
};
std::optional<AnsweredRange> ReadContentRange(std::string_view contentRange);

/// Why the answer to `read`, whose response stream is `body`, cannot be delivered: that would alter
/// the caller's data. Null where it can. Without a Content-Range header the answer is the whole
/// object, as from a service or a proxy that passes ranges over. An empty object is the same from
/// any place, and a range that ends before it begins is none. Where a body has no length of its
/// own, one that was cut ends like a whole one: the header tells them apart.
const char* RangeFault(const Aws::S3::Model::GetObjectResult& answer, std::streambuf& body,
                       const CloudStoreReadObjectContext& read);

/// What a read with a RangeFault fails with: to ask again would mostly bring the same.
inline constexpr Aws::S3::S3Errors kRangeFault = Aws::S3::S3Errors::UNKNOWN;

/// Copies what was received into `body`, the response stream of a read, to `pDestination` and
/// returns its length.
uint64_t CopyBody(std::streambuf& body, unsigned char* pDestination);

}  // namespace Mirqos
