#pragma once

#include <cstdint>
#include <optional>

namespace Mirqos::Tool {

/// How an object is copied within the service.
struct CopyWay {
    std::uint64_t partSize = 0;  ///< of every part but the last; 0: with one request
    std::int32_t parts = 0;

    /// What services copy with one request, and what they take as one part.
    static constexpr std::uint64_t kLargestCopy = std::uint64_t{5} << 30U;
    static constexpr std::uint64_t kUsualPart = std::uint64_t{512} << 20U;
};

/// `partSize`: where one is given, everything larger is copied in parts of it, or larger ones where
/// there would be too many.
CopyWay ChooseCopy(std::uint64_t size, std::optional<std::uint64_t> partSize);

}  // namespace Mirqos::Tool
