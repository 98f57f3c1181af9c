#pragma once

#include <string>

#include "tools/mirqos/Command.h"
#include "tools/mirqos/Json.h"

namespace Mirqos::Tool {

/// The row of --json, for the commands that have it.
Option JsonOption();

bool WantsJson(const Invocation& invocation);

/// What a command did: `document` with --json, otherwise the line, unless --quiet.
void Report(const Invocation& invocation, const Json& document, const std::string& line);

}  // namespace Mirqos::Tool
