#include "tools/mirqos/Help.h"

#include <algorithm>

#include "tools/mirqos/Settings.h"

namespace Mirqos::Tool {

namespace {

constexpr std::size_t kColumns = 80;

/// `text` in lines of at most kColumns, each behind `indent` blanks.
std::string Wrap(std::string_view text, std::size_t indent) {
    const std::string margin(indent, ' ');
    std::string result;
    std::size_t column = 0;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(text.size(), word.size() + 1));
        if (column > 0 && column + 1 + word.size() > kColumns) {
            result += '\n';
            column = 0;
        }
        result += column == 0 ? margin : std::string(" ");
        result += word;
        column += (column == 0 ? indent : 1) + word.size();
    }
    return result + "\n";
}

std::string DescribeOptions(const std::vector<Option>& options) {
    std::string text;
    for (const Option& option : options) {
        text += option.letter == '\0' ? "  --" : std::string("  -") + option.letter + ", --";
        text += option.name;
        if (!option.value.empty()) {
            text += " " + std::string(option.value);
        }
        if (!option.environment.empty()) {
            text += "   (or " + std::string(option.environment) + ")";
        }
        text += "\n" + Wrap(option.help, 6);
    }
    return text;
}

constexpr const char* kCredentials =
    "Credentials:\n"
    "  Set MIRQOS_ACCESS_KEY and MIRQOS_SECRET_KEY in the environment. Where neither\n"
    "  these nor the flags are given, AWS_ACCESS_KEY_ID and AWS_SECRET_ACCESS_KEY are\n"
    "  taken. The flags work too, but other users of the machine can read them in the\n"
    "  list of processes. The program never prints or logs the secret.\n";

constexpr const char* kExitCodes =
    "Exit codes:\n"
    "  0    done\n"
    "  1    the service or the network refused or failed; the message has the status\n"
    "  2    the command line or the environment is wrong\n"
    "  3    a file of this machine could not be read or written\n"
    "  4    find, stat: there is no such object; restore, verify: no such backup\n"
    "  5    verify: something is missing, differs or is there besides\n"
    "  130  interrupted with Ctrl-C\n";

constexpr const char* kJson =
    "JSON:\n"
    "  With --json a command prints one document. Keys and other texts stand in it as\n"
    "  they are. One that is not UTF-8 has \\xNN for each foreign byte and \\\\ for each\n"
    "  backslash (before JSON's own escapes), and a member beside it, as keyEscaped\n"
    "  beside key, is true. Listings are written while they arrive: a document is\n"
    "  whole only where the exit code is 0.\n";

constexpr const char* kExample =
    "Example, with a service on this machine:\n"
    "  export MIRQOS_ENDPOINT=http://127.0.0.1:8000\n"
    "  export MIRQOS_ACCESS_KEY=... MIRQOS_SECRET_KEY=...\n"
    "  mirqos mb s3://photos\n"
    "  mirqos put holiday.jpg s3://photos/2024/holiday.jpg\n"
    "  mirqos ls -h s3://photos/2024/\n"
    "  mirqos get s3://photos/2024/holiday.jpg copy.jpg\n"
    "  mirqos backup Pictures s3://photos/backup\n"
    "  (in the Windows command prompt: set NAME=value, one on each line)\n";

}  // namespace

std::string ProgramHelp(const std::vector<Command>& commands) {
    std::string text =
        "mirqos - backs up folders and stores files on Amazon S3 and compatible services\n"
        "\n"
        "Usage: mirqos [OPTION...] COMMAND [OPERAND...]\n"
        "\n"
        "An object's address is s3://BUCKET/KEY. The bucket is the container, the key\n"
        "the object's whole name in it; all characters behind the slash belong to it,\n"
        "further slashes too.\n"
        "\n"
        "Commands:\n";
    std::size_t widest = 0;
    for (const Command& command : commands) {
        widest = std::max(widest, command.name.size() + 1 + command.operands.size());
    }
    for (const Command& command : commands) {
        const std::string usage = std::string(command.name) + " " + std::string(command.operands);
        text += "  " + usage + std::string(widest - usage.size() + 2, ' ') +
                std::string(command.summary) + "\n";
    }
    text += "  help COMMAND" + std::string(widest > 12 ? widest - 10 : 2, ' ') +
            "explain a command\n\nOptions:\n" + DescribeOptions(CommonOptions()) +
            "  A flag wins over its variable. -- ends the options, for file names that\n"
            "  begin with a dash.\n\n";
    return text + kCredentials + "\n" + kExitCodes + "\n" + kJson + "\n" + kExample;
}

std::string CommandHelp(const Command& command) {
    std::string text = "mirqos " + std::string(command.name) + " - " +
                       std::string(command.summary) + "\n\nUsage: mirqos " +
                       std::string(command.name) + " [OPTION...]" +
                       (command.operands.empty() ? "" : " ") + std::string(command.operands) +
                       "\n\n" + std::string(command.description);
    if (!command.options.empty()) {
        text += "\nOptions of this command:\n" + DescribeOptions(command.options);
    }
    return text +
           "\nThe options for the service, the credentials and the exit codes: mirqos --help\n";
}

}  // namespace Mirqos::Tool
