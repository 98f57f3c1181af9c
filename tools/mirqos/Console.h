#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Mirqos::Tool {

/// Writes UTF-8 text to where the user reads the answer. Throws Failure (LocalFile) where not all
/// of it gets there: half an answer must not pass for a whole one. A reader that has closed its
/// pipe has what it wanted, and a program may have no such stream: neither is an error, but false
/// tells that nobody reads on.
bool WriteOutput(std::string_view text);
/// Writes UTF-8 text to where the user reads messages. What does not get there is dropped: there is
/// no place left to tell it.
void WriteError(std::string_view text);

/// Reads on from where the user's input stream is; 0 at its end, nothing where it cannot be read.
/// What is typed at a terminal comes as UTF-8. One thread at a time.
std::optional<std::size_t> ReadInput(char* to, std::size_t size);

/// Columns of the terminal that WriteError writes to; nothing when it is no terminal.
std::optional<unsigned> ErrorColumns();

/// An environment variable; nothing when it is unset or empty.
std::optional<std::string> EnvironmentVariable(const std::string& name);

}  // namespace Mirqos::Tool
