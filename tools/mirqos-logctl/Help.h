#pragma once

namespace Mirqos::LogControl {

/// What --help prints.
extern const char* const kHelp;

}  // namespace Mirqos::LogControl
