#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Mirqos::Tool {

/// Writes UTF-8 text to where the user reads it. A stream that is closed or full is not an error of
/// the command, so nothing is reported.
void WriteOutput(std::string_view text);
void WriteError(std::string_view text);

/// Columns of the terminal that WriteError writes to; nothing when it is no terminal.
std::optional<unsigned> ErrorColumns();

/// An environment variable; nothing when it is unset or empty.
std::optional<std::string> EnvironmentVariable(const std::string& name);

}  // namespace Mirqos::Tool
