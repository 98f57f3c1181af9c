#!/usr/bin/env python3
"""Drives the built program against a real S3 server, as a user would: folders there and back."""

import hashlib
import json
import os
import shutil
import signal
import subprocess
import threading
import types

from relay import Proxy, Relay
from tool_case import COMMAND, LIMIT, Case, digest, environment, run, server

MIB = 1 << 20
PART = 8 * MIB
OLD = 1500000000  # a time of change long ago, so that it is trusted
MANIFEST = "/.mirqos/manifest"
DENIED = (403, [], b"<?xml version=\"1.0\"?><Error><Code>AccessDenied</Code></Error>")
MISSING = (404, [], b"<?xml version=\"1.0\"?><Error><Code>NoSuchKey</Code></Error>")
# Rights that root has over every file, dropped; another user might not reach the program at all.
WITHOUT_ROOTS_RIGHTS = () if os.geteuid() else (
    "setpriv", "--inh-caps=-dac_override,-dac_read_search",
    "--bounding-set=-dac_override,-dac_read_search")


def windows():
    return os.name == "nt" or len(COMMAND) > 1


class BackupCase(Case):
    def make(self, name, size, seed=0, time=OLD):
        """A file with its folders, that was changed long ago."""
        path = self.path(name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        self.write(name, size, seed)
        os.utime(path, (time, time))
        return path

    def write(self, name, size, seed=0):
        with open(self.path(name), "wb") as file:
            block = hashlib.sha512(b"%d %d" % (size, seed)).digest() * 1024
            file.write((block * (size // len(block) + 1))[:size])

    def answer(self, *arguments, expected=0, **more):
        """The JSON document; the lines on the error stream are in self.said."""
        code, out, err = self.run_tool(*arguments, "--json", "--no-progress", **more)
        self.said = err
        self.assertEqual(code, expected, (arguments, out, err))
        return json.loads(out)

    def backup(self, *options, expected=0, **more):
        return self.answer("backup", "src", self.url, *options, expected=expected, **more)

    def counts(self, document):
        return tuple(document[name] for name in ("sent", "unchanged", "gone", "removed"))

    def keys(self):
        listed = self.answer("ls", self.url)["objects"]
        return sorted(o["key"][len("p/"):] for o in listed)

    def assert_no_uploads(self):
        self.assertEqual(self.answer("uploads", self.bucket_url)["uploads"], [])

    def tree(self, folder):
        """Everything below a folder: digest, size and time of files, nothing of folders."""
        found = {}
        for at, folders, files in os.walk(self.path(folder)):
            for name in files:
                path = os.path.join(at, name)
                state = os.stat(path)
                found[os.path.relpath(path, self.path(folder))] = (
                    digest(path), state.st_size, state.st_mtime_ns // 100)
            for name in folders:
                found[os.path.relpath(os.path.join(at, name), self.path(folder)) + "/"] = None
        return found

    def forge(self, lines):
        """Stores a manifest with these entries."""
        head = {"format": "mirqos-manifest", "version": 1, "runEnded": True}
        text = "".join(json.dumps(line, ensure_ascii=False, separators=(",", ":")) + "\n"
                       for line in [head] + lines)
        end = {"lines": len(lines), "sha256": hashlib.sha256(text.encode()).hexdigest()}
        with open(self.path("forged"), "w", encoding="utf-8", newline="\n") as file:
            file.write(text + json.dumps(end, separators=(",", ":")) + "\n")
        self.succeed("put", "forged", self.url + MANIFEST)
        os.remove(self.path("forged"))

    def skip_on_windows(self, why):
        if windows():
            self.skipTest(why)

    def proxy(self, rule):
        """The environment of the server behind a Proxy."""
        proxy = Proxy(server()["ENDPOINT"], rule)
        self.addCleanup(proxy.close)
        return environment(MIRQOS_ENDPOINT=proxy.endpoint)

    def setUp(self):
        super().setUp()
        os.mkdir(self.path("src"))
        self.bucket_url = self.bucket()
        self.url = self.bucket_url + "/p"


class Overview(BackupCase):
    """Every command once or twice: what systems with slow starts of programs run too."""

    def test_a_folder_lives_through_changes_and_comes_back(self):
        self.make("src/empty", 0)
        self.make("src/a/b c/\u00e4\u20ac\u65e5 +@%.bin", 1000)
        self.make("src/a/small", 10)
        self.make("src/exactly", PART)
        self.make("src/parts", 3 * PART + 1)
        os.makedirs(self.path("src/none/here"))
        first = self.backup()
        self.assertEqual(self.counts(first), (5, 0, 0, 0))
        self.assertEqual(first["sentBytes"], 1010 + PART + 3 * PART + 1)
        self.assertEqual(self.counts(self.backup()), (0, 5, 0, 0))

        os.remove(self.path("src/a/small"))
        self.make("src/a/added", 20)
        self.make("src/empty", 1, time=OLD + 1)
        self.assertEqual(self.counts(self.backup()), (2, 3, 1, 0))
        self.answer("verify", self.url, "src")
        self.assertEqual(self.counts(self.backup("--delete")), (0, 5, 0, 1))
        self.assertEqual(self.keys(), [".mirqos/manifest", "a/added",
                                       "a/b c/\u00e4\u20ac\u65e5 +@%.bin", "empty", "exactly",
                                       "parts"])

        restored = self.answer("restore", self.url, "dst/deep" + ("\\" if windows() else "/"))
        self.assertEqual((restored["files"], restored["failed"]), (5, []))
        self.assertEqual(self.tree("dst/deep"), self.tree("src"))
        self.answer("verify", self.url, "dst/deep")
        self.assert_no_uploads()

    def test_a_damaged_object_is_found_and_never_takes_a_files_place(self):
        self.make("src/one", 100)
        self.make("src/two", 100, seed=1)
        self.backup()
        self.succeed("put", os.path.join("src", "two"), self.url + "/one")
        found = self.answer("verify", self.url, expected=5)
        self.assertEqual(found["objects"], {"missing": [], "differing": ["one"], "extra": []})
        self.assertEqual((found["files"], found["good"]), (2, 1))
        self.make("dst/one", 7)
        before = digest(self.path("dst/one"))
        answer = self.answer("restore", self.url, "dst", expected=1)
        self.assertEqual([entry["path"] for entry in answer["failed"]], ["one"])
        self.assertEqual(digest(self.path("dst/one")), before)
        self.assertEqual(sorted(os.listdir(self.path("dst"))), ["one", "two"])

    def test_paths_that_would_leave_the_folder_are_refused(self):
        self.make("src/good", 5)
        self.backup()
        record = {"size": 5, "modified": 0, "sha256": digest(self.path("src/good"))}
        bad = ["../up", "a/../../up", "/rooted", "a//b", ".", "..", "a/./b", ".mirqos/0.part"]
        if windows():
            bad += ["C:/x", "C:x", "a/nul", "Com1.txt", "a\\..\\up", "a:stream", "dot./b", "q?",
                    "GOOD"]
            self.succeed("put", os.path.join("src", "good"), self.url + "/GOOD")
        lines = [{"path": path, **record} for path in sorted(bad + ["good"])]
        self.forge(lines + [{"emptyFolder": "../outside"}])
        answer = self.answer("restore", self.url, "dst/in", expected=3)
        self.assertEqual(sorted(entry["path"] for entry in answer["failed"]),
                         sorted((set(bad) - {"GOOD"} | ({"good"} if windows() else set())) |
                                {"../outside"}))
        self.assertEqual(os.listdir(self.path("dst")), ["in"])
        self.assertEqual(len(os.listdir(self.path("dst/in"))), 1)
        self.assertNotIn("up", os.listdir(self.folder))

    def test_copies_are_whole_with_one_request_and_in_parts(self):
        self.make("src/object", 2 * PART + 3)
        # RADOS Gateway decodes the source of a part twice, so only the whole copy gets a "%"
        for name, options in (("the source @+%41", ()), ("the source @+", ("--part-size", "5"))):
            source = "%s/%s" % (self.bucket_url, name)
            self.succeed("put", os.path.join("src", "object"), source)
            answer = self.answer("cp", source, self.url + "/copy", *options)
            self.assertEqual((answer["key"], answer["bytes"]), ("p/copy", 2 * PART + 3))
            self.succeed("get", self.url + "/copy", "back", "--no-progress")
            self.assertEqual(digest(self.path("back")), digest(self.path("src/object")))
            self.succeed("rm", self.url + "/copy")
        self.assert_no_uploads()


class Runs(BackupCase):
    def test_parts_above_the_limit_of_memory_go_synchronously_and_come_back(self):
        for size in (2 * PART, 2 * PART + 1, 5 * PART - 1):
            self.make("src/%d" % size, size)
        for threads in ("1", "4"):
            sent = self.backup("--in-flight", "16", "--threads", threads, "--fresh")
            self.assertEqual(self.counts(sent), (3, 0, 0, 0))
            self.answer("restore", self.url, "dst", "--threads", threads)
            self.assertEqual(self.tree("dst"), self.tree("src"))
            self.answer("verify", self.url, "--threads", threads)
            shutil.rmtree(self.path("dst"))
        self.assert_no_uploads()

    def test_many_small_files_go_with_many_threads(self):
        for number in range(300):
            self.make("src/%d/%d" % (number % 7, number), number)
        self.assertEqual(self.counts(self.backup("--threads", "8")), (300, 0, 0, 0))
        self.answer("restore", self.url, "dst", "--threads", "8")
        self.assertEqual(self.tree("dst"), self.tree("src"))
        # on a slow machine progress would be told
        self.assertIn("300 of 300 files good",
                      self.succeed("verify", self.url, "src", "--no-progress"))

    def test_a_touched_file_is_read_but_not_sent(self):
        self.make("src/small", 100)
        self.make("src/large", 2 * PART)
        self.backup()
        for name in ("small", "large"):
            os.utime(self.path("src/" + name), (OLD + 5, OLD + 5))
        self.assertEqual(self.counts(self.backup()), (0, 2, 0, 0))
        self.answer("restore", self.url, "dst")
        self.assertEqual(self.tree("dst"), self.tree("src"))

    def test_a_change_that_keeps_size_and_time_is_found_by_rehash_only(self):
        self.make("src/file", 100)
        self.backup()
        self.make("src/file", 100, seed=1)
        self.assertEqual(self.counts(self.backup()), (0, 1, 0, 0))
        self.assertEqual(self.answer("verify", self.url, "src", expected=5)["folder"],
                         {"missing": [], "differing": ["file"], "extra": []})
        self.assertEqual(self.counts(self.backup("--rehash")), (1, 0, 0, 0))
        self.assertEqual(self.counts(self.backup("--fresh")), (1, 0, 0, 0))
        self.answer("verify", self.url, "src")

    def test_a_file_that_was_just_changed_is_not_trusted_by_its_time(self):
        path = self.make("src/file", 100)
        os.utime(path)
        now = os.stat(path).st_mtime_ns
        self.backup()
        self.write("src/file", 100, seed=1)
        os.utime(path, ns=(now, now))
        self.assertEqual(self.counts(self.backup()), (1, 0, 0, 0))

    def test_a_file_that_comes_back_needs_no_sending(self):
        self.make("src/file", 100)
        self.make("src/other", 10)
        self.backup()
        os.rename(self.path("src/file"), self.path("kept"))
        self.assertEqual(self.counts(self.backup()), (0, 1, 1, 0))
        # its object is neither missing nor besides
        self.answer("verify", self.url, "src")
        self.assertEqual(self.answer("restore", self.url, "dst")["files"], 1)
        os.rename(self.path("kept"), self.path("src/file"))
        self.assertEqual(self.counts(self.backup()), (0, 2, 0, 0))
        self.answer("restore", self.url, "dst")
        self.assertEqual(self.tree("dst"), self.tree("src"))

    def test_a_file_can_become_a_folder_and_a_folder_a_file(self):
        self.make("src/a", 10)
        self.make("src/b/c", 20)
        self.backup()
        os.remove(self.path("src/a"))
        shutil.rmtree(self.path("src/b"))
        self.make("src/a/c", 30)
        self.make("src/b", 40)
        self.backup()
        self.answer("restore", self.url, "dst")
        self.assertEqual(self.tree("dst"), self.tree("src"))

    def test_the_bucket_itself_can_be_the_place(self):
        self.make("src/a/b", 10)
        self.answer("backup", "src", self.bucket_url)
        self.answer("verify", self.bucket_url, "src")
        self.answer("restore", self.bucket_url, "dst")
        self.assertEqual(self.tree("dst"), self.tree("src"))

    def test_names_that_differ_from_a_part_file_only_are_kept_apart(self):
        for name in ("a", "a.part", "a.part.part", "0.part"):
            self.make("src/" + name, len(name))
        self.backup()
        self.answer("restore", self.url, "dst")
        self.assertEqual(self.tree("dst"), self.tree("src"))

    def test_an_empty_folder_of_the_programs_own_is_taken_over_and_not_remembered(self):
        self.make("src/file", 10)
        os.mkdir(self.path("src/.mirqos"))
        self.backup()
        os.makedirs(self.path("dst/.mirqos"))
        self.answer("restore", self.url, "dst")
        self.assertEqual(os.listdir(self.path("dst")), ["file"])
        os.mkdir(self.path("dst/.mirqos"))
        self.write("dst/.mirqos/0.part", 1)
        self.assertIn("another run", self.fail_with(3, "restore", self.url, "dst"))
        self.assertEqual(os.listdir(self.path("dst/.mirqos")), ["0.part"])

    def test_links_and_pipes_are_left_out_and_counted(self):
        self.skip_on_windows("it has no pipes in folders")
        self.make("src/file", 10)
        os.symlink("file", self.path("src/link"))
        os.symlink("..", self.path("src/round"))
        os.mkfifo(self.path("src/pipe"))
        answer = self.backup()
        self.assertEqual((answer["sent"], answer["leftOut"]), (1, 3))
        os.symlink("src", self.path("way"))
        self.assertEqual(self.answer("backup", "way", self.url)["unchanged"], 1)

    def test_without_json_a_line_tells_what_was_done_and_quiet_says_nothing(self):
        self.make("src/file", 10)
        self.assertEqual(self.succeed("backup", "src", self.url, "--quiet"), "")
        self.assertIn("0 files", self.succeed("backup", "src", self.url))
        self.assertIn("restored 1 file", self.succeed("restore", self.url, "dst"))
        self.assertEqual(self.succeed("restore", self.url, "dst", "--quiet"), "")
        self.assertEqual(self.succeed("verify", self.url, "--quiet"), "")
        self.succeed("rm", self.url + "/file")
        code, out, err = self.run_tool("verify", self.url, "--quiet")
        self.assertEqual((code, out), (5, "missing  file\n"))
        self.assertEqual(err.count("\n"), 1)

    def test_where_at_is_stored_as_plus_both_cannot_be_kept(self):
        env = environment(MIRQOS_PROVIDER="5")
        self.make("src/a@b", 10)
        self.make("src/plain", 20)
        self.assertEqual(self.counts(self.backup(env=env)), (2, 0, 0, 0))
        self.answer("verify", self.url, "src", env=env)
        self.answer("restore", self.url, "dst", env=env)
        self.assertEqual(self.tree("dst"), self.tree("src"))
        self.make("src/a+b", 30)
        answer = self.backup(env=env, expected=3)
        self.assertEqual([entry["path"] for entry in answer["failed"]], ["a+b"])
        # what was stored of the other stays, until its file is gone and the object is taken over
        self.answer("restore", self.url, "again", env=env)
        self.assertEqual(self.tree("again"), self.tree("dst"))
        os.remove(self.path("src/a@b"))
        self.assertEqual(self.counts(self.backup("--delete", env=env)), (1, 1, 1, 0))
        self.answer("verify", self.url, "src", env=env)

    def test_a_file_whose_name_takes_over_an_object_keeps_it(self):
        for provider in ("5", "gcs"):
            env = environment(MIRQOS_PROVIDER=provider)
            self.make("src/a@b", 10)
            self.backup(env=env)
            os.rename(self.path("src/a@b"), self.path("src/a+b"))
            self.assertEqual(self.counts(self.backup("--delete", env=env)), (1, 0, 1, 0))
            self.answer("verify", self.url, "src", env=env)
            os.remove(self.path("src/a+b"))
            self.assertEqual(self.counts(self.backup("--delete", env=env)), (0, 0, 1, 1))
            self.assertEqual(self.keys(), [".mirqos/manifest"])

    def test_a_fresh_run_removes_what_is_gone_too(self):
        self.make("src/a", 10)
        self.make("src/gone", 10)
        self.backup()
        os.remove(self.path("src/gone"))
        self.assertEqual(self.counts(self.backup("--fresh", "--delete")), (1, 0, 1, 1))
        self.assertEqual(self.keys(), [".mirqos/manifest", "a"])


class Damage(BackupCase):
    def test_verify_names_what_is_missing_differs_or_is_there_besides(self):
        for name in ("good", "gone", "short", "long", "other", "large"):
            self.make("src/" + name, 2 * PART + 5 if name == "large" else 100)
        self.backup()
        self.succeed("rm", self.url + "/gone")
        shutil.copy(self.path("src/long"), self.path("in"))
        with open(self.path("in"), "ab") as file:
            file.write(b"x")
        self.succeed("put", "in", self.url + "/long")
        for name, size in (("short", 99), ("besides", 5), ("large", 2 * PART + 4)):
            self.write("in", size, seed=3)
            self.succeed("put", "in", self.url + "/" + name)
        self.write("in", 100, seed=4)
        self.succeed("put", "in", self.url + "/other")
        self.make("src/new", 1)
        os.remove(self.path("src/good"))
        found = self.answer("verify", self.url, "src", expected=5)
        self.assertEqual(found["objects"], {"missing": ["gone"], "extra": ["besides"],
                                            "differing": ["large", "long", "other", "short"]})
        self.assertEqual(found["folder"],
                         {"missing": ["good"], "differing": [], "extra": ["new"]})
        # one byte more does not hurt: what was backed up is there
        answer = self.answer("restore", self.url, "dst", expected=1)
        self.assertEqual([entry["path"] for entry in answer["failed"]],
                         ["gone", "large", "other", "short"])
        self.assertEqual(sorted(os.listdir(self.path("dst"))), ["good", "long"])

    def test_a_damaged_manifest_is_never_taken_for_a_smaller_one(self):
        for name in ("a", "b", "c"):
            self.make("src/" + name, 100)
        self.backup()
        self.succeed("get", self.url + MANIFEST, "manifest")
        with open(self.path("manifest"), "rb") as file:
            whole = file.read()
        for damaged in (b"", whole[:-1], whole[:whole.index(b"\n") + 1], whole.replace(b"a", b"b"),
                        b"\n".join(whole.split(b"\n")[:2] + whole.split(b"\n")[3:]), b"{}\n"):
            with open(self.path("manifest"), "wb") as file:
                file.write(damaged)
            self.succeed("put", "manifest", self.url + MANIFEST)
            for arguments in (("verify", self.url), ("restore", self.url, "dst"),
                              ("backup", "src", self.url)):
                self.assertIn("manifest", self.fail_with(1, *arguments))
        self.assertNotIn("dst", self.files())
        self.assertEqual(self.counts(self.backup("--fresh")), (3, 0, 0, 0))
        self.answer("verify", self.url, "src")

    def test_what_is_no_backup_is_told(self):
        self.assertIn("no backup", self.fail_with(4, "verify", self.url))
        self.assertIn("no backup", self.fail_with(4, "restore", self.url, "dst"))
        self.assertIn("none", self.fail_with(3, "backup", "none", self.url))
        missing = "s3://tool-missing-" + self.bucket_url[10:]
        for arguments in (("backup", "src", missing), ("verify", missing),
                          ("restore", missing, "dst")):
            self.assertIn("no such bucket", self.fail_with(1, *arguments))
        self.assertEqual(self.files(), ["src"])
        # an empty name would be the root's
        for arguments in (("backup", "", self.url), ("restore", self.url, ""),
                          ("verify", self.url, ""),
                          ("backup", "src", self.url, "--in-flight", "0"), ("backup", "src"),
                          ("cp", self.url, self.url, "--part-size", "4"),
                          ("verify", self.url, "--delete")):
            self.fail_with(2, *arguments)

    def test_a_copy_that_cannot_be_says_which_side_is_missing(self):
        self.make("src/file", 10)
        self.succeed("put", "src/file", self.url)
        self.assertIn("'none'", self.fail_with(1, "cp", self.bucket_url + "/none", self.url))
        message = self.fail_with(1, "cp", self.url, "s3://tool-missing-%s/k" % self.bucket_url[10:])
        self.assertIn("no such bucket", message)

    def test_what_cannot_be_read_is_named_and_the_run_goes_on(self):
        self.skip_on_windows("it has other rights")
        self.make("src/good", 10)
        self.make("src/shut", 10)
        self.make("src/closed/inside", 10)
        self.backup()
        self.make("src/good", 11, time=OLD + 1)
        self.make("src/shut", 12, time=OLD + 1)
        os.chmod(self.path("src/shut"), 0)
        os.chmod(self.path("src/closed"), 0)
        self.addCleanup(os.chmod, self.path("src/closed"), 0o700)
        answer = self.backup("--delete", expected=3, by=WITHOUT_ROOTS_RIGHTS)
        self.assertEqual([entry["path"] for entry in answer["failed"]], ["closed", "shut"])
        self.assertEqual(self.counts(answer), (1, 0, 0, 0))
        self.assertEqual(self.said.count("\n"), 3)
        self.assertIn("'shut'", self.said)
        # what was stored of them is still there
        self.assertEqual(self.answer("restore", self.url, "dst")["files"], 3)
        self.assertEqual(os.path.getsize(self.path("dst/shut")), 10)

    def test_a_file_that_came_back_unreadable_is_not_removed(self):
        self.skip_on_windows("it has other rights")
        self.make("src/file", 10)
        self.backup()
        os.remove(self.path("src/file"))
        self.backup()
        os.chmod(self.make("src/file", 12, time=OLD + 1), 0)
        answer = self.backup("--delete", expected=3, by=WITHOUT_ROOTS_RIGHTS)
        self.assertEqual(self.counts(answer), (0, 0, 0, 0))
        self.answer("restore", self.url, "dst")
        self.assertEqual(os.path.getsize(self.path("dst/file")), 10)

    def test_what_cannot_be_examined_is_not_taken_for_gone(self):
        self.skip_on_windows("it has other rights")
        self.make("src/listed/file", 10)
        self.make("src/listed/below/file", 10)
        os.mkdir(self.path("src/listed/none"))
        self.backup()
        os.chmod(self.path("src/listed"), 0o600)
        self.addCleanup(os.chmod, self.path("src/listed"), 0o700)
        answer = self.backup("--delete", expected=3, by=WITHOUT_ROOTS_RIGHTS)
        self.assertEqual([entry["path"] for entry in answer["failed"]],
                         ["listed/below", "listed/file", "listed/none"])
        self.assertEqual(self.counts(answer), (0, 0, 0, 0))
        os.chmod(self.path("src/listed"), 0o700)
        self.answer("restore", self.url, "dst")
        self.assertEqual(self.tree("dst"), self.tree("src"))

    def test_a_name_that_no_key_can_be_is_named(self):
        self.skip_on_windows("its names are Unicode")
        self.make("src/good", 10)
        with open(os.fsencode(self.path("src/")) + b"bad\xff", "wb") as file:
            file.write(b"x")
        self.make("src/.mirqos/own", 10)
        answer = self.backup(expected=3)
        self.assertEqual([entry["path"] for entry in answer["failed"]], [".mirqos/own", "bad\\xFF"])
        self.assertEqual(answer["sent"], 1)


class Refused(BackupCase):
    """What a service says no to, by a proxy that says it."""

    def refusing(self, method, refused):
        """The environment of a service that refuses such requests for keys like this."""
        def rule(asked, path, forward):
            return DENIED if asked == method and refused(path) else forward()
        return self.proxy(rule)

    def test_one_file_stops_no_other(self):
        for name in ("a", "b", "c"):
            self.make("src/" + name, 100)
        env = self.refusing("PUT", lambda path: path.endswith("/p/b"))
        answer = self.backup("--threads", "1", env=env, expected=1)
        self.assertEqual((answer["sent"], [entry["path"] for entry in answer["failed"]]),
                         (2, ["b"]))
        self.assertIn("status 15", self.said)
        self.answer("verify", self.url)
        self.assertEqual(self.counts(self.backup()), (1, 2, 0, 0))

    def test_a_service_that_refuses_every_file_is_not_asked_for_all(self):
        for number in range(50):
            self.make("src/%02d" % number, 100)
        asked = []
        env = self.refusing("PUT", lambda path: asked.append(path) or True)
        self.fail_with(1, "backup", "src", self.url, "--threads", "1", "--no-progress", env=env)
        self.assertEqual(len(asked), 10)

    def test_a_fresh_run_that_fails_forgets_nothing_that_is_stored(self):
        for number in range(20):
            self.make("src/%02d" % number, 100)
        self.backup()
        env = self.refusing("PUT", lambda path: "05" <= path[-2:] <= "19")
        self.fail_with(1, "backup", "src", self.url, "--fresh", "--threads", "1", "--no-progress",
                       env=env)
        answer = self.answer("restore", self.url, "dst")
        self.assertEqual((answer["files"], answer["runEnded"]), (20, False))
        # not begun are those after the tenth refusal
        self.assertEqual(self.counts(self.backup()), (10, 10, 0, 0))

    def test_what_was_not_removed_is_removed_by_a_later_run(self):
        names = ("a", "b")
        for name in names:
            self.make("src/" + name, 10)
        self.backup()
        for name in names:
            os.rename(self.path("src/" + name), self.path(name))
        env = self.refusing("POST", lambda path: "delete" in path)
        self.fail_with(1, "backup", "src", self.url, "--delete", "--no-progress", env=env)
        # what comes back meanwhile is sent, for it may be gone
        os.rename(self.path("a"), self.path("src/a"))
        self.assertEqual(self.counts(self.backup("--delete")), (1, 0, 0, 1))
        self.assertEqual(self.keys(), [".mirqos/manifest", "a"])

    def test_a_removal_one_by_one_says_what_was_refused(self):
        self.make("src/a", 10)
        for name in ("q", "r"):
            self.succeed("put", os.path.join("src", "a"), self.url + "/" + name)
        addresses = [self.url + "/" + name for name in ("none", "q", "r")]
        answers = {"/none": MISSING, "/r": DENIED}

        def rule(method, path, forward):
            answer = answers.get(path[path.rindex("/"):]) if method == "DELETE" else None
            return answer or forward()
        env = self.proxy(rule)
        message = self.fail_with(1, "rm", "--provider", "gcs", *addresses, env=env)
        self.assertIn("'p/r'", message)
        self.assertIn("2 of 3 objects had been accepted before", message)
        everything = self.proxy(lambda *_: DENIED)
        self.assertIn("0 of 3", self.fail_with(1, "rm", "--provider", "gcs", *addresses,
                                               env=everything))
        self.succeed("rm", "--provider", "gcs", *addresses)
        self.assertEqual(self.keys(), [])

    def test_one_object_stops_no_other_on_the_way_back(self):
        for name in ("a", "b", "c"):
            self.make("src/" + name, 100)
        self.backup()
        env = self.refusing("GET", lambda path: path.endswith("/p/b"))
        found = self.answer("verify", self.url, env=env, expected=1)
        self.assertEqual((found["good"], [entry["path"] for entry in found["failed"]]), (2, ["b"]))
        answer = self.answer("restore", self.url, "dst", "--threads", "1", env=env, expected=1)
        self.assertEqual((answer["files"], [entry["path"] for entry in answer["failed"]]),
                         (2, ["b"]))
        self.assertIn("status 15", self.said)
        self.assertEqual(sorted(os.listdir(self.path("dst"))), ["a", "c"])
        self.answer("restore", self.url, "dst")
        self.assertEqual(self.tree("dst"), self.tree("src"))
        # what differs says more than what could not be read
        self.succeed("rm", self.url + "/c")
        found = self.answer("verify", self.url, env=env, expected=5)
        self.assertEqual(found["objects"]["missing"], ["c"])
        self.assertIn("'b'", self.said)

    def test_a_service_that_refuses_every_object_is_not_asked_for_all(self):
        for number in range(50):
            self.make("src/%02d" % number, 100)
        self.backup()
        asked = []

        def refused(path):
            is_file = "/p/" in path and MANIFEST not in path
            return is_file and (asked.append(path) or True)
        env = self.refusing("GET", refused)
        for arguments in (("restore", self.url, "dst"), ("verify", self.url)):
            asked.clear()
            self.fail_with(1, *arguments, "--threads", "1", "--no-progress", env=env)
            self.assertEqual(len(set(asked)), 10)


class Trouble(BackupCase):
    """At a chosen moment, by a relay that stalls there."""

    def setUp(self):
        self.skip_on_windows("a runner does not pass the interrupt on")
        super().setUp()

    def relay(self, after, upwards=True):
        relay = Relay(server()["ENDPOINT"], after, upwards)
        self.addCleanup(relay.close)
        return relay, environment(MIRQOS_ENDPOINT=relay.endpoint)

    def at_the_stall(self, relay, env, act, *arguments, by=()):
        """Runs the program, started by the command `by` if one is given, calls `act` with its
        process when it stalls, and returns its exit code and what it said."""
        tool = subprocess.Popen([*by, *COMMAND, *arguments, "--no-progress"], env=env,
                                cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        try:
            self.assertTrue(relay.reached.wait(LIMIT))
            act(tool)
            out, err = tool.communicate(timeout=LIMIT)
        finally:
            tool.kill()
            tool.wait()
        return tool.returncode, out.decode(), err.decode()

    def test_an_interrupt_during_a_large_upload_leaves_nothing_open(self):
        self.make("src/a", 10)
        self.make("src/large", 8 * PART)
        for in_flight in ("16", "128"):
            for stays in (True, False):
                relay, env = self.relay(5 * MIB)

                def act(tool, relay=relay, stays=stays):
                    tool.send_signal(signal.SIGINT)
                    if not stays:
                        relay.release.set()
                code, out, err = self.at_the_stall(relay, env, act, "backup", "src", self.url,
                                                   "--in-flight", in_flight)
                self.assertEqual((code, out), (130, ""), err)
                self.assertIn("interrupted", err)
                self.assert_no_uploads()
                relay.close()
        self.assertEqual(self.counts(self.backup()), (2, 0, 0, 0))

    def test_an_interrupted_run_goes_on_where_it_was(self):
        for number in range(20):
            self.make("src/%02d" % number, 100 * 1024)
        relay, env = self.relay(600 * 1024)

        def act(tool):
            tool.send_signal(signal.SIGINT)
            # the request ends within the time that a command has to end by itself
            relay.release.set()
        code, _, err = self.at_the_stall(relay, env, act, "backup", "src", self.url, "--threads",
                                         "1")
        self.assertEqual(code, 130, err)
        done = self.answer("restore", self.url, "dst")
        self.assertEqual((done["runEnded"], done["failed"]), (False, []))
        self.assertIn(done["files"], range(1, 20))
        self.assertEqual(self.counts(self.backup()), (20 - done["files"], done["files"], 0, 0))
        self.assertTrue(self.answer("verify", self.url, "src")["runEnded"])

    def kill_after(self, done, *arguments):
        """Runs the program and kills it when the server has done such a request."""
        server_has, gone = types.SimpleNamespace(reached=threading.Event()), threading.Event()

        def rule(method, path, forward):
            answer = forward()
            if not done(method, path):
                return answer
            server_has.reached.set()
            gone.wait(LIMIT)
            return None

        def act(tool):
            tool.kill()
            tool.wait()
            gone.set()
        self.at_the_stall(server_has, self.proxy(rule), act, *arguments)

    def test_a_killed_run_leaves_no_record_that_later_runs_trust(self):
        for size, done in (
                (100, lambda method, path: method == "PUT" and path.endswith("/p/file")),
                (2 * PART, lambda method, path: method == "POST" and "uploadId=" in path)):
            self.make("src/file", size)
            self.backup()
            shutil.copy2(self.path("src/file"), self.path("kept"))
            self.make("src/file", size, seed=1, time=OLD + 1)
            self.kill_after(done, "backup", "src", self.url)
            answer = self.answer("restore", self.url, "dst", expected=1)
            self.assertEqual(([entry["path"] for entry in answer["failed"]], answer["runEnded"]),
                             (["file"], False))
            os.replace(self.path("kept"), self.path("src/file"))
            self.assertEqual(self.counts(self.backup()), (1, 0, 0, 0))
            self.assertTrue(self.answer("verify", self.url, "src")["runEnded"])

    def test_a_killed_run_that_rehashes_needs_no_sending_of_what_is_the_same(self):
        for number in range(5):
            self.make("src/%d" % number, 100)
        self.backup()
        self.make("src/3", 100, seed=1)
        self.kill_after(lambda method, path: method == "PUT" and path.endswith("/p/3"), "backup",
                        "src", self.url, "--rehash", "--threads", "1")
        self.assertEqual(self.counts(self.backup()), (1, 4, 0, 0))

    def test_an_interrupt_during_a_restore_leaves_no_part_file(self):
        self.make("src/large", 8 * PART)
        self.backup()
        for threads in ("1", "4"):
            relay, env = self.relay(5 * MIB, upwards=False)
            code, out, err = self.at_the_stall(relay, env,
                                               lambda tool: tool.send_signal(signal.SIGINT),
                                               "restore", self.url, "dst", "--threads", threads)
            self.assertEqual((code, out), (130, ""), err)
            self.assertEqual(os.listdir(self.path("dst")), [])
            relay.close()
        self.answer("restore", self.url, "dst")
        self.assertEqual(self.tree("dst"), self.tree("src"))

    def test_what_is_started_to_outlive_its_terminal_does(self):
        self.make("src/large", 2 * PART)
        relay, env = self.relay(5 * MIB)

        def act(tool):
            tool.send_signal(signal.SIGHUP)
            # where it would end it, that takes two seconds
            self.assertRaises(subprocess.TimeoutExpired, tool.wait, timeout=4)
            relay.release.set()
        code, _, err = self.at_the_stall(relay, env, act, "backup", "src", self.url, by=("nohup",))
        self.assertEqual(code, 0, err)
        self.answer("verify", self.url, "src")

    def test_a_server_that_dies_ends_the_run_with_a_status(self):
        self.make("src/large", 4 * PART)
        self.make("src/small", 10)
        self.backup()
        self.make("src/large", 4 * PART, seed=1, time=OLD + 1)
        relay, env = self.relay(5 * MIB)
        code, out, err = self.at_the_stall(relay, env, lambda tool: relay.close(), "backup", "src",
                                           self.url)
        self.assertEqual((code, out), (1, ""), err)
        self.assertIn("status 99", err)
        self.assertEqual(err.count("\n"), 1, err)
        # what was stored is still whole
        self.answer("verify", self.url)
        relay, env = self.relay(5 * MIB, upwards=False)
        code, out, err = self.at_the_stall(relay, env, lambda tool: relay.close(), "restore",
                                           self.url, "dst")
        self.assertEqual((code, out), (1, ""), err)
        self.assertIn("status 99", err)
        self.assertEqual(os.listdir(self.path("dst")), [])

    def test_a_file_that_changes_while_it_is_read_is_not_recorded(self):
        self.make("src/large", 6 * PART)
        self.make("src/small", 10)
        self.backup()
        before = digest(self.path("src/large"))
        for in_flight in ("16", "128"):
            for change in (lambda path: os.truncate(path, 3 * PART),
                           lambda path: os.truncate(path, 7 * PART),
                           lambda path: os.utime(path)):
                self.make("src/large", 6 * PART, seed=1, time=OLD + 1)
                relay, env = self.relay(5 * MIB)

                def act(_, relay=relay, change=change):
                    change(self.path("src/large"))
                    relay.release.set()
                code, out, err = self.at_the_stall(relay, env, act, "backup", "src", self.url,
                                                   "--in-flight", in_flight, "--threads", "1",
                                                   "--json")
                self.assertEqual(code, 3, err)
                self.assertEqual([entry["path"] for entry in json.loads(out)["failed"]], ["large"])
                self.assertIn("changed while it was read", err)
                self.assert_no_uploads()
                relay.close()
        # the version before is still there
        self.answer("restore", self.url, "dst")
        self.assertEqual(digest(self.path("dst/large")), before)

    def test_a_file_that_goes_away_meanwhile_is_named(self):
        self.make("src/a", 100)
        self.make("src/b", 100)
        relay, env = self.relay(0)

        def act(_):
            os.remove(self.path("src/b"))
            relay.release.set()
        # the first request asks for the bucket's manifest, after the folder was looked through
        code, _, err = self.at_the_stall(relay, env, act, "backup", "src", self.url)
        self.assertEqual(code, 3, err)
        self.assertIn("'b'", err)
        self.assertEqual(self.keys(), [".mirqos/manifest", "a"])

    def test_a_second_restore_into_the_same_folder_is_refused(self):
        self.make("src/large", 2 * PART)
        self.backup()
        relay, env = self.relay(5 * MIB, upwards=False)

        def act(_):
            self.assertIn(".mirqos", self.fail_with(3, "restore", self.url, "dst"))
            relay.release.set()
        code, _, err = self.at_the_stall(relay, env, act, "restore", self.url, "dst")
        self.assertEqual(code, 0, err)
        self.assertEqual(self.tree("dst"), self.tree("src"))


if __name__ == "__main__":
    run(__doc__)
