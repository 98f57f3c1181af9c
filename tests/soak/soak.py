"""Runs the soak program and looks at what it leaves from outside.

With a log viewer and a log configuration program it also lets viewers come and go, set and remove
breakpoints and hold threads, and changes the level and the file of the log, at random. Afterwards it
reads every object with a client of its own, and every line of every log file.
"""

import argparse
import base64
import email.utils
import glob
import hashlib
import hmac
import http.client
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import time
import urllib.parse
import xml.etree.ElementTree

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tools"))
from tool_case import server

PATIENCE = 300  # seconds that the program may take beyond its time; its own watchdog is faster
LIMIT = 120     # seconds for one run of another program
PREFIX = re.compile(r"\[\d{4}/\d\d/\d\d \d\d:\d\d:\d\d:\d{3}   \d\d   \d{5,}   \d{5,}   "
                    r"(          |0X[0-9a-f]{8})\] ")
SOURCE = re.compile(r"   \{soak\.exe::MIRQOS\.dll\(\d+\.\d+\)\}$")
HEADER_LINES = 7
# what host threads log again and again
PATTERNS = ("ReadObjectAsync enter", "Succeed to delete", "t3/", "no need wait", "Copy from")


class Failure(Exception):
    pass


def require(holds, what):
    if not holds:
        raise Failure(what)


class Client:
    """A client of the S3 server that shares nothing with the library: it signs with version 2."""

    def __init__(self):
        self.server = server()
        self.connection = http.client.HTTPConnection(self.server["ENDPOINT"], timeout=LIMIT)

    def ask(self, method, bucket, key="", query="", signed_query=""):
        path = "/" + (bucket and bucket + "/" + urllib.parse.quote(key, safe="/~"))
        date = email.utils.formatdate(usegmt=True)
        text = "\n".join((method, "", "", date, path + signed_query))
        digest = hmac.new(self.server["SECRET_KEY"].encode(), text.encode(), hashlib.sha1).digest()
        signature = self.server["ACCESS_KEY"] + ":" + base64.b64encode(digest).decode()
        whole_query = "&".join(part for part in (signed_query[1:], query) if part)
        self.connection.request(method, path + ("?" + whole_query if whole_query else ""),
                                headers={"Date": date, "Authorization": "AWS " + signature})
        answer = self.connection.getresponse()
        body = answer.read()
        require(answer.status in (200, 204), "%s %s: %d %r" % (method, path, answer.status, body))
        return body

    def document(self, bucket, query="", signed_query=""):
        root = xml.etree.ElementTree.fromstring(self.ask("GET", bucket, "", query, signed_query))
        for element in root.iter():
            element.tag = element.tag.rpartition("}")[2]
        return root

    def sizes(self, bucket):
        """The size of each object by its key."""
        found, marker = {}, ""
        while True:
            root = self.document(bucket, "encoding-type=url&marker=" +
                                 urllib.parse.quote(marker, safe=""))
            for entry in root.findall("Contents"):
                marker = urllib.parse.unquote_plus(entry.findtext("Key"))
                found[marker] = int(entry.findtext("Size"))
            if root.findtext("IsTruncated") != "true":
                return found


def check_objects(manifest):
    """Compares the server's objects with the program's list of them, and removes them."""
    with open(manifest) as lines:
        bucket = lines.readline().strip()
        entries = [line.split(" ") for line in lines.read().splitlines()]
    expected = {bytes.fromhex(key).decode(): (int(size), digest) for key, size, digest in entries}
    client = Client()
    sizes = client.sizes(bucket)
    require(sizes == {key: size for key, (size, _) in expected.items()},
            "other objects are listed: %s" %
            sorted(set(sizes.items()) ^ {(key, size) for key, (size, _) in expected.items()}))
    for key, (_, digest) in expected.items():
        require(hashlib.sha256(client.ask("GET", bucket, key)).hexdigest() == digest,
                "other bytes under " + key)
    uploads = client.document(bucket, signed_query="?uploads").findall("Upload")
    require(not uploads, "%d uploads are open" % len(uploads))
    for key in expected:
        client.ask("DELETE", bucket, key)
    client.ask("DELETE", bucket)
    names = [name.text for name in client.document("").iter("Name")]
    require(not any(name.startswith(bucket) for name in names), "buckets are left")
    print("soak: %d objects are on the server as they should be" % len(expected))


def lines_of(path):
    with open(path, "rb") as file:
        content = file.read()
    # a line that is cut may end within a character
    if content.startswith(b"\xff\xfe"):
        text = content[2:].decode("utf-16-le", "surrogatepass")
    else:
        text = content.decode("utf-8", "replace")
    require(text.endswith("\r\n"), "the last line of %s is cut" % path)
    return text[:-2].split("\r\n")


def check_log(folder, with_source):
    """Each line is whole, and only one."""
    count = 0
    paths = glob.glob(os.path.join(folder, "*.[Ll]og"))
    for path in paths:
        lines = lines_of(path)
        if with_source:
            require(all("SUMMARY LOG" not in line for line in lines[HEADER_LINES:]) and
                    "SUMMARY LOG" in lines[1], "%s has not one header" % path)
            lines = lines[HEADER_LINES:]
        for line in lines:
            require(PREFIX.match(line) and len(PREFIX.findall(line)) == 1 and
                    (not with_source or SOURCE.search(line) and line.count("{soak.exe::") == 1),
                    "a torn line in %s: %r" % (path, line))
        count += len(lines)
    require(count > 0, "there are no log lines")
    print("soak: %d lines in %d log files are whole" % (count, len(paths)))


class Meddling(threading.Thread):
    """Lets viewers come and go and changes what is logged where, until it is told to stop."""

    def __init__(self, options, program, pid, folder):
        super().__init__()
        self.options, self.program, self.pid, self.folder = options, program, pid, folder
        self.random = random.Random(options.seed)
        self.stopped = threading.Event()
        self.failure = None
        self.counts = {"viewers": 0, "viewers killed": 0, "breakpoints": 0, "threads held": 0,
                       "lines shown": 0, "levels": 0, "files": 0}

    def run(self):
        try:
            self.await_block()
            self.set_file()
            while not self.stopped.wait(self.random.uniform(0, 2)):
                self.random.choice((self.view, self.view, self.set_level, self.set_file))()
        except BaseException as failure:  # told by finish()
            self.failure = failure

    def finish(self):
        self.stopped.set()
        self.join()
        if self.failure:
            raise self.failure
        print("soak: " + ", ".join("%d %s" % (count, name) for name, count in self.counts.items()))

    def control(self, *arguments):
        done = subprocess.run(self.options.runner + [self.options.logctl] + list(arguments),
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=LIMIT)
        if done.returncode != 0:
            try:
                self.program.wait(10)
            except subprocess.TimeoutExpired:
                raise Failure("mirqos-logctl %s: %d %r" %
                              (arguments, done.returncode, done.stderr)) from None

    def await_block(self):
        """The program has none before it logs."""
        command = self.options.runner + [self.options.logctl, "show", self.pid]
        while subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True,
                             timeout=LIMIT).returncode != 0:
            require(self.program.poll() is None, "the program ended without a line")

    def whom(self):
        return self.random.choice(("--all", "MIRQOS.dll"))

    def set_level(self):
        self.control("set-level", self.pid, self.whom(), self.random.choice("0122"))
        self.counts["levels"] += 1

    def set_file(self):
        self.counts["files"] += 1
        path = os.path.join(self.folder, "soak%d.Log" % self.counts["files"])
        self.control("set-path", self.pid, self.whom(), windows_path(path, self.options))
        self.control("set-level", self.pid, "--all", "2")
        deadline = time.monotonic() + LIMIT
        while not os.path.exists(path) and not self.stopped.wait(0.1):
            require(time.monotonic() < deadline, "nothing is logged to " + path)

    def view(self):
        """One viewer, from its start to its end, however it ends."""
        viewer = subprocess.Popen(self.options.runner + [self.options.logview, "soak.exe"],
                                  stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE)
        shown = []
        reader = threading.Thread(target=lambda: shown.extend(viewer.stdout))
        reader.start()
        self.counts["viewers"] += 1
        killed = self.random.random() < 0.3
        try:
            for _ in range(self.random.randrange(8)):
                command = self.random.choice(("break", "break", "remove 1", "release all", "list",
                                              "held"))
                if command == "break":
                    command += " " + self.random.choice(PATTERNS)
                    self.counts["breakpoints"] += 1
                viewer.stdin.write((command + "\n").encode())
                viewer.stdin.flush()
                if self.stopped.wait(self.random.uniform(0, 1.5)):
                    break
            if killed:
                viewer.kill()
                self.counts["viewers killed"] += 1
            else:
                viewer.stdin.write(b"quit\n")
                viewer.stdin.flush()
            code = viewer.wait(LIMIT)
            require(killed or code == 0, "mirqos-logview ended with %d: %r" % (code, shown[-3:]))
        finally:
            viewer.kill()
            viewer.wait()
            reader.join()
            for stream in (viewer.stdin, viewer.stdout, viewer.stderr):
                try:
                    stream.close()
                except BrokenPipeError:
                    pass
        self.counts["threads held"] += sum(line.startswith(b"*** held") for line in shown)
        self.counts["lines shown"] += sum(line.startswith(b"[") for line in shown)


def windows_path(path, options):
    """Wine shows the root folder as drive Z:."""
    return "Z:" + path.replace("/", "\\") if options.runner else path


def run(options, folder):
    manifest = os.path.join(folder, "manifest")
    temporary = os.path.join(folder, "temporary")
    os.mkdir(temporary)
    # The C library on Linux gives large blocks back as they are freed, and keeps few pools for small
    # ones, or what it holds would say more of it than of the program.
    environment = dict(os.environ, MIRQOS_LOG_FILE=os.path.join(folder, "soak.log"),
                       MALLOC_MMAP_THRESHOLD_="65536", MALLOC_ARENA_MAX="2",
                       **{"MIRQOS_S3_" + name: value for name, value in server().items()})
    if not options.runner:
        environment["TMPDIR"] = temporary  # Wine would start a server of its own there
    program = subprocess.Popen(
        options.runner + [options.program, str(options.seconds), str(options.seed),
                          windows_path(manifest, options), str(options.memory_slack_mib)],
        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True, env=environment)
    meddling = None
    killer = threading.Timer(options.seconds + PATIENCE, program.kill)
    killer.start()
    try:
        for line in program.stdout:
            print(line.rstrip(), flush=True)
            begun = re.match(r"process (\d+)", line)
            if begun and options.logview:
                meddling = Meddling(options, program, begun.group(1), folder)
                meddling.start()
        code = program.wait()
    finally:
        killer.cancel()
        program.kill()
        if meddling:
            meddling.finish()
    require(code == 0, "the program ended with %d" % code)
    require(not os.listdir(temporary), "temporary files are left: %s" % os.listdir(temporary))
    check_log(folder, bool(options.logview))
    check_objects(manifest)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program")
    parser.add_argument("--seconds", type=int, default=60)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().getrandbits(63),
                        help="decides what is done and where the faults fall; random unless given")
    parser.add_argument("--memory-slack-mib", type=int, default=4)
    parser.add_argument("--runner", action="append", default=[],
                        help="starts programs built for another system")
    parser.add_argument("--logctl", help="mirqos-logctl, where there is one")
    parser.add_argument("--logview", help="mirqos-logview, likewise")
    options = parser.parse_args()
    folder = tempfile.mkdtemp(prefix="mirqos-soak-")
    try:
        run(options, folder)
    except (Failure, subprocess.TimeoutExpired) as failure:
        print("soak: FAILED with seed %d: %s\nsoak: its logs are in %s" %
              (options.seed, failure, folder))
        return 1
    shutil.rmtree(folder)
    return 0


if __name__ == "__main__":
    sys.exit(main())
