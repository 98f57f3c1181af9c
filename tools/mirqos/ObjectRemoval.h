#pragma once

#include <mirqos/mirqos.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tools/mirqos/ObjectUrl.h"

namespace Mirqos::Tool {

class Interruption;

/// Removes one object; that there is none is a success. Throws Failure.
void RemoveObject(MIRQOSInterface& store, const ObjectUrl& url);

/// Removes objects of one bucket in requests of up to 1000 keys, or one by one where the provider
/// has no such requests. Throws Failure, which says how many removals had been accepted before.
/// That a removal was accepted is no proof that the object is gone.
void RemoveObjects(MIRQOSInterface& store, std::int32_t provider, const std::string& bucket,
                   const std::vector<std::string>& keys, const Interruption& interruption);

}  // namespace Mirqos::Tool
