#include "tools/mirqos-logview/Program.h"

#include <windows.h>

#include <exception>

#include "log/dbg/win32/Owned.h"
#include "tools/mirqos-logview/Command.h"
#include "tools/mirqos-logview/Failure.h"
#include "tools/mirqos-logview/Help.h"
#include "tools/mirqos-logview/Output.h"
#include "tools/mirqos-logview/Session.h"
#include "tools/mirqos/Console.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/InterruptWatch.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::LogView {

namespace {

bool IsColoured(Colours colours) {
    return colours == Colours::Always || (colours == Colours::Auto && IsColourTerminal());
}

void Watch(const Command& command) {
    const LOGUTILS::KernelObject stop(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    Require(static_cast<bool>(stop), "an event");
    const Tool::InterruptWatch interrupts([&stop] { SetEvent(stop.Get()); });
    Output output(command.file, IsColoured(command.colours));
    Session session(command, output);
    std::string names;
    for (const LOGUTILS::WideString& executable : command.executables) {
        names += (names.empty() ? "" : ", ") + Tool::Printable(Tool::ToUtf8(executable));
    }
    output.Answer("watching " + names + "; quit or Ctrl-C ends\n");
    session.Run(stop.Get());
}

void Run(const Command& command) {
    switch (command.action) {
        case Action::Help:
            Tool::WriteOutput(kHelp);
            break;
        case Action::Version:
            Tool::WriteOutput("mirqos-logview " MIRQOS_VERSION "\n");
            break;
        case Action::Watch:
            Watch(command);
            break;
    }
}

int Report(ExitCode code, const std::string& message) {
    Tool::WriteError("mirqos-logview: " + message +
                     (code == ExitCode::Usage ? "; mirqos-logview --help explains\n" : "\n"));
    return static_cast<int>(code);
}

}  // namespace

int RunProgram(const std::vector<std::string>& arguments) noexcept {
    try {
        Run(ReadCommand(arguments));
        return static_cast<int>(ExitCode::Success);
    } catch (const Failure& failure) {
        return Report(failure.Code(), failure.what());
    } catch (const Tool::Failure& failure) {
        return Report(ExitCode::LocalFile, failure.what());
    } catch (const std::exception& error) {
        return Report(ExitCode::SystemRefused, error.what());
    }
}

}  // namespace Mirqos::LogView
