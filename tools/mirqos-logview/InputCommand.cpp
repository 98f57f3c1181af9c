#include "tools/mirqos-logview/InputCommand.h"

#include <limits>
#include <optional>

#include "tools/mirqos-logview/BreakpointEdit.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::LogView {

using Action = InputCommand::Action;

namespace {

/// Takes the line apart word by word.
class Words {
public:
    explicit Words(std::string_view line) : m_rest(line) {
        while (!m_rest.empty() && (m_rest.back() == ' ' || m_rest.back() == '\r')) {
            m_rest.remove_suffix(1);
        }
        SkipBlanks();
    }

    std::string_view Rest() const { return m_rest; }

    std::string_view Next() {
        const std::string_view word = m_rest.substr(0, m_rest.find(' '));
        m_rest.remove_prefix(word.size());
        SkipBlanks();
        return word;
    }

    /// The number after `name`, when that stands next.
    std::optional<std::string_view> NextAfter(std::string_view name) {
        if (m_rest.substr(0, name.size()) != name) {
            return std::nullopt;
        }
        return Next().substr(name.size());
    }

private:
    void SkipBlanks() {
        while (!m_rest.empty() && m_rest.front() == ' ') {
            m_rest.remove_prefix(1);
        }
    }

    std::string_view m_rest;
};

InputCommand Wrong(const std::string& what) {
    InputCommand command;
    command.action = Action::Wrong;
    command.text = what;
    return command;
}

std::optional<std::uint32_t> ReadNumber(std::string_view word) {
    const auto number = Tool::ParseNumber(word, 1, std::numeric_limits<std::uint32_t>::max());
    return number ? std::optional(static_cast<std::uint32_t>(*number)) : std::nullopt;
}

InputCommand ReadBreak(Words& words) {
    InputCommand command;
    command.action = Action::Break;
    for (;;) {
        const auto process = words.NextAfter("process=");
        const auto thread = process ? std::nullopt : words.NextAfter("thread=");
        if (!process && !thread) {
            break;
        }
        const auto number = ReadNumber(process ? *process : *thread);
        if (!number) {
            return Wrong("process= and thread= take a number above 0");
        }
        (process ? command.processId : command.threadId) = *number;
    }
    command.text = words.Rest();
    if (command.text.empty()) {
        return Wrong("break needs a text");
    }
    if (const auto reason = WhyNotAPattern(Tool::ToWide(command.text))) {
        return Wrong(*reason);
    }
    return command;
}

InputCommand ReadNumbered(Action action, Words& words, std::string_view name) {
    const auto number = ReadNumber(words.Next());
    if (!number || !words.Rest().empty()) {
        return Wrong(std::string(name) + " needs a number");
    }
    InputCommand command;
    command.action = action;
    command.number = *number;
    return command;
}

InputCommand Plain(Action action, const Words& words, std::string_view name) {
    if (!words.Rest().empty()) {
        return Wrong(std::string(name) + " takes nothing more");
    }
    InputCommand command;
    command.action = action;
    return command;
}

}  // namespace

const char* const kInputHelp =
    "break [process=PID] [thread=TID] TEXT   stop threads at lines that contain TEXT\n"
    "list                                    breakpoints\n"
    "remove N                                remove breakpoint N; held threads stay held\n"
    "held                                    threads that are held\n"
    "release N | release all                 let a held thread go on, or all\n"
    "quit                                    let all go on and end\n";

InputCommand ReadInputCommand(std::string_view line) {
    if (line.size() > kLongestInputLine) {
        return Wrong("a line has at most " + std::to_string(kLongestInputLine) + " bytes");
    }
    Words words(line);
    const std::string_view name = words.Next();
    if (name.empty()) {
        return {};
    }
    if (name == "break") {
        return ReadBreak(words);
    }
    if (name == "remove") {
        return ReadNumbered(Action::Remove, words, name);
    }
    if (name == "release") {
        return words.Rest() == "all" ? InputCommand{Action::ReleaseAll, 0, 0, 0, {}}
                                     : ReadNumbered(Action::Release, words, name);
    }
    if (name == "list") {
        return Plain(Action::List, words, name);
    }
    if (name == "held") {
        return Plain(Action::Held, words, name);
    }
    if (name == "help") {
        return Plain(Action::Help, words, name);
    }
    if (name == "quit") {
        return Plain(Action::Quit, words, name);
    }
    return Wrong("there is no command " + Tool::Printable(name) + "; help lists them");
}

}  // namespace Mirqos::LogView
