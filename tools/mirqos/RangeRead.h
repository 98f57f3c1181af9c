#pragma once

#include <mirqos/mirqos.h>

#include "tools/mirqos/ObjectUrl.h"
#include "tools/mirqos/RangedDownload.h"

namespace Mirqos::Tool {

/// A RangeReader's read, with a store that has RangedDownload::kRoom and no other read under way.
/// With `last` before `first` the range is none; HTTP has that answered with the whole object.
RangeAnswer ReadRange(MIRQOSInterface& store, const ObjectUrl& url, std::uint64_t first,
                      std::uint64_t last, unsigned char* to);

}  // namespace Mirqos::Tool
