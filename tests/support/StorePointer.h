#pragma once

#include <mirqos/mirqos.h>

#include <memory>

namespace Mirqos::Test {

/// Releases a store through the library, as hosts do.
struct StoreRelease {
    void operator()(MIRQOSInterface* store) const { ReleaseCloudStoreInterface(store); }
};
using StorePointer = std::unique_ptr<MIRQOSInterface, StoreRelease>;

}  // namespace Mirqos::Test
