#pragma once

#include <string>

#include "tools/mirqos/Json.h"
#include "tools/mirqos/Trouble.h"

namespace Mirqos::Tool {

void SortByPath(Troubles& troubles);

/// For a JSON document: [{"path": ..., "why": ...}].
Json Describe(const Troubles& troubles);

/// Each on the error stream.
void Show(const Troubles& troubles);

/// Where there are any, shows each, and throws Failure: how many there are, and `summary`.
void EndWith(const Troubles& troubles, const std::string& summary);

}  // namespace Mirqos::Tool
