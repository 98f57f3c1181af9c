#pragma once

#include <map>
#include <optional>
#include <string>

#include "tests/soak/Content.h"

namespace Mirqos::Soak {

using Tags = std::map<std::string, std::string>;

/// What has to stand under a key.
struct Object {
    Content content;
    Tags tags;
};

/// None: nothing stands there.
using MaybeObject = std::optional<Object>;

using Objects = std::map<std::string, Object>;

}  // namespace Mirqos::Soak
