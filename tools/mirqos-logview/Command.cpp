#include "tools/mirqos-logview/Command.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "tools/mirqos-logview/BreakpointEdit.h"
#include "tools/mirqos-logview/Failure.h"
#include "tools/mirqos/Arguments.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::LogView {

using LOGUTILS::WideString;
using Tool::Arguments;

namespace {

constexpr std::size_t kMostExecutables = 50;     // one wait covers 64 objects
constexpr std::size_t kLongestExecutable = 190;  // names of objects have 259 characters at most

[[noreturn]] void Refuse(const std::string& message) {
    throw Failure(ExitCode::Usage, message);
}

Arguments TakeApart(const std::vector<std::string>& arguments) {
    static const std::vector<Tool::Option> options = {
        {"level", "N", "", "", '\0'},          {"process", "PID", "", "", '\0'},
        {"thread", "TID", "", "", '\0'},       {"text", "TEXT", "", "", '\0'},
        {"output", "FILE", "", "", 'o'},       {"color", "WHEN", "", "", '\0'},
        {"break", "TEXT", "", "", '\0'},       {"break-process", "PID", "", "", '\0'},
        {"break-thread", "TID", "", "", '\0'}, {"help", "", "", "", 'h'},
        {"version", "", "", "", '\0'},
    };
    try {
        return {arguments, options};
    } catch (const Tool::Failure& failure) {
        Refuse(failure.what());
    }
}

std::optional<std::uint32_t> ReadNumber(const Arguments& arguments, std::string_view option,
                                        std::uint32_t least) {
    const auto text = arguments.Value(option);
    if (!text) {
        return std::nullopt;
    }
    const auto number = Tool::ParseNumber(*text, least, std::numeric_limits<std::uint32_t>::max());
    if (!number) {
        Refuse("--" + std::string(option) + " needs a number of " + std::to_string(least) +
               " or above");
    }
    return static_cast<std::uint32_t>(*number);
}

Colours ReadColours(const std::string& when) {
    if (when == "auto") {
        return Colours::Auto;
    }
    if (when == "always") {
        return Colours::Always;
    }
    if (when == "never") {
        return Colours::Never;
    }
    Refuse("--color is auto, always or never");
}

WideString ReadExecutable(const std::string& name) {
    WideString executable = Tool::ToWide(name);
    if (executable.empty() || executable.find_first_of(L"\\/") != WideString::npos) {
        Refuse("an executable is given by its file name alone, such as engine.exe");
    }
    if (executable.size() > kLongestExecutable) {
        Refuse("a file name of an executable has at most " + std::to_string(kLongestExecutable) +
               " characters here");
    }
    return executable;
}

void AddExecutable(std::vector<WideString>& executables, const std::string& name) {
    WideString executable = ReadExecutable(name);
    const bool known = std::any_of(
        executables.begin(), executables.end(),
        [&](const WideString& other) { return LOGUTILS::EqualIgnoringCase(other, executable); });
    if (!known) {
        executables.push_back(std::move(executable));
    }
}

void ReadBreakpoint(Command& command, const Arguments& arguments) {
    command.breakProcessId = ReadNumber(arguments, "break-process", 1).value_or(0);
    command.breakThreadId = ReadNumber(arguments, "break-thread", 1).value_or(0);
    command.breakText = arguments.Value("break").value_or("");
    if (command.breakText.empty()) {
        for (const char* const option : {"break", "break-process", "break-thread"}) {
            if (arguments.Has(option)) {
                Refuse("a breakpoint needs a text: --break TEXT");
            }
        }
    }
    if (const auto reason = WhyNotAPattern(Tool::ToWide(command.breakText))) {
        Refuse(*reason);
    }
}

}  // namespace

Command ReadCommand(const std::vector<std::string>& given) {
    const Arguments arguments = TakeApart(given);
    Command command;
    if (arguments.Has("help") || arguments.Has("version")) {
        command.action = arguments.Has("help") ? Action::Help : Action::Version;
        return command;
    }
    for (const std::string& name : arguments.Words()) {
        AddExecutable(command.executables, name);
    }
    if (command.executables.empty()) {
        Refuse("no executable to watch");
    }
    if (command.executables.size() > kMostExecutables) {
        Refuse("at most " + std::to_string(kMostExecutables) + " executables can be watched");
    }
    command.filter.level = ReadNumber(arguments, "level", 0);
    command.filter.processId = ReadNumber(arguments, "process", 1);
    command.filter.threadId = ReadNumber(arguments, "thread", 1);
    command.filter.text = Tool::ToWide(arguments.Value("text").value_or(""));
    command.file = arguments.Value("output").value_or("");
    if (arguments.Has("output") && command.file.empty()) {
        Refuse("--output needs a file");
    }
    command.colours = ReadColours(arguments.Value("color").value_or("auto"));
    ReadBreakpoint(command, arguments);
    return command;
}

}  // namespace Mirqos::LogView
