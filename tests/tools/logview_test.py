"""Tests mirqos-logview against processes that log."""

import argparse
import os
import queue
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest

LIMIT = 120  # seconds for anything that one case waits for, so that a hung program fails it
RUNNER = []
PROGRAM = HOST = None
EXECUTABLE = "log_host.exe"
PREFIX = (r"\[\d{4}/\d\d/\d\d \d\d:\d\d:\d\d:\d{3}   01   \d{5}   \d{5}             \] ")
TAG = "   {log_host.exe::MIRQOS.dll}"


def line(number):
    return "AwsS3Store::Init thread count -%d counts as 0." % number


def windows_path(path):
    """Wine shows the root folder as drive Z:."""
    return "Z:" + path.replace("/", "\\") if RUNNER else path


class Program:
    """A running program whose lines are read as they come."""

    def __init__(self, path, *arguments):
        self.process = subprocess.Popen(RUNNER + [path] + list(arguments), stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.lines = queue.Queue()
        self.reader = threading.Thread(target=self.read, daemon=True)
        self.reader.start()

    def read(self):
        for text in self.process.stdout:
            self.lines.put(text.decode().rstrip("\r\n"))
        self.lines.put(None)

    def next(self):
        return self.lines.get(timeout=LIMIT)

    def until(self, part):
        """The next line that contains `part`, and those before it."""
        seen = []
        while not seen or part not in seen[-1]:
            text = self.next()
            assert text is not None, (part, seen)
            seen.append(text)
        return seen

    def say(self, text):
        self.process.stdin.write((text + "\n").encode())
        self.process.stdin.flush()

    def rest(self):
        seen = []
        while (text := self.next()) is not None:
            seen.append(text)
        return seen

    def end(self):
        if not self.process.stdin.closed:
            self.process.stdin.close()
        code = self.process.wait(LIMIT)
        rest = self.rest()
        self.reader.join()
        self.process.stdout.close()
        self.process.stderr.close()
        return code, rest

    def kill(self):
        self.process.kill()
        self.end()


class Screen:
    """The viewer on a terminal, which Wine shows it as a console."""

    def __init__(self, *arguments):
        import tty  # which Windows has not
        self.own, terminal = os.openpty()
        tty.setraw(terminal)
        self.process = subprocess.Popen(RUNNER + [PROGRAM, *arguments], stdin=terminal,
                                        stdout=terminal, stderr=subprocess.DEVNULL,
                                        start_new_session=True,
                                        env={**os.environ, "LC_ALL": "C.UTF-8", "TERM": "xterm"})
        os.close(terminal)
        self.seen = b""

    def until(self, part):
        while part.encode() not in self.seen:
            assert select.select([self.own], [], [], LIMIT)[0], self.seen
            self.seen += os.read(self.own, 4096)

    def type(self, line):
        os.write(self.own, (line + "\r").encode())

    def close(self):
        self.process.kill()
        self.process.wait()
        os.close(self.own)


class Host(Program):
    """A process that logs a line when it is told to, numbered from 1."""

    def __init__(self):
        super().__init__(HOST)
        self.pid = self.next()

    def log(self):
        self.say("log")

    def done(self):
        assert self.next() == "done"


class LogView(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="mirqos-logview-")
        self.addCleanup(shutil.rmtree, self.folder)

    def host(self):
        host = Host()
        self.addCleanup(self.finish, host)
        return host

    def view(self, *arguments):
        viewer = Program(PROGRAM, EXECUTABLE, *arguments)
        self.addCleanup(self.finish, viewer)
        viewer.until("watching " + EXECUTABLE)
        return viewer

    def unread_view(self, *arguments):
        """A viewer whose reader is gone once it watches."""
        reader, writer = os.pipe()
        with os.fdopen(reader) as lines, os.fdopen(writer, "wb") as to:
            viewer = subprocess.Popen(RUNNER + [PROGRAM, EXECUTABLE, *arguments],
                                      stdin=subprocess.PIPE, stdout=to)
            self.addCleanup(viewer.stdin.close)
            self.addCleanup(viewer.kill)
            to.close()
            self.assertTrue(any(text.startswith("watching ") for text in lines))
        return viewer

    def finish(self, program):
        if program.process.poll() is None:
            program.kill()

    def quit(self, viewer):
        viewer.say("quit")
        code, rest = viewer.end()
        self.assertEqual(code, 0)
        return rest

    def run_program(self, *arguments, to=subprocess.PIPE):
        done = subprocess.run(RUNNER + [PROGRAM] + list(arguments), stdin=subprocess.DEVNULL,
                              stdout=to, stderr=subprocess.PIPE, timeout=LIMIT)
        err = done.stderr.decode().replace("\r\n", "\n")
        # Wine's own services may complain on the program's error stream
        err = "".join(text for text in err.splitlines(True) if not text.startswith("wine: "))
        return done.returncode, (done.stdout or b"").decode(), err

    def test_shows_lines_of_processes_that_start_before_and_after_it(self):
        first = self.host()
        viewer = self.view()
        first.log()
        self.assertRegex(viewer.until(line(1))[-1], "^" + PREFIX + line(1) + TAG + "$")
        second = self.host()
        second.log()
        seen = viewer.until(line(1))[-1]
        self.assertIn("   %05d   " % int(second.pid), seen)
        self.assertEqual(self.quit(viewer), [])
        first.done()
        first.log()
        first.done()  # and nobody listens

    def test_every_line_of_several_processes_arrives_once_and_in_order(self):
        hosts = [self.host() for _ in range(3)]
        viewer = self.view("--text", "thread count")
        for host in hosts:
            host.say("\n".join(["log"] * 100))
        for host in hosts:
            for _ in range(100):
                host.done()
        seen = self.quit(viewer)
        odd = [text for text in seen if seen.count(text) > 1 or "thread count" not in text]
        self.assertEqual(len(seen), 300, odd)
        for host in hosts:
            own = [text for text in seen if "   %05d   " % int(host.pid) in text]
            self.assertEqual([text.split("] ")[1] for text in own],
                             [line(number) + TAG for number in range(1, 101)])

    def test_filters_by_process_and_text(self):
        first, second = self.host(), self.host()
        viewer = self.view("--process", second.pid, "--text", "count -2")
        for host in (first, second):
            for _ in range(3):
                host.log()
                host.done()
        seen = viewer.until(line(2))
        self.assertEqual(len(seen), 1)
        self.assertIn("   %05d   " % int(second.pid), seen[0])
        self.assertEqual(self.quit(viewer), [])

    def test_filters_by_level_and_thread(self):
        host = self.host()
        viewer = self.view("--level", "0")
        host.log()
        host.done()
        self.assertEqual(self.quit(viewer), [])
        viewer = self.view("--thread", "1")
        host.log()
        host.done()
        self.assertEqual(self.quit(viewer), [])
        viewer = self.view("--level", "1")
        host.log()
        viewer.until(line(3))

    def test_writes_a_file_that_does_not_exist_yet(self):
        host = self.host()
        path = os.path.join(self.folder, "lines.txt")
        viewer = self.view("--output", windows_path(path), "--color", "always")
        host.log()
        self.assertTrue(viewer.until(line(1))[-1].startswith("\x1b[1m["))
        self.quit(viewer)
        with open(path, newline="") as file:
            self.assertRegex(file.read(), "^" + PREFIX + line(1) + TAG + "\n$")
        code, _, err = self.run_program("--output", windows_path(path), EXECUTABLE)
        self.assertEqual(code, 3)
        self.assertIn("lines.txt", err)

    def test_holds_a_thread_at_a_line_until_it_is_released(self):
        host = self.host()
        viewer = self.view("--break", "count -2")
        host.log()
        host.done()
        host.log()
        held = viewer.until("*** held 1: ")[-1]
        self.assertIn("process " + host.pid, held)
        self.assertIn(line(2), held)
        self.assertTrue(host.lines.empty())
        viewer.say("held")
        self.assertIn(line(2), viewer.until("held 1: ")[-1])
        viewer.say("release 1")
        viewer.until("*** released 1")
        host.done()
        viewer.say("held")
        self.assertEqual(viewer.next(), "no thread is held")

    def test_sets_lists_and_removes_breakpoints_while_it_runs(self):
        host = self.host()
        viewer = self.view()
        viewer.say("list")
        self.assertEqual(viewer.next(), "no breakpoints")
        viewer.say("break process=%s thread count" % host.pid)
        self.assertEqual(viewer.next(), "breakpoint 1 set in " + EXECUTABLE)
        viewer.say("break Thread Count")
        self.assertEqual(viewer.next(), "breakpoint 2 set in " + EXECUTABLE)
        viewer.say("list")
        self.assertEqual(viewer.next(), 'breakpoint 1: "thread count" in %s, process %s'
                         % (EXECUTABLE, host.pid))
        self.assertEqual(viewer.next(), 'breakpoint 2: "Thread Count" in ' + EXECUTABLE)
        host.log()
        viewer.until("*** held 1")
        viewer.say("remove 1")
        self.assertEqual(viewer.next(), "removed")
        viewer.say("release all")
        viewer.until("*** released 1")
        host.done()
        host.log()
        host.done()
        viewer.say("remove 1")
        viewer.until("there is no such breakpoint")
        viewer.say("nonsense")
        self.assertIn("no command nonsense", viewer.next())

    def test_takes_what_is_typed_on_a_terminal(self):
        if not RUNNER:
            self.skipTest("the system's terminals are not files")
        screen = Screen(EXECUTABLE)
        self.addCleanup(screen.close)
        screen.until("watching")
        screen.type("break Gr\u00f6\u00dfe")
        screen.until("breakpoint 1 set")
        screen.type("list")
        screen.until('breakpoint 1: "Gr\u00f6\u00dfe" in ' + EXECUTABLE)
        screen.type("quit")
        self.assertEqual(screen.process.wait(LIMIT), 0)

    def test_refuses_what_does_not_fit_a_breakpoint_or_a_line(self):
        viewer = self.view()
        viewer.say("break " + 1024 * "x")
        self.assertEqual(viewer.next(), "the text of a breakpoint has at most 1023 characters")
        for blanks in (4090, 9000):
            viewer.say(blanks * " " + "break text")
            self.assertEqual(viewer.next(), "a line has at most 4096 bytes")
        viewer.say("list")
        self.assertEqual(viewer.next(), "no breakpoints")
        viewer.say("break " + 1023 * "x")
        self.assertEqual(viewer.next(), "breakpoint 1 set in " + EXECUTABLE)

    def test_its_end_frees_whom_it_holds(self):
        host = self.host()
        viewer = self.view("--break", "thread count")
        host.log()
        viewer.until("*** held 1")
        self.assertTrue(host.lines.empty())
        self.quit(viewer)
        host.done()
        viewer = self.view("--break", "thread count")
        host.log()
        viewer.until("*** held 1")
        viewer.process.send_signal(signal.SIGINT)
        self.assertEqual(viewer.end()[0], 0)
        host.done()
        viewer = self.view("--break", "thread count")
        host.log()
        viewer.until("*** held 1")
        viewer.kill()
        host.done()

    def test_a_new_viewer_frees_whom_a_killed_one_held(self):
        host = self.host()
        viewer = self.view("--break", "thread count")
        host.log()
        viewer.until("*** held 1")
        viewer.kill()
        viewer = self.view()
        host.done()
        host.log()
        host.done()  # its breakpoints are gone
        viewer.until(line(2))

    def test_ends_when_the_reader_of_its_output_has_gone(self):
        host = self.host()
        viewer = self.unread_view("--break", "thread count")
        host.log()
        self.assertEqual(viewer.wait(LIMIT), 0)
        host.done()  # and nobody holds it

    def test_goes_on_without_a_reader_where_it_writes_a_file(self):
        host = self.host()
        path = os.path.join(self.folder, "lines.txt")
        viewer = self.unread_view("--output", windows_path(path))
        for _ in range(3):
            host.log()
            host.done()
            time.sleep(0.5)  # they come one by one
        viewer.communicate(b"quit\n", LIMIT)
        self.assertEqual(viewer.returncode, 0)
        with open(path) as file:
            self.assertEqual(len(file.readlines()), 3)

    def test_ends_while_commands_come_without_end(self):
        viewer = Program(PROGRAM, EXECUTABLE)
        self.addCleanup(self.finish, viewer)
        viewer.until("watching")

        def type_on():
            try:
                while True:
                    os.write(viewer.process.stdin.fileno(), b"held\n" * 4096)
            except OSError:
                pass  # the viewer has ended

        typist = threading.Thread(target=type_on, daemon=True)
        typist.start()
        for _ in range(200):
            self.assertEqual(viewer.next(), "no thread is held")
        viewer.process.send_signal(signal.SIGINT)
        self.assertEqual(viewer.process.wait(LIMIT), 0)
        typist.join(LIMIT)
        viewer.end()

    def test_tells_of_a_held_process_that_ends(self):
        host = self.host()
        viewer = self.view("--break", "thread count")
        host.log()
        viewer.until("*** held 1")
        host.kill()
        viewer.until("*** held 1 has ended")
        viewer.say("held")
        self.assertEqual(viewer.next(), "no thread is held")

    def test_one_viewer_can_run_at_a_time(self):
        self.view()
        code, out, err = self.run_program(EXECUTABLE)
        self.assertEqual((code, out, err), (4, "", "mirqos-logview: another log viewer is running\n"))

    @unittest.skipUnless(os.path.exists("/dev/full"), "the system has no device that is full")
    def test_ends_when_its_output_is_full(self):
        with open("/dev/full", "wb") as full:
            code, _, err = self.run_program(EXECUTABLE, to=full)
        self.assertEqual(code, 3, err)
        self.assertRegex(err, r"^mirqos-logview: cannot write 'standard output': [^\n]+\n$")

    def test_wrong_command_lines_are_explained_in_one_line(self):
        for arguments in ([], ["--level", "x", EXECUTABLE], ["a\\b.exe"], [""], ["--nonsense"],
                          ["--process", "0", EXECUTABLE], ["--break-process", "1", EXECUTABLE],
                          ["--color", "maybe", EXECUTABLE], ["--break", "", EXECUTABLE]):
            code, out, err = self.run_program(*arguments)
            self.assertEqual((code, out), (2, ""), arguments)
            self.assertTrue(err.startswith("mirqos-logview: "), err)
            self.assertEqual(err.count("\n"), 1, err)

    def test_help_names_every_option(self):
        code, out, err = self.run_program("--help")
        self.assertEqual((code, err), (0, ""))
        for word in ("--level", "--process", "--thread", "--text", "--output", "--color",
                     "--break", "--break-process", "--break-thread", "--version", "quit"):
            self.assertIn(word, out)
        code, out, _ = self.run_program("--version")
        self.assertEqual(code, 0)
        self.assertRegex(out, r"^mirqos-logview \d+\.\d+\.\d+\n$")


def main():
    global PROGRAM, HOST
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--runner")
    parser.add_argument("program")
    parser.add_argument("host")
    options, rest = parser.parse_known_args()
    RUNNER.extend([options.runner] if options.runner else [])
    PROGRAM, HOST = os.path.abspath(options.program), os.path.abspath(options.host)
    unittest.main(argv=[sys.argv[0]] + rest, verbosity=2)


if __name__ == "__main__":
    main()
