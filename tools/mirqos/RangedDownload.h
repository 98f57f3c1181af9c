#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

#include "tools/mirqos/ReadPlan.h"

namespace Mirqos::Tool {

/// What one ranged read gave.
struct RangeAnswer {
    std::int32_t status;  ///< 0 for success
    std::uint64_t count;  ///< bytes delivered, where it was one
};

/// Reads the bytes `first` to `last`, both included, to a buffer with room for Room() of them.
using RangeReader =
    std::function<RangeAnswer(std::uint64_t first, std::uint64_t last, unsigned char* to)>;

/// Fetches an object of unknown size by ranges, several at a time. See ReadPlan for what makes the
/// result trustworthy.
struct RangedDownload {
    /// Bytes of one range's own part. Eight are in flight well below the memory of small machines,
    /// and the cost of a request is small beside the time that it takes to move them.
    static constexpr std::uint64_t kPart = std::uint64_t{8} << 20U;
    /// Chance agreement of this many bytes is unlikely in data that is packed or encrypted.
    static constexpr std::uint64_t kOverlap = 16;
    /// What one read may deliver.
    static constexpr std::uint64_t kRoom = kPart + kOverlap;

    /// Makes one reader for each thread, on that thread.
    std::function<RangeReader()> makeReader;
    /// Takes the bytes; called from several threads at once.
    std::function<void(std::uint64_t offset, const unsigned char* from, std::size_t size)> take;
    /// Asked between the ranges; true ends the download.
    std::function<bool()> stopped;
    unsigned threads = 1;
    std::optional<std::uint64_t> size;  ///< what the object has to have, where it is known

    struct Result {
        ReadPlan::Verdict verdict;
        std::uint64_t size;   ///< of the object, when complete
        std::int32_t status;  ///< of the read that failed
        bool failedAtOnce;    ///< the first read failed, so nothing was delivered
        bool stopped;         ///< ended because it was asked to; the rest means nothing then
    };

    /// Returns when no thread works any more. What makeReader and take throw comes out of here.
    Result Run() const;
};

}  // namespace Mirqos::Tool
