#include "tools/mirqos/Program.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include "tools/mirqos/Console.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Help.h"
#include "tools/mirqos/Interruption.h"
#include "tools/mirqos/Settings.h"
#include "tools/mirqos/commands/Commands.h"

namespace Mirqos::Tool {

namespace {

/// Every option there is, so that options may stand before the command; `first` in front.
std::vector<Option> AllOptions(std::vector<Option> first) {
    std::vector<Option> options = std::move(first);
    options.insert(options.end(), CommonOptions().begin(), CommonOptions().end());
    for (const Command& command : Commands()) {
        options.insert(options.end(), command.options.begin(), command.options.end());
    }
    return options;
}

/// Null where there is none.
const Command* LookUpCommand(const std::string& name) {
    const auto& commands = Commands();
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const Command& command) { return command.name == name; });
    return found == commands.end() ? nullptr : &*found;
}

const Command& FindCommand(const std::string& name) {
    const Command* const command = LookUpCommand(name);
    if (command == nullptr) {
        // not repeated: what stands in its place may be a value that lost its option
        throw Failure(ExitCode::Usage, "there is no such command");
    }
    return *command;
}

/// The command line as the command in it reads it, whose own letters come before the common ones.
Arguments Read(const std::vector<std::string>& given) {
    const Arguments arguments(given, AllOptions({}));
    const auto& words = arguments.Words();
    const Command* const command = words.empty() ? nullptr : LookUpCommand(words[0]);
    return command == nullptr ? arguments : Arguments(given, AllOptions(command->options));
}

void RefuseForeignOptions(const Command& command, const Arguments& arguments) {
    const auto knows = [](const std::vector<Option>& options, const std::string& name) {
        return std::any_of(options.begin(), options.end(),
                           [&](const Option& option) { return option.name == name; });
    };
    for (const std::string& name : arguments.Given()) {
        if (!knows(CommonOptions(), name) && !knows(command.options, name)) {
            throw Failure(ExitCode::Usage,
                          "--" + name + " is no option of " + std::string(command.name));
        }
    }
}

void RunCommand(const Command& command, const Arguments& arguments) {
    RefuseForeignOptions(command, arguments);
    const auto& words = arguments.Words();
    std::vector<std::string> operands(words.begin() + 1, words.end());
    if (operands.size() < command.fewestOperands || operands.size() > command.mostOperands) {
        throw Failure(ExitCode::Usage,
                      std::string(command.name) + " takes " + std::string(command.operands) + "; " +
                          std::to_string(operands.size()) + " operands were given");
    }
    const Settings settings = ResolveSettings(arguments, EnvironmentVariable);
    Interruption interruption;
    command.run({arguments, std::move(operands), settings, interruption});
}

void Run(const std::vector<std::string>& given) {
    const Arguments arguments = Read(given);
    const auto& words = arguments.Words();
    if (arguments.Has("version")) {
        WriteOutput("mirqos " MIRQOS_VERSION "\n");
    } else if (words.empty() && !arguments.Has("help")) {
        throw Failure(ExitCode::Usage, "no command");
    } else if (words.empty() || (words.size() == 1 && words[0] == "help")) {
        WriteOutput(ProgramHelp(Commands()));
    } else if (arguments.Has("help") || words[0] == "help") {
        WriteOutput(
            CommandHelp(FindCommand(words[0] == "help" && words.size() > 1 ? words[1] : words[0])));
    } else {
        RunCommand(FindCommand(words[0]), arguments);
    }
}

int Report(ExitCode code, const std::string& message) {
    WriteError("mirqos: " + message +
               (code == ExitCode::Usage ? "; mirqos --help explains\n" : "\n"));
    return static_cast<int>(code);
}

}  // namespace

std::string Invocation::Folder(std::size_t operand) const {
    if (operands[operand].empty()) {
        throw Failure(ExitCode::Usage, "the folder's name is empty");
    }
    return operands[operand];
}

void Invocation::Report(const std::string& line) const {
    if (!settings.quiet) {
        WriteOutput(line + "\n");
    }
}

int RunProgram(const std::vector<std::string>& arguments) noexcept {
    try {
        Run(arguments);
        return static_cast<int>(ExitCode::Success);
    } catch (const Failure& failure) {
        return Report(failure.Code(), failure.what());
    } catch (const std::bad_alloc&) {
        return Report(ExitCode::LocalFile, "there is not enough memory");
    } catch (const std::exception& error) {
        return Report(ExitCode::OperationFailed, error.what());
    }
}

}  // namespace Mirqos::Tool
