#include "tools/mirqos/UploadWay.h"

#include <algorithm>
#include <limits>

namespace Mirqos::Tool {

namespace {

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;
// the record of a part counts its bytes in 32 bits with a sign
constexpr std::uint64_t kLargestPart =
    static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()) / kMiB * kMiB;

std::uint64_t DivideUp(std::uint64_t value, std::uint64_t by) {
    return value / by + (value % by == 0 ? 0 : 1);
}

}  // namespace

std::optional<UploadWay> ChooseUpload(std::uint64_t size, unsigned threads,
                                      std::uint64_t inFlight) {
    UploadWay way;
    if (size <= UploadWay::kLargestWhole) {
        return way;
    }
    const std::uint64_t part = std::max(UploadWay::kUsualPart, SmallestPart(size));
    if (part > kLargestPart) {
        return std::nullopt;
    }
    way.partSize = static_cast<std::size_t>(part);
    way.parts = CountParts(size, part);
    if (size <= inFlight) {
        way.kind = UploadWay::Kind::AsyncParts;
        return way;
    }
    way.kind = UploadWay::Kind::Parts;
    // each thread has a part, and the library a copy of it
    const std::uint64_t affordable = inFlight / (2 * part);
    way.threads = static_cast<unsigned>(std::clamp<std::uint64_t>(affordable, 1, threads));
    return way;
}

std::uint64_t SmallestPart(std::uint64_t size) {
    return DivideUp(DivideUp(size, UploadWay::kMostParts), kMiB) * kMiB;
}

std::int32_t CountParts(std::uint64_t size, std::uint64_t partSize) {
    return static_cast<std::int32_t>(DivideUp(size, partSize));
}

}  // namespace Mirqos::Tool
