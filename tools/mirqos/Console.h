#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Mirqos::Tool {

/// Writes UTF-8 text to where the user reads it. A stream that is closed or full is not an error of
/// the command, so nothing is reported.
void WriteOutput(std::string_view text);
void WriteError(std::string_view text);

/// Reads on from where the user's input stream is; 0 at its end, nothing where it cannot be read.
std::optional<std::size_t> ReadInput(char* to, std::size_t size);

/// Columns of the terminal that WriteError writes to; nothing when it is no terminal.
std::optional<unsigned> ErrorColumns();

/// An environment variable; nothing when it is unset or empty.
std::optional<std::string> EnvironmentVariable(const std::string& name);

}  // namespace Mirqos::Tool
