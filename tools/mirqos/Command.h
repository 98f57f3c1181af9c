#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "tools/mirqos/Arguments.h"

namespace Mirqos::Tool {

class Interruption;
struct Settings;

/// What a command runs with.
struct Invocation {
    const Arguments& arguments;
    std::vector<std::string> operands;  ///< as many as the command takes
    const Settings& settings;
    Interruption& interruption;

    /// The operand that names a folder. Throws Failure (Usage) where it is empty, as a variable
    /// that was never set makes it: that would mean the root.
    std::string Folder(std::size_t operand) const;

    /// A result line on the output stream, unless --quiet.
    void Report(const std::string& line) const;
};

/// As many operands as the user likes.
constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

/// A command: a row of the table, and a short source for its `run`.
struct Command {
    std::string_view name;
    std::string_view operands;     ///< as the help shows them
    std::string_view summary;      ///< one line
    std::string_view description;  ///< paragraphs and examples
    std::size_t fewestOperands;
    std::size_t mostOperands;
    std::vector<Option> options;  ///< its own, beside the common ones
    /// Throws Failure; returning is success.
    void (*run)(const Invocation& invocation);
};

}  // namespace Mirqos::Tool
