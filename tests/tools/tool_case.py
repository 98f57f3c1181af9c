"""What the tests of the host program share: see run()."""

import argparse
import hashlib
import http.server
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import unittest
import uuid

LIMIT = 120  # seconds for one run of the program, so that a hung one fails
WRONG_SECRET = "wr0ngS3cretThatMustNotBeShownAnywhere123"
COMMAND = []


def server():
    names = ("ENDPOINT", "REGION", "ACCESS_KEY", "SECRET_KEY")
    values = {name: os.environ.get("MIRQOS_S3_" + name, "") for name in names}
    if not values["ENDPOINT"]:
        with open(os.environ["MIRQOS_S3_ENV"]) as lines:
            given = dict(line.rstrip("\n").split("=", 1) for line in lines if "=" in line)
        values = {name: given["MIRQOS_S3_" + name] for name in names}
    return values


def environment(**changes):
    """What the program sees: the server and the keys, nothing of the user's own."""
    kept = {n: v for n, v in os.environ.items() if not n.startswith(("MIRQOS_S3_", "AWS_"))}
    s3 = server()
    kept.update(MIRQOS_ENDPOINT="http://" + s3["ENDPOINT"], MIRQOS_REGION=s3["REGION"],
                MIRQOS_ACCESS_KEY=s3["ACCESS_KEY"], MIRQOS_SECRET_KEY=s3["SECRET_KEY"])
    kept.update(changes)
    return {n: v for n, v in kept.items() if v is not None}


def is_kept_by_sdk(key):
    """Whether the SDK that the program is built with sends the key as it is, and not without its
    empty parts and with its dots followed."""
    changes_keys = os.environ.get("MIRQOS_AWS_SDK") == "installed"
    parts = key.split("/")
    return not changes_keys or not ("" in parts[:-1] or "." in parts or ".." in parts)


def digest(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()


class Case(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="mirqos-tool-")
        self.addCleanup(shutil.rmtree, self.folder)

    def path(self, name):
        return os.path.join(self.folder, name)

    def run_tool(self, *arguments, env=None, keys=b"", by=(), to=subprocess.PIPE):
        """Runs the program in the test's folder, with `keys` on its input stream, started by the
        command `by` if one is given. What goes `to` a stream of the test is not in the result. The
        secrets never come out of it."""
        env = env or environment()
        done = subprocess.run([*by, *COMMAND, *arguments], env=env, cwd=self.folder, timeout=LIMIT,
                              input=keys, stdout=to, stderr=subprocess.PIPE)
        out = (done.stdout or b"").decode("utf-8").replace("\r\n", "\n")
        err = done.stderr.decode("utf-8").replace("\r\n", "\n")
        for secret in (server()["SECRET_KEY"], WRONG_SECRET):
            self.assertNotIn(secret, out + err)
        if len(COMMAND) > 1:
            # Wine's own services start and end with each program and write to its error stream; at
            # times one of them (ntoskrnl.exe in Wine 8) faults. A fault of the program itself shows
            # in its exit code.
            err = "".join(line for line in err.splitlines(True) if not line.startswith("wine: "))
        return done.returncode, out, err

    def succeed(self, *arguments, **more):
        code, out, err = self.run_tool(*arguments, **more)
        self.assertEqual((code, err), (0, ""), (arguments, out))
        return out

    def fail_with(self, expected, *arguments, **more):
        code, out, err = self.run_tool(*arguments, **more)
        self.assertEqual((code, out), (expected, ""), (arguments, err))
        self.assertEqual(err.count("\n"), 1, err)
        self.assertTrue(err.startswith("mirqos: "), err)
        return err

    def refuse(self, *arguments, **more):
        """For a key that the SDK does not keep."""
        self.assertIn("cannot send the key", self.fail_with(1, *arguments, **more))

    def write(self, name, size):
        with open(self.path(name), "wb") as file:
            file.write(random.Random(size).randbytes(size))
        return name

    def bucket(self):
        name = "tool-" + uuid.uuid4().hex
        self.succeed("mb", "s3://" + name)
        return "s3://" + name

    def files(self):
        return sorted(os.listdir(self.folder))


class Service(http.server.BaseHTTPRequestHandler):
    """Says what the case's functions say."""
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        if "list-type=2" in self.path:
            self.server.listing(self)
        else:
            self.server.answer(self)

    def do_POST(self):
        self.rfile.read(int(self.headers["Content-Length"]))
        self.server.answer(self)

    def do_HEAD(self):
        self.send(self.server.head, b"")

    def send(self, status, body, headers=()):
        self.send_response(status)
        self.send_header("Content-Length", str(len(body)))
        for name, value in headers:
            self.send_header(name, value)
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)

    def range(self):
        first, last = self.headers["Range"].split("=")[1].split("-")
        return int(first), int(last)

    def send_range_of(self, data):
        """What the request asks for of an object of these bytes."""
        first, last = self.range()
        body = data[first:last + 1]
        if body:
            place = "bytes %d-%d/%d" % (first, first + len(body) - 1, len(data))
            self.send(206, body, [("Content-Range", place)])
        else:
            self.refuse(416, "InvalidRange")

    def refuse(self, status, code):
        self.send(status, ("<?xml version=\"1.0\"?><Error><Code>%s</Code><Message>m</Message>"
                           "</Error>" % code).encode())

    def list(self, objects, token=None):
        entries = "".join("<Contents><Key>%s</Key><Size>%d</Size></Contents>" % o for o in objects)
        more = "false</IsTruncated>" if token is None else (
            "true</IsTruncated><NextContinuationToken>%s</NextContinuationToken>" % token)
        self.send(200, ("<?xml version=\"1.0\"?><ListBucketResult><IsTruncated>%s%s"
                        "</ListBucketResult>" % (more, entries)).encode())

    def log_message(self, *_):
        pass


class ScriptedCase(Case):
    """For what a real server does not do on demand."""

    def serve(self, answer, listing=lambda request: request.refuse(403, "AccessDenied"), head=404):
        """The environment of a service that answers requests with `answer`, object listings with
        `listing` and questions without a body with the status `head`."""
        service = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Service)
        service.daemon_threads = True
        service.block_on_close = False
        service.answer, service.listing, service.head = answer, listing, head
        threading.Thread(target=service.serve_forever, daemon=True).start()
        self.addCleanup(service.server_close)
        self.addCleanup(service.shutdown)
        return environment(MIRQOS_ENDPOINT="http://127.0.0.1:%d" % service.server_port)


def run(description):
    """The main program of a test: [--runner RUNNER] PROGRAM [CASE...].

    The server is the one that MIRQOS_S3_ENDPOINT, _REGION, _ACCESS_KEY and _SECRET_KEY name, or
    without them the file of such lines that MIRQOS_S3_ENV names. RUNNER starts programs built for
    another system. Without cases all are run.
    """
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("--runner")
    parser.add_argument("program")
    options, rest = parser.parse_known_args()
    COMMAND.extend(([options.runner] if options.runner else []) +
                   [os.path.abspath(options.program)])
    # a shell that starts the tests in the background has them, and what they start, ignore it
    signal.signal(signal.SIGINT, signal.default_int_handler)
    unittest.main(argv=[sys.argv[0]] + rest, verbosity=2)
