#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "log/dbg/LogConfigBlock.h"
#include "log/dbg/WideText.h"

namespace Mirqos::LogControl {

/// The highest level that can be set: log lines show two digits.
inline constexpr std::int32_t kHighestLevel = 99;

enum class Action {
    Help,
    Version,
    List,
    Show,
    SetLevel,
    ClearLevel,
    SetPath,
    ClearPath,
    Follow,
    Unfollow
};

/// What the command line asks for.
struct Command {
    Action action = Action::Help;
    bool json = false;
    std::uint32_t processId = 0;
    std::optional<LOGUTILS::WideString> module;  ///< nothing: all modules
    std::int32_t level = LOGUTILS::kNoLevel;     ///< of SetLevel
    LOGUTILS::WideString path;                   ///< of SetPath: a full path that can be opened
    std::uint32_t flag = 0;                      ///< of Follow and Unfollow: a bit of m_dwFlags
};

/// `arguments` is the command line in UTF-8, without the program's name. Throws Failure (Usage).
Command ReadCommand(const std::vector<std::string>& arguments);

}  // namespace Mirqos::LogControl
