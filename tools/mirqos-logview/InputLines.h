#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>

#include "platform/undo_windows_macros.h"

namespace Mirqos::LogView {

/// The lines of the user's input stream, read by a thread of their own, which waits for the next
/// one until the process ends. It reads no further while lines enough wait to be taken.
class InputLines {
public:
    InputLines();

    /// Signalled while there is a line to take.
    HANDLE Event() const;
    /// The next line that was read, without its end; nothing when there is none yet. Of one that is
    /// longer than kLongestInputLine there is one byte more than that.
    std::optional<std::string> Next() const;

private:
    struct State;
    std::shared_ptr<State> m_state;
};

}  // namespace Mirqos::LogView
