#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "log/dbg/WideText.h"
#include "tools/mirqos-logview/Filter.h"

namespace Mirqos::LogView {

enum class Action { Watch, Help, Version };
enum class Colours { Auto, Always, Never };

/// What the command line asks for.
struct Command {
    Action action = Action::Watch;
    std::vector<LOGUTILS::WideString> executables;
    Filter filter;
    std::string file;  ///< empty for none
    Colours colours = Colours::Auto;
    std::string breakText;  ///< empty for no breakpoint
    std::uint32_t breakProcessId = 0;
    std::uint32_t breakThreadId = 0;
};

/// `given` is the command line in UTF-8, without the program's name. Throws Failure (Usage).
Command ReadCommand(const std::vector<std::string>& given);

}  // namespace Mirqos::LogView
