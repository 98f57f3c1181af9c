"""Tests mirqos-logctl against processes that log."""

import argparse
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

LIMIT = 120  # seconds for one run of a program, so that a hung one fails
RUNNER = []
PROGRAM = HOST = None
MODULE = "MIRQOS.dll"


def windows_path(path):
    """Wine shows the root folder as drive Z:."""
    return "Z:" + path.replace("/", "\\") if RUNNER else path


class Host:
    """A process that logs a line when it is told to, numbered from 1."""

    def __init__(self):
        self.process = subprocess.Popen(RUNNER + [HOST], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)
        self.pid = self.process.stdout.readline().decode().strip()

    def do(self, command):
        self.process.stdin.write((command + "\n").encode())
        self.process.stdin.flush()
        answer = self.process.stdout.readline().decode().strip()
        assert answer == "done", (command, answer)

    def end(self):
        self.process.stdin.close()
        code = self.process.wait(LIMIT)
        self.process.stdout.close()
        return code


class LogControl(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.host = Host()

    @classmethod
    def tearDownClass(cls):
        assert cls.host.end() == 0

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="mirqos-logctl-")
        # the host may still have a file of it open
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.pid = self.host.pid

    def tearDown(self):
        # what one case has set is no business of the next
        for command in ("clear-level", "clear-path"):
            self.control(command, self.pid, "--all")
            self.control(command, self.pid, MODULE)
        self.control("set-level", self.pid, MODULE, "2")

    def path(self, name):
        return windows_path(os.path.join(self.folder, name))

    def control(self, *arguments, to=subprocess.PIPE):
        done = subprocess.run(RUNNER + [PROGRAM] + list(arguments), stdin=subprocess.DEVNULL,
                              stdout=to, stderr=subprocess.PIPE, timeout=LIMIT)
        err = done.stderr.decode().replace("\r\n", "\n")
        # Wine's own services may complain on the program's error stream
        err = "".join(line for line in err.splitlines(True) if not line.startswith("wine: "))
        return done.returncode, (done.stdout or b"").decode(), err

    def succeed(self, *arguments):
        code, out, err = self.control(*arguments)
        self.assertEqual((code, err), (0, ""), arguments)
        return out

    def fail_with(self, expected, *arguments, to=subprocess.PIPE):
        code, out, err = self.control(*arguments, to=to)
        self.assertEqual((code, out), (expected, ""), (arguments, err))
        self.assertEqual(err.count("\n"), 1, err)
        self.assertTrue(err.startswith("mirqos-logctl: "), err)
        return err

    def state(self, *arguments):
        return json.loads(self.succeed("--json", *(arguments or ("show", self.pid))))

    def module(self, *arguments):
        modules = [m for m in self.state(*arguments)["modules"] if m["name"] == MODULE]
        self.assertEqual(len(modules), 1)
        return modules[0]

    def log(self):
        self.host.do("log")

    def lines(self, name):
        """How many lines with a message of the host stand in that file."""
        path = os.path.join(self.folder, name)
        if not os.path.exists(path):
            return 0
        with open(path, "rb") as file:
            return file.read().decode("utf-16").count("thread count")

    def test_lists_the_processes_that_have_a_block(self):
        other = Host()
        listed = {str(p["pid"]): p["executable"] for p in self.state("list")["processes"]}
        self.assertEqual(listed.get(self.pid), "log_host.exe")
        self.assertEqual(listed.get(other.pid), "log_host.exe")
        self.assertIn(self.pid, [line.split()[0] for line in self.succeed("list").splitlines()])
        self.assertEqual(other.end(), 0)
        listed = [str(p["pid"]) for p in self.state("list")["processes"]]
        self.assertIn(self.pid, listed)
        self.assertNotIn(other.pid, listed)

    def test_shows_what_a_process_logs_where(self):
        state = self.state()
        self.assertEqual((state["pid"], state["executable"]), (int(self.pid), "log_host.exe"))
        self.assertEqual((state["globalPath"], state["globalLevel"]), ("", None))
        self.assertFalse(state["ignoresGlobalPath"])
        module = self.module()
        self.assertTrue(module["followsGlobalPath"])
        text = self.succeed("show", self.pid)
        self.assertIn("process %s, log_host.exe\n" % self.pid, text)
        row = [line for line in text.splitlines() if line.startswith(MODULE)][0]
        self.assertIn(module["logFile"], row)

    def test_a_level_takes_effect_with_the_next_line(self):
        self.succeed("set-path", self.pid, MODULE, self.path("own.Log"))
        self.log()
        self.assertEqual(self.lines("own.Log"), 1)
        self.assertEqual(self.module("set-level", self.pid, MODULE.upper(), "0")["level"], 0)
        self.log()
        self.assertEqual(self.lines("own.Log"), 1)
        # own levels do not count while the module follows, and --all makes it follow
        module = self.module("set-level", self.pid, "--all", "1")
        self.assertEqual((module["level"], module["ownLevel"], module["followsGlobalLevel"]),
                         (1, 0, True))
        self.log()
        self.assertEqual(self.lines("own.Log"), 2)
        self.assertEqual(self.module("set-level", self.pid, MODULE, "0")["followsGlobalLevel"],
                         False)
        self.log()
        self.assertEqual(self.lines("own.Log"), 2)
        self.assertEqual(self.module("follow", self.pid, MODULE, "level")["level"], 1)
        self.log()
        self.assertEqual(self.lines("own.Log"), 3)

    def test_a_path_takes_effect_with_the_next_line(self):
        module = self.module("set-path", self.pid, MODULE, self.path("own.Log"))
        self.assertEqual((module["logFile"], module["followsGlobalPath"]),
                         (self.path("own.Log"), False))
        self.log()
        self.assertEqual(self.lines("own.Log"), 1)
        state = self.state("set-path", self.pid, "--all", self.path("all.Log"))
        self.assertEqual(state["globalPath"], self.path("all.Log"))
        self.log()
        self.assertEqual((self.lines("own.Log"), self.lines("all.Log")), (1, 1))
        state = self.state("clear-path", self.pid, "--all")
        self.assertEqual(state["globalPath"], "")
        self.log()
        self.assertEqual(self.module()["logFile"], self.path("own.Log"))
        self.assertEqual((self.lines("own.Log"), self.lines("all.Log")), (2, 1))

    def test_a_module_leaves_the_path_of_all_alone_when_it_gets_its_own(self):
        self.succeed("set-path", self.pid, "--all", self.path("all.Log"))
        self.log()
        state = self.state("set-path", self.pid, MODULE, self.path("own.Log"))
        self.assertEqual(state["globalPath"], "")
        self.log()
        self.assertEqual(self.state()["globalPath"], "")
        self.assertEqual((self.lines("all.Log"), self.lines("own.Log")), (1, 1))

    def test_an_own_path_survives_outputs_that_register_again(self):
        self.succeed("set-path", self.pid, MODULE, self.path("own.Log"))
        self.host.do("restart")
        self.assertEqual(self.module()["logFile"], self.path("own.Log"))
        self.log()
        self.assertEqual(self.lines("own.Log"), 1)
        # while one that the module follows gives way to its default
        self.succeed("follow", self.pid, MODULE, "path")
        self.host.do("restart")
        self.assertTrue(self.module()["logFile"].endswith("\\" + MODULE + ".Log"))

    def test_keeps_characters_of_every_script_in_a_path(self):
        path = self.path("\u65e5\u672c-\u00e9.Log")
        self.assertEqual(self.module("set-path", self.pid, MODULE, path)["logFile"], path)
        self.log()
        self.assertEqual(self.lines("\u65e5\u672c-\u00e9.Log"), 1)
        self.assertIn("\u65e5\u672c-\u00e9.Log", self.succeed("show", self.pid))

    def test_refuses_what_is_not_there(self):
        self.assertIn("there is no process 4294967295", self.fail_with(3, "show", "4294967295"))
        message = self.fail_with(4, "set-level", self.pid, "other.dll", "1")
        self.assertIn("no module other.dll has registered in process " + self.pid, message)
        self.fail_with(4, "set-path", self.pid, "other.dll", self.path("x.Log"))
        self.fail_with(4, "unfollow", self.pid, "", "path")

    def test_refuses_a_command_line_that_is_wrong(self):
        before = self.state()
        for arguments in ((), ("edit",), ("show",), ("show", "x"), ("show", "0"),
                          ("set-level", self.pid, MODULE, "100"),
                          ("set-level", self.pid, MODULE, "-1"),
                          ("set-path", self.pid, MODULE, "relative.Log"),
                          ("set-path", self.pid, MODULE, "C:\\" + 244 * "x"),
                          ("follow", self.pid, MODULE, "both"),
                          ("list", "--all"), ("show", self.pid, "--wrong")):
            self.assertIn("--help", self.fail_with(2, *arguments))
        self.assertEqual(self.state(), before)

    @unittest.skipUnless(os.path.exists("/dev/full"), "the system has no device that is full")
    def test_an_answer_that_does_not_fit_is_no_success(self):
        for arguments in (("list",), ("show", self.pid), ("--json", "show", self.pid)):
            with self.subTest(arguments=arguments), open("/dev/full", "wb") as full:
                self.assertIn("cannot write 'standard output': ",
                              self.fail_with(1, *arguments, to=full))

    def test_explains_itself(self):
        self.assertIn("Exit codes:", self.succeed("--help"))
        self.assertTrue(self.succeed("--version").startswith("mirqos-logctl "))

    def test_leaves_a_damaged_block_alone(self):
        self.host.do("damage")
        message = self.fail_with(5, "set-level", self.pid, "--all", "7")
        self.assertIn("process " + self.pid + " is damaged", message)
        self.fail_with(5, "show", self.pid)
        self.host.do("repair")
        self.assertIsNone(self.state()["globalLevel"])

    def test_waits_for_a_block_in_use_and_gives_up(self):
        self.host.do("hold")
        message = self.fail_with(6, "set-level", self.pid, "--all", "7")
        self.host.do("release")
        self.assertIn("not free within 5 seconds", message)
        self.assertIsNone(self.state()["globalLevel"])

    def test_goes_on_after_an_owner_that_ended(self):
        self.host.do("abandon")
        self.assertEqual(self.state("set-level", self.pid, "--all", "2")["globalLevel"], 2)
        self.assertEqual(self.state()["globalLevel"], 2)


def main():
    global PROGRAM, HOST
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--runner", help="starts programs built for another system")
    parser.add_argument("program")
    parser.add_argument("host")
    options, rest = parser.parse_known_args()
    RUNNER.extend([options.runner] if options.runner else [])
    PROGRAM, HOST = os.path.abspath(options.program), os.path.abspath(options.host)
    unittest.main(argv=[sys.argv[0]] + rest, verbosity=2)


if __name__ == "__main__":
    main()
