#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace Mirqos::Tool {

/// How one file goes to the service.
struct UploadWay {
    enum class Kind {
        Whole,       ///< with one request
        AsyncParts,  ///< in parts that are handed over; the library keeps all of them until the end
        Parts        ///< in parts, each of which is done with when it was sent
    };

    Kind kind = Kind::Whole;
    std::size_t partSize = 0;  ///< of every part but the last
    std::int32_t parts = 0;
    unsigned threads = 1;  ///< of the program's own that send parts

    /// Up to here a file goes whole: a request or two, and little memory for each thread.
    static constexpr std::uint64_t kLargestWhole = std::uint64_t{8} << 20U;
    /// More parts make requests small beside what moves; fewer make a part that fails costly.
    static constexpr std::uint64_t kUsualPart = std::uint64_t{8} << 20U;
    /// What services take.
    static constexpr std::uint64_t kMostParts = 10000;
};

/// `inFlight`: how many bytes of one file may be held in memory while it is sent. Parts that have
/// to be larger than that go one at a time. Nothing for a file that is larger than its parts can
/// be.
std::optional<UploadWay> ChooseUpload(std::uint64_t size, unsigned threads, std::uint64_t inFlight);

/// Whole MiB of a part, so that they are not more than services take.
std::uint64_t SmallestPart(std::uint64_t size);

std::int32_t CountParts(std::uint64_t size, std::uint64_t partSize);

}  // namespace Mirqos::Tool
