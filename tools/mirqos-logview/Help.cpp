#include "tools/mirqos-logview/Help.h"

namespace Mirqos::LogView {

const char* const kHelp =
    R"(mirqos-logview - shows log lines of running processes as they are written

Usage: mirqos-logview [OPTION...] EXECUTABLE...

EXECUTABLE is the file name of a program that logs, such as engine.exe, letter case
aside; all its processes are watched, also those that start later. While the viewer
runs they hand over lines of every level that they would log to it, whatever goes
into their log files. One viewer can run at a time.

What is shown:
  --level N        lines up to this level: 1 failures and results, 2 notes, 3 traces
  --process PID    lines of this process
  --thread TID     lines of this thread
  --text TEXT      lines that contain TEXT, letter case included
  -o, --output FILE    write them to this file too, as UTF-8; it must not exist yet
  --color WHEN     auto (default: on a terminal), always or never

Nobody waits for the viewer: an executable keeps its newest 1,024 lines. When they
come faster than they can be shown, the viewer says how many were lost. Where what
reads its output has gone, the viewer ends with the next line it would show, unless
it writes a file, too.

Breakpoints:
  --break TEXT         stop threads at lines that contain TEXT, letter case included
  --break-process PID  only those of this process
  --break-thread TID   only this thread

A thread stops within its log call, after the line was shown, until it is released.
Its process goes on otherwise, but for asynchronous calls of a store: some of their
lines are logged while the store is locked, and then its other such calls wait, too.

Commands on the input stream, one on each line:
  break [process=PID] [thread=TID] TEXT
  list, remove N       breakpoints
  held                 threads that are held, and on which line
  release N, release all
  help, quit
A breakpoint is set for each executable that is watched, 100 in all. All threads go
on when the viewer ends, also when it is killed: then within 5 seconds.

  -h, --help       print this
  --version        print the version

Exit codes:
  0  ended with quit or Ctrl-C, or what reads its output has gone
  1  Windows refused or failed; the message has the system error
  2  the command line is wrong
  3  the output could not be written, to its file or the standard output
  4  another viewer is running
)";

}  // namespace Mirqos::LogView
