#pragma once

#include <string>

#include "tests/support/ScriptedServer.h"

namespace Mirqos::Test {

/// Takes the request line and the headers out of `head`, which ends in an empty line, in their
/// order and spelling. False when it is no head of a request.
bool SplitHead(const std::string& head, RecordedRequest& request);

}  // namespace Mirqos::Test
