#include "tools/mirqos-logctl/Help.h"

namespace Mirqos::LogControl {

const char* const kHelp =
    R"(mirqos-logctl - shows and edits the log configuration of a running process

Usage: mirqos-logctl [--json] COMMAND [OPERAND...]

A process that has loaded the logging library keeps a block of shared memory with
the log file and the level of each of its modules. A change takes effect with the
module's next line and lasts until the process ends.

Commands:
  list                                 processes that have such a block
  show PID                             modules, their levels and log files
  set-level PID MODULE|--all LEVEL     log up to this level, 0 to 99
  clear-level PID MODULE|--all         take such a level back
  set-path PID MODULE|--all PATH       log to this file
  clear-path PID MODULE|--all          take such a path back
  follow PID MODULE|--all path|level   go by the path or level of all modules
  unfollow PID MODULE|--all path|level go by the module's own

MODULE is the file name of a library or executable, letter case aside. PATH is the
full path of a file, of at most 246 characters. A command that changes something
shows the block afterwards.

One and all:
  Beside each module's own level and path there are one level and one path of all
  modules, and each module follows these or does not. While it follows and there
  is one, its own does not count. So set-level and set-path on one module also end
  its following, and with --all they make every module follow.

  While there is a path of all modules, a module that leaves it would take the
  others along. So set-path on one module and unfollow of a path give the path of
  all modules to each module that still follows it, as its own, end its following
  and take that path away: the others stay where they are.

  clear-level and clear-path on one module make it follow again. Without a level
  of all modules, a level that was in effect stays until another one is set or the
  process ends. Without a path of all modules, the module's own path stays until
  the library registers the module again, which gives modules that follow their
  default path. With --all they take away what --all has set, and each module goes
  by its own level and path.

  A process whose executable the registry option DisableGlobalOption lists ignores
  the path of all modules; set-path --all is refused for it.

Options:
  --all      for all modules of the process
  --json     print one JSON document; a level that is not set is null
  -h, --help     print this
  --version      print the version

Exit codes:
  0  done
  1  Windows refused or failed; the message has the system error
  2  the command line is wrong, a level or path among it
  3  there is no such process, or it has no block that this session can open
  4  no module of that name has registered
  5  the block is damaged; nothing was changed
  6  the block was in use for 5 seconds; nothing was changed
  7  the process ignores the path of all modules
)";

}  // namespace Mirqos::LogControl
