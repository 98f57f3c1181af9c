#include "tools/mirqos/CopyWay.h"

#include <algorithm>

#include "tools/mirqos/UploadWay.h"

namespace Mirqos::Tool {

CopyWay ChooseCopy(std::uint64_t size, std::optional<std::uint64_t> partSize) {
    if (size <= partSize.value_or(CopyWay::kLargestCopy)) {
        return {};
    }
    CopyWay way;
    way.partSize = std::max(SmallestPart(size), partSize.value_or(CopyWay::kUsualPart));
    way.parts = CountParts(size, way.partSize);
    return way;
}

}  // namespace Mirqos::Tool
