#include "tools/mirqos-logctl/Command.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "log/dbg/LogFilePath.h"
#include "tools/mirqos-logctl/Failure.h"
#include "tools/mirqos/Arguments.h"
#include "tools/mirqos/Failure.h"
#include "tools/mirqos/Text.h"
#include "tools/mirqos/win32/Wide.h"

namespace Mirqos::LogControl {

using LOGUTILS::WideString;
using LOGUTILS::WideView;
using Tool::Arguments;
using Tool::ToWide;

namespace {

// Windows opens files with paths of up to 259 characters unless their process lifts the limit, and
// the name of a file's successor may have 13 more: ".00000001.log".
constexpr std::size_t kLongestPath = 259 - 13;
static_assert(kLongestPath < LOGUTILS::kPathRoom);

enum class Operand { None, Level, Path, Flag };

struct Form {
    std::string_view name;
    Action action;
    bool process;  ///< a process id follows
    bool target;   ///< after it a module's name, or --all
    Operand operand;
};

constexpr Form kForms[] = {
    {"list", Action::List, false, false, Operand::None},
    {"show", Action::Show, true, false, Operand::None},
    {"set-level", Action::SetLevel, true, true, Operand::Level},
    {"clear-level", Action::ClearLevel, true, true, Operand::None},
    {"set-path", Action::SetPath, true, true, Operand::Path},
    {"clear-path", Action::ClearPath, true, true, Operand::None},
    {"follow", Action::Follow, true, true, Operand::Flag},
    {"unfollow", Action::Unfollow, true, true, Operand::Flag},
};

[[noreturn]] void Refuse(const std::string& message) {
    throw Failure(ExitCode::Usage, message);
}

Arguments TakeApart(const std::vector<std::string>& given) {
    static const std::vector<Tool::Option> options = {
        {"all", "", "", "", '\0'},
        {"json", "", "", "", '\0'},
        {"help", "", "", "", 'h'},
        {"version", "", "", "", '\0'},
    };
    try {
        return {given, options};
    } catch (const Tool::Failure& failure) {
        Refuse(failure.what());
    }
}

const Form& FormOf(const std::string& name) {
    const auto* const form = std::find_if(std::begin(kForms), std::end(kForms),
                                          [&](const Form& known) { return known.name == name; });
    if (form == std::end(kForms)) {
        Refuse("there is no command " + Tool::Printable(name));
    }
    return *form;
}

std::uint32_t ReadProcessId(const std::string& text) {
    const auto id = Tool::ParseNumber(text, 1, std::numeric_limits<std::uint32_t>::max());
    if (!id) {
        Refuse(Tool::Printable(text) + " is no process id");
    }
    return static_cast<std::uint32_t>(*id);
}

std::int32_t ReadLevel(const std::string& text) {
    const auto level = Tool::ParseNumber(text, 0, kHighestLevel);
    if (!level) {
        Refuse("a level is a number from 0 to " + std::to_string(kHighestLevel));
    }
    return static_cast<std::int32_t>(*level);
}

std::uint32_t ReadFlag(const std::string& text) {
    if (text == "path") {
        return LOGUTILS::kFollowsGlobalPath;
    }
    if (text == "level") {
        return LOGUTILS::kFollowsGlobalLevel;
    }
    Refuse("what is followed is path or level");
}

bool BeginsWithRoot(WideView path) {
    const bool drive = path.size() > 2 && path[1] == L':' && path[2] == L'\\';
    return drive || path.substr(0, 2) == L"\\\\";
}

bool IsForbidden(wchar_t c) {
    return c < L' ' || WideView(L"<>\"|?*").find(c) != WideView::npos;
}

// The process takes the path as it stands in the block: one that is not full would begin in its
// current folder, and the folder it makes ends at the last backslash.
WideString ReadPath(const std::string& text) {
    WideString path = ToWide(text);
    std::replace(path.begin(), path.end(), L'/', L'\\');
    if (!BeginsWithRoot(path) || path.back() == L'\\') {
        Refuse("a path has to be the full path of a file, such as C:\\logs\\a.log");
    }
    if (std::any_of(path.begin(), path.end(), IsForbidden)) {
        Refuse("a path cannot have control characters or any of < > \" | ? *");
    }
    if (path.size() > kLongestPath) {
        Refuse("a path has at most " + std::to_string(kLongestPath) +
               " characters, so that Windows also opens the files that follow it");
    }
    return path;
}

void ReadOperand(Command& command, Operand operand, const std::string& text) {
    switch (operand) {
        case Operand::None:
            break;
        case Operand::Level:
            command.level = ReadLevel(text);
            break;
        case Operand::Path:
            command.path = ReadPath(text);
            break;
        case Operand::Flag:
            command.flag = ReadFlag(text);
            break;
    }
}

}  // namespace

Command ReadCommand(const std::vector<std::string>& arguments) {
    const Arguments parts = TakeApart(arguments);
    const std::vector<std::string>& words = parts.Words();
    Command command;
    command.json = parts.Has("json");
    if (parts.Has("help") || parts.Has("version")) {
        command.action = parts.Has("help") ? Action::Help : Action::Version;
        return command;
    }
    if (words.empty()) {
        Refuse("no command");
    }
    const Form& form = FormOf(words[0]);
    command.action = form.action;
    const bool all = parts.Has("all");
    if (all && !form.target) {
        Refuse("--all is no option of " + words[0]);
    }
    const bool named = form.target && !all;
    const std::size_t expected = 1U + (form.process ? 1U : 0U) + (named ? 1U : 0U) +
                                 (form.operand == Operand::None ? 0U : 1U);
    if (words.size() != expected) {
        Refuse(words[0] + " takes " + std::to_string(expected - 1) + " operands here; " +
               std::to_string(words.size() - 1) + " were given");
    }
    if (form.process) {
        command.processId = ReadProcessId(words[1]);
    }
    if (named) {
        command.module = ToWide(words[2]);
    }
    ReadOperand(command, form.operand, words.back());
    return command;
}

}  // namespace Mirqos::LogControl
