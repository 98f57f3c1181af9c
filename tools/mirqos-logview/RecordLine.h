#pragma once

#include <string>

#include "log/dbg/win32/CLogMessage.h"

namespace Mirqos::LogView {

/// A record as a line of text in UTF-8, without its end: what a log file's line would begin with,
/// the text, and which executable and library it comes from. Control characters become "?".
std::string LineOf(const NSDBG::CLogMessage& message);

/// The line between the control sequences of its level's colour, for a terminal: red with an error
/// code, bold at level 1 or below, faint at level 3 or above.
std::string Coloured(const std::string& line, const NSDBG::CLogMessage& message);

}  // namespace Mirqos::LogView
