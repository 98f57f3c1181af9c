#include "tools/mirqos-logctl/Program.h"

#include <exception>
#include <memory>

#include "log/dbg/win32/ProductInstall.h"
#include "tools/mirqos-logctl/Command.h"
#include "tools/mirqos-logctl/Edit.h"
#include "tools/mirqos-logctl/Failure.h"
#include "tools/mirqos-logctl/Help.h"
#include "tools/mirqos-logctl/ProcessBlock.h"
#include "tools/mirqos-logctl/Processes.h"
#include "tools/mirqos-logctl/Report.h"
#include "tools/mirqos/Console.h"

namespace Mirqos::LogControl {

namespace {

void List(bool json) {
    std::vector<Process> processes;
    for (Process& process : RunningProcesses()) {
        if (HasBlock(process.id)) {
            processes.push_back(std::move(process));
        }
    }
    Tool::WriteOutput(json ? ListAsJson(processes) : ListAsText(processes));
}

void ShowOrEdit(const Command& command) {
    const Process process = FindProcess(command.processId);
    const bool ignores =
        LOGUTILS::IsGlobalPathDisabled(process.executable, LOGUTILS::ReadInstallKinds());
    const auto copy = std::make_unique<LOGUTILS::LogConfigBlock>();
    ProcessBlock(process.id).Hold([&](LOGUTILS::LogConfigBlock& block) {
        if (command.action != Action::Show) {
            Edit(block, command, ignores);
        }
        *copy = block;
    });
    const BlockState state{process, ignores, *copy};
    Tool::WriteOutput(command.json ? StateAsJson(state) : StateAsText(state));
}

void Run(const Command& command) {
    switch (command.action) {
        case Action::Help:
            Tool::WriteOutput(kHelp);
            break;
        case Action::Version:
            Tool::WriteOutput("mirqos-logctl " MIRQOS_VERSION "\n");
            break;
        case Action::List:
            List(command.json);
            break;
        default:
            ShowOrEdit(command);
            break;
    }
}

int Report(ExitCode code, const std::string& message) {
    Tool::WriteError("mirqos-logctl: " + message +
                     (code == ExitCode::Usage ? "; mirqos-logctl --help explains\n" : "\n"));
    return static_cast<int>(code);
}

}  // namespace

int RunProgram(const std::vector<std::string>& arguments) noexcept {
    try {
        Run(ReadCommand(arguments));
        return static_cast<int>(ExitCode::Success);
    } catch (const Failure& failure) {
        return Report(failure.Code(), failure.what());
    } catch (const std::exception& error) {
        return Report(ExitCode::SystemRefused, error.what());
    }
}

}  // namespace Mirqos::LogControl
