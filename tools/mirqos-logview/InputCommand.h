#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Mirqos::LogView {

/// A line that the user typed while the program runs.
struct InputCommand {
    enum class Action {
        Nothing,
        Break,
        List,
        Remove,
        Held,
        Release,
        ReleaseAll,
        Help,
        Quit,
        Wrong
    };

    Action action = Action::Nothing;
    std::size_t number = 0;       ///< of Remove and Release
    std::uint32_t processId = 0;  ///< of Break; 0 for any
    std::uint32_t threadId = 0;   ///< the same
    std::string text;             ///< of Break: what the line contains; of Wrong: what is wrong
};

/// Room for any breakpoint.
inline constexpr std::size_t kLongestInputLine = 4096;  // bytes

/// Reads a line in UTF-8, without its end. One that is longer than that is Wrong.
InputCommand ReadInputCommand(std::string_view line);

extern const char* const kInputHelp;

}  // namespace Mirqos::LogView
