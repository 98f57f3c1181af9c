#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/undo_windows_macros.h"
#include "tools/mirqos-logview/Command.h"
#include "tools/mirqos-logview/HeldThreads.h"
#include "tools/mirqos-logview/InputCommand.h"
#include "tools/mirqos-logview/InputLines.h"
#include "tools/mirqos-logview/Output.h"
#include "tools/mirqos-logview/Presence.h"
#include "tools/mirqos-logview/WatchedChannel.h"

namespace Mirqos::LogView {

/// A viewer at work.
class Session {
public:
    /// Announces the viewer and asks for the lines. Throws Failure.
    Session(const Command& command, Output& output);

    /// Shows lines and does what is typed, until that is "quit", `stop` is signalled or the output
    /// is no longer wanted.
    void Run(HANDLE stop);

private:
    void ReadChannels();
    void LookWhoIsHeld();
    void Do(const InputCommand& command);
    void Break(const std::string& text, std::uint32_t processId, std::uint32_t threadId);

    const Command& m_command;
    Output& m_output;
    Presence m_presence;  // first, so that it goes last
    HeldThreads m_held;
    std::vector<std::unique_ptr<WatchedChannel>> m_channels;
    InputLines m_input;
    bool m_ended = false;
};

}  // namespace Mirqos::LogView
