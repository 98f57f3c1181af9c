#!/usr/bin/env python3
"""Drives the built program against a real S3 server, as a user would: files to objects and back."""

import os
import random
import signal
import subprocess
import threading
import unittest
import uuid

from tool_case import (COMMAND, LIMIT, WRONG_SECRET, Case, ScriptedCase, digest, environment,
                       is_kept_by_sdk, run)

PART = 8 << 20
OVERLAP = 16
COMMANDS = ("backup", "restore", "verify", "put", "get", "cp", "rm", "ls", "find", "stat", "tag", "mb",
            "rb", "buckets", "location", "lifecycle", "uploads")


class Objects(Case):
    def test_files_of_every_size_come_back_the_same(self):
        bucket = self.bucket()
        for size in (1, 1000, PART - 1, PART, PART + 1, 2 * PART - OVERLAP, 2 * PART, 20 << 20):
            for threads in ("1", "4"):
                with self.subTest(size=size, threads=threads):
                    url = "%s/size-%d" % (bucket, size)
                    self.write("in", size)
                    self.assertIn("put " + url, self.succeed("put", "in", url))
                    self.assertIn("got " + url,
                                  self.succeed("get", url, "out", "--threads", threads))
                    self.assertEqual(digest(self.path("in")), digest(self.path("out")))
                    self.succeed("get", url, "out", "--threads", threads, "--size", str(size))
                    self.assertEqual(digest(self.path("in")), digest(self.path("out")))
                    self.assertEqual(self.files(), ["in", "out"])

    def test_an_empty_file_comes_back_empty(self):
        url = self.bucket() + "/empty"
        self.write("in", 0)
        self.succeed("put", "in", url)
        for size in ((), ("--size", "0")):
            self.succeed("get", url, "out", *size)
            self.assertEqual(os.path.getsize(self.path("out")), 0)
            self.assertEqual(self.files(), ["in", "out"])

    def test_another_size_than_given_is_an_error_and_leaves_no_file(self):
        url = self.bucket() + "/object"
        self.write("in", 1000)
        self.succeed("put", "in", url)
        for wrong in ("0", "999", "1001"):
            self.assertIn("--size", self.fail_with(1, "get", url, "out", "--size", wrong))
        self.assertEqual(self.files(), ["in"])

    def test_keys_with_odd_characters_are_kept_apart(self):
        bucket = self.bucket()
        keys = ["a b", "a+b", "a%20b", "a@b", "a/b//c", "/a", "a?b=c&d", "a#b", "a*b",
                "\u00e4\u20ac\u65e5", "a'b", "a\"b"]
        for number, key in enumerate(keys):
            self.write("in%d" % number, 10 + number)
            put = self.succeed if is_kept_by_sdk(key) else self.refuse
            put("put", "in%d" % number, "%s/%s" % (bucket, key))
        for number, key in enumerate(keys):
            if not is_kept_by_sdk(key):
                continue
            with self.subTest(key=key):
                self.succeed("get", "%s/%s" % (bucket, key), "out")
                self.assertEqual(digest(self.path("in%d" % number)), digest(self.path("out")))

    def test_file_names_may_be_any_text(self):
        url = self.bucket() + "/key"
        for name in ("a b.txt", "\u00e4\u20ac\u65e5.bin", "-dash"):
            with self.subTest(name=name):
                self.write(name, 100)
                self.succeed("put", "--", name, url)
                self.succeed("get", "--", url, name + ".copy")
                self.assertEqual(digest(self.path(name)), digest(self.path(name + ".copy")))

    def test_a_removed_object_is_gone(self):
        url = self.bucket() + "/object"
        self.write("in", 10)
        self.succeed("put", "in", url)
        self.assertIn("removed " + url, self.succeed("rm", url))
        self.fail_with(1, "get", url, "out")
        self.succeed("rm", url)

    def test_quiet_says_nothing(self):
        bucket = self.bucket()
        self.write("in", 10)
        for arguments in (("put", "in", bucket + "/k"), ("get", bucket + "/k", "out"),
                          ("rm", bucket + "/k")):
            self.assertEqual(self.succeed("--quiet", *arguments), "")

    def test_an_existing_file_is_replaced_only_by_a_whole_object(self):
        bucket = self.bucket()
        self.write("in", 10)
        self.write("out", 20)
        before = digest(self.path("out"))
        self.fail_with(1, "get", bucket + "/missing", "out")
        self.assertEqual(digest(self.path("out")), before)
        self.succeed("put", "in", bucket + "/k")
        self.succeed("get", bucket + "/k", "out")
        self.assertEqual(digest(self.path("out")), digest(self.path("in")))


class Failures(Case):
    def test_a_missing_key_says_so(self):
        bucket = self.bucket()
        message = self.fail_with(1, "get", bucket + "/no such", "out")
        for part in ("ReadObject", "status ", "'%s'" % bucket[5:], "'no such'", "no such object"):
            self.assertIn(part, message)
        self.assertEqual(self.files(), [])

    def test_a_missing_bucket_says_so(self):
        self.write("in", 10)
        bucket = "tool-none-" + uuid.uuid4().hex
        for name, arguments in (("ReadObject", ("get", "s3://%s/k" % bucket, "out")),
                                ("WriteObject", ("put", "in", "s3://%s/k" % bucket)),
                                ("DeleteObject", ("rm", "s3://%s/k" % bucket))):
            message = self.fail_with(1, *arguments)
            for part in (name, "status ", "'%s'" % bucket, "'k'", "no such bucket"):
                self.assertIn(part, message)
        self.assertEqual(self.files(), ["in"])

    def test_a_wrong_secret_is_named_but_never_shown(self):
        self.write("in", 10)
        url = self.bucket() + "/k"
        wrong = environment(MIRQOS_SECRET_KEY=WRONG_SECRET, MIRQOS_LOG_FILE=self.path("log"))
        for arguments in (("put", "in", url), ("get", url, "out"), ("rm", url),
                          ("mb", "s3://tool-" + uuid.uuid4().hex)):
            message = self.fail_with(1, *arguments, "--log-level", "trace", env=wrong)
            self.assertIn("status 22,", message)
            self.assertIn("secret key", message)
        message = self.fail_with(1, "put", "in", url, "--secret-key", WRONG_SECRET)
        self.assertIn("status 22,", message)
        if len(COMMAND) == 1:
            self.assertGreater(os.path.getsize(self.path("log")), 0)
        for name in self.files():
            with open(self.path(name), "rb") as file:
                self.assertNotIn(WRONG_SECRET.encode(), file.read(), name)

    def test_an_unknown_access_key_is_named(self):
        self.write("in", 10)
        message = self.fail_with(1, "put", "in", self.bucket() + "/k",
                                 env=environment(MIRQOS_ACCESS_KEY="NOBODYKNOWSTHISKEY00"))
        self.assertIn("status 23,", message)

    def test_missing_keys_are_a_usage_error(self):
        self.assertIn("MIRQOS_SECRET_KEY", self.fail_with(
            2, "rm", "s3://bucket/key", env=environment(MIRQOS_SECRET_KEY=None)))
        self.assertIn("MIRQOS_ACCESS_KEY", self.fail_with(
            2, "rm", "s3://bucket/key",
            env=environment(MIRQOS_SECRET_KEY=None, MIRQOS_ACCESS_KEY=None)))

    def test_wrong_command_lines_are_usage_errors(self):
        for arguments in ((), ("nonsense",), ("put",), ("put", "a"), ("get", "a", "b", "c"),
                          ("get", "b/k", "out"), ("get", "s3://b", "out"), ("mb", "s3://b/k"),
                          ("rm", "s3://b/k", "--size", "1"), ("rm", "s3://b/k", "--nothing"),
                          ("rm", "s3://b/k", "--threads", "0"), ("help", "nonsense"),
                          ("get", "s3://b/k", "out", "--size", "-1")):
            self.fail_with(2, *arguments)
        self.assertEqual(self.files(), [])

    def test_a_stray_secret_is_not_repeated(self):
        self.fail_with(2, "rm", "s3://b/k", WRONG_SECRET)
        self.fail_with(2, WRONG_SECRET)
        self.fail_with(2, "rm", "s3://b/k", "--secret=" + WRONG_SECRET)
        self.fail_with(2, "rm", "s3://x:%s@b/k" % WRONG_SECRET)

    def test_local_trouble_is_told_apart(self):
        bucket = self.bucket()
        os.mkdir(self.path("folder"))
        self.assertIn("none", self.fail_with(3, "put", "none", bucket + "/k"))
        self.fail_with(3, "put", "folder", bucket + "/k")
        self.write("in", 10)
        self.succeed("put", "in", bucket + "/k")
        self.fail_with(3, "get", bucket + "/k", "folder")
        self.fail_with(3, "get", bucket + "/k", os.path.join("none", "out"))
        if len(COMMAND) == 1:
            os.mkfifo(self.path("pipe"))
            self.assertIn("pipe", self.fail_with(3, "get", bucket + "/k", "pipe"))
            os.remove(self.path("pipe"))
        self.write("taken.part", 5)
        self.assertIn("taken.part", self.fail_with(3, "get", bucket + "/k", "taken"))
        self.assertEqual(self.files(), ["folder", "in", "taken.part"])


class Scripted(ScriptedCase):
    """What a real server does not do on demand."""

    def test_an_empty_object_is_recognised_where_the_service_ignores_impossible_ranges(self):
        def answer(request):
            first, last = request.range()
            if first <= last:
                request.refuse(416, "InvalidRange")
            else:
                request.send(200, b"")
        self.succeed("get", "s3://bucket/k", "out", env=self.serve(answer))
        self.assertEqual(os.path.getsize(self.path("out")), 0)

    def test_an_object_of_which_nothing_could_be_read_is_not_taken_for_empty(self):
        # neither the listing nor the answer to an impossible range says how large it is
        env = self.serve(lambda request: request.refuse(416, "InvalidRange"))
        self.assertIn("--size 0", self.fail_with(1, "get", "s3://bucket/k", "out", env=env))
        self.assertEqual(self.files(), [])
        self.succeed("get", "s3://bucket/k", "out", "--size", "0", env=env)
        self.assertEqual(os.path.getsize(self.path("out")), 0)

    def test_the_size_comes_from_the_listing_of_exactly_the_key(self):
        def refuse(request):
            request.refuse(416, "InvalidRange")
        env = self.serve(refuse, lambda request: request.list([("k2", 0)]))
        self.assertIn("--size 0", self.fail_with(1, "get", "s3://bucket/k", "out", env=env))
        env = self.serve(refuse, lambda request: request.list([("k", 0), ("k2", 5)]))
        self.succeed("get", "s3://bucket/k", "out", env=env)
        self.assertEqual(os.path.getsize(self.path("out")), 0)

    def test_where_listing_is_refused_objects_of_every_size_come_back_the_same(self):
        for size in (1, PART - 1, PART, PART + 1, 2 * PART + 5):
            data = random.Random(size).randbytes(size)

            env = self.serve(lambda request, data=data: request.send_range_of(data))
            for threads in ("1", "4"):
                self.succeed("get", "s3://bucket/k", "out", "--threads", threads, env=env)
                with open(self.path("out"), "rb") as file:
                    self.assertEqual(file.read(), data)

    def test_another_size_than_listed_is_an_error_and_leaves_no_file(self):
        env = self.serve(lambda request: request.send(206, b"short"),
                         lambda request: request.list([("k", 1000)]))
        self.assertIn("listing", self.fail_with(1, "get", "s3://bucket/k", "out", env=env))
        self.assertEqual(self.files(), [])

    def test_an_archived_object_is_not_taken_for_empty(self):
        env = self.serve(lambda request: request.refuse(403, "InvalidObjectState"))
        self.fail_with(1, "get", "s3://bucket/k", "out", env=env)
        self.assertEqual(self.files(), [])

    def test_a_failure_in_the_middle_fails_the_whole_and_leaves_no_file(self):
        data = random.Random(1).randbytes(3 * PART)

        def answer(request):
            first, last = request.range()
            if first <= PART + PART // 2 <= last:
                request.refuse(403, "AccessDenied")
            else:
                request.send_range_of(data)
        for threads in ("1", "4"):
            message = self.fail_with(1, "get", "s3://bucket/k", "out", "--threads", threads,
                                     env=self.serve(answer))
            self.assertIn("status 15,", message)
            self.assertEqual(self.files(), [])

    def test_an_object_replaced_meanwhile_is_noticed_and_leaves_no_file(self):
        versions = [random.Random(n).randbytes(2 * PART + 5) for n in (1, 2)]

        def answer(request):
            request.send_range_of(versions[request.range()[0] > 0])
        message = self.fail_with(1, "get", "s3://bucket/k", "out", "--threads", "1",
                                 env=self.serve(answer))
        self.assertIn("changed", message)
        self.assertEqual(self.files(), [])

    @unittest.skipIf(os.name == "nt", "the signal is a POSIX one")
    def test_an_interrupt_ends_it_and_leaves_no_file(self):
        if len(COMMAND) > 1:
            self.skipTest("a runner does not pass the interrupt on")
        data = random.Random(1).randbytes(2 * PART)
        reached = threading.Event()
        release = threading.Event()
        self.addCleanup(release.set)

        def answer(request):
            if request.range()[0] == 0:
                request.send_range_of(data)
            else:
                reached.set()
                release.wait(LIMIT)  # as a stalled server does
        env = self.serve(answer)
        tool = subprocess.Popen(COMMAND + ["get", "s3://bucket/k", "out"], env=env,
                                cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        try:
            self.assertTrue(reached.wait(LIMIT))
            self.assertEqual(self.files(), ["out.part"])
            tool.send_signal(signal.SIGINT)
            _, err = tool.communicate(timeout=LIMIT)
        finally:
            tool.kill()
            tool.wait()
        self.assertEqual(tool.returncode, 130, err)
        self.assertIn(b"interrupted", err)
        self.assertEqual(self.files(), [])


    @unittest.skipUnless(os.path.isdir("/proc/self/fd"), "the system does not show open files")
    def test_streams_that_the_caller_has_closed_are_not_taken_by_others(self):
        if len(COMMAND) > 1:
            self.skipTest("a runner opens files of its own")
        data = random.Random(1).randbytes(2 * PART)
        streams = []

        def answer(request):
            streams.extend(os.readlink("/proc/%d/fd/%d" % (tool.pid, n)) for n in range(3))
            request.send_range_of(data)
        env = self.serve(answer)
        tool = subprocess.Popen(["sh", "-c", "exec \"$@\" <&- >&- 2>&-", "sh"] + COMMAND +
                                ["get", "s3://bucket/k", "out"], env=env, cwd=self.folder)
        try:
            self.assertEqual(tool.wait(LIMIT), 0)
        finally:
            tool.kill()
            tool.wait()
        self.assertEqual(set(streams), {"/dev/null"})
        with open(self.path("out"), "rb") as out:
            self.assertEqual(out.read(), data)


class Output(Case):
    """What becomes of an answer that cannot be written."""

    def answers(self):
        bucket = self.bucket()
        self.write("in", 10)
        self.succeed("put", "in", bucket + "/k")
        return (("--help",), ("ls", bucket), ("ls", bucket, "--json"), ("stat", bucket + "/k"))

    @unittest.skipUnless(os.path.exists("/dev/full"), "the system has no device that is full")
    def test_an_answer_that_does_not_fit_is_no_success(self):
        for arguments in self.answers():
            with self.subTest(arguments=arguments), open("/dev/full", "wb") as full:
                self.assertIn("cannot write 'standard output': ",
                              self.fail_with(3, *arguments, to=full))

    def test_a_reader_that_has_enough_is_no_failure(self):
        for arguments in self.answers():
            with self.subTest(arguments=arguments):
                reader, writer = os.pipe()
                os.close(reader)
                with os.fdopen(writer, "wb") as pipe:
                    self.succeed(*arguments, to=pipe)


class Help(Case):
    def test_help_names_commands_options_variables_and_exit_codes(self):
        text = self.succeed("--help")
        for part in tuple("\n  %s " % command for command in COMMANDS) + (
                "--endpoint", "MIRQOS_SECRET_KEY", "Exit codes", "JSON", "Example"):
            self.assertIn(part, text)
        self.assertLessEqual(max(len(line) for line in text.split("\n")), 80)
        self.assertEqual(self.succeed("help"), text)
        self.assertEqual(self.succeed("-h"), text)

    def test_every_command_explains_itself(self):
        for command in COMMANDS:
            text = self.succeed("help", command)
            self.assertIn("Usage: mirqos " + command, text)
            self.assertIn("Example", text)
            self.assertLessEqual(max(len(line) for line in text.split("\n")), 80)
            self.assertEqual(self.succeed(command, "--help"), text)

    def test_the_version_is_told(self):
        self.assertRegex(self.succeed("--version"), r"^mirqos \d+\.\d+\.\d+\n$")


if __name__ == "__main__":
    run(__doc__)
