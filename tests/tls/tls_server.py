#!/usr/bin/env python3
"""A TLS server for tests, on several free loopback ports, each with a certificate of its own kind.

  tls_server.py up DIR [--system-trust]   makes certificates in DIR and starts the server
  tls_server.py down DIR                  ends it

The server belongs to the process that called: another's "up" fails and its "down" does nothing, as
long as that process lives.

DIR/ports lists "NAME PORT" lines; DIR/ca.pem is the authority to trust. --system-trust makes the
whole machine trust it until the server ends (needs root): programs under Wine know no other way.
Nothing outlives a run: the authority's key is thrown away at once, the server ends by itself after
a while, and what a killed run left in the machine's trust goes with the next "up" or "down".

The plain port "control" answers GET /NAME with the counts of that port, once no connection to it
is open, and GET /NAME/now with those so far: "connections=N handshakes=N requests=N".
"""
import argparse
import fcntl
import glob
import hashlib
import os
import re
import select
import shutil
import signal
import socket
import ssl
import subprocess
import sys
import tempfile
import threading

LIFE_SECONDS = 900
CONNECTION_SECONDS = 30
BODY_LIMIT = 64 * 1024 * 1024
TRUST_FOLDER = "/usr/local/share/ca-certificates"
TRUST_PREFIX = "mirqos-test-authority-"

# name -> (certificate, TLS versions the port speaks)
TLS12 = (ssl.TLSVersion.TLSv1_2, ssl.TLSVersion.TLSv1_2)
TLS13 = (ssl.TLSVersion.TLSv1_3, ssl.TLSVersion.TLSv1_3)
TODAY = (ssl.TLSVersion.TLSv1_2, ssl.TLSVersion.TLSv1_3)
OUTDATED = (ssl.TLSVersion.TLSv1, ssl.TLSVersion.TLSv1_1)
PORTS = {
    "good": ("good", TODAY),
    "tls12": ("good", TLS12),
    "tls13": ("good", TLS13),
    "outdated": ("good", OUTDATED),
    "expired": ("expired", TODAY),
    "wronghost": ("wronghost", TODAY),
    "selfsigned": ("selfsigned", TODAY),
    "stranger": ("stranger", TODAY),
    "unverified": ("selfsigned", TODAY),
    # those of the store's tests, which may run beside the transport's and count, too
    "trusted": ("good", TLS12),
    "untrusted": ("selfsigned", TODAY),
    "misnamed": ("wronghost", TODAY),
}


# ---- certificates

CA_CONFIG = """
[ca]
default_ca = this
[this]
database = index
serial = serial
new_certs_dir = .
default_md = sha256
policy = any
copy_extensions = none
unique_subject = no
[any]
commonName = supplied
"""


def openssl(folder, *arguments):
    subprocess.run(["openssl", *arguments], cwd=folder, check=True, timeout=60,
                   stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)


def new_authority(folder, name):
    openssl(folder, "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-sha256", "-days", "2",
            "-subj", f"/CN=MIRQOS test authority {name} {os.getpid()}",
            "-addext", "basicConstraints=critical,CA:TRUE",
            "-addext", "keyUsage=critical,keyCertSign,cRLSign",
            "-keyout", f"{name}.key", "-out", f"{name}.pem")


def new_certificate(folder, name, authority, host, start, end):
    with open(os.path.join(folder, "extensions"), "w") as out:
        out.write(f"subjectAltName=DNS:{host}\nbasicConstraints=CA:FALSE\n"
                  "extendedKeyUsage=serverAuth\nkeyUsage=digitalSignature,keyEncipherment\n")
    openssl(folder, "req", "-newkey", "rsa:2048", "-nodes", "-subj", f"/CN={host}",
            "-keyout", f"{name}.key", "-out", f"{name}.csr")
    openssl(folder, "ca", "-batch", "-notext", "-config", "ca.conf", "-cert", f"{authority}.pem",
            "-keyfile", f"{authority}.key", "-extfile", "extensions", "-startdate", start,
            "-enddate", end, "-in", f"{name}.csr", "-out", f"{name}.pem")


def make_certificates(target):
    with tempfile.TemporaryDirectory(dir=target) as folder:
        with open(os.path.join(folder, "ca.conf"), "w") as out:
            out.write(CA_CONFIG)
        open(os.path.join(folder, "index"), "w").close()
        openssl(folder, "rand", "-hex", "-out", "serial", "16")
        new_authority(folder, "ca")
        new_authority(folder, "other")
        now = ("20200101000000Z", "20491231000000Z")
        past = ("20200101000000Z", "20210101000000Z")
        new_certificate(folder, "good", "ca", "localhost", *now)
        new_certificate(folder, "expired", "ca", "localhost", *past)
        new_certificate(folder, "wronghost", "ca", "elsewhere.example", *now)
        new_certificate(folder, "stranger", "other", "localhost", *now)
        openssl(folder, "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-sha256", "-days", "2",
                "-subj", "/CN=localhost", "-addext", "subjectAltName=DNS:localhost",
                "-keyout", "selfsigned.key", "-out", "selfsigned.pem")
        for name in {certificate for certificate, _ in PORTS.values()}:
            for kind in ("key", "pem"):
                os.replace(os.path.join(folder, f"{name}.{kind}"),
                           os.path.join(target, f"{name}.{kind}"))
        os.replace(os.path.join(folder, "ca.pem"), os.path.join(target, "ca.pem"))


# ---- the machine's trust

def is_server(pid):
    try:
        with open(f"/proc/{pid}/cmdline", "rb") as command:
            words = command.read().split(b"\0")
        return b"serve" in words and any(w.endswith(b"tls_server.py") for w in words)
    except OSError:
        return False


def change_trust(install=None, remove=None):
    """Installs (pid, file) and removes that of `remove` and of every server that is gone."""
    with open(os.path.join(tempfile.gettempdir(), "mirqos-test-trust.lock"), "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        changed = False
        for path in glob.glob(os.path.join(TRUST_FOLDER, TRUST_PREFIX + "*.crt")):
            pid = re.sub(r"\D", "", os.path.basename(path))
            if pid == str(remove) or not is_server(pid):
                os.unlink(path)
                changed = True
        if install:
            pid, source = install
            shutil.copyfile(source, os.path.join(TRUST_FOLDER, f"{TRUST_PREFIX}{pid}.crt"))
            changed = True
        if changed:
            subprocess.run(["update-ca-certificates"], check=True, timeout=120,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


# ---- the server

class Port:
    """A listening port and what has happened on it."""

    def __init__(self, name):
        self.name = name
        self.listener = socket.create_server(("127.0.0.1", 0), backlog=64)
        self.number = self.listener.getsockname()[1]
        self.changed = threading.Condition()
        self.open = self.connections = self.handshakes = self.requests = 0

    def add(self, **counts):
        with self.changed:
            for name, count in counts.items():
                setattr(self, name, getattr(self, name) + count)
            self.changed.notify_all()

    def counts(self, settled):
        with self.changed:
            if settled:
                self.changed.wait_for(lambda: self.open == 0, CONNECTION_SECONDS)
            return (f"connections={self.connections} handshakes={self.handshakes} "
                    f"requests={self.requests}")


class Server:
    def __init__(self, folder):
        self.objects = {}
        self.ports = {name: Port(name) for name in PORTS}
        self.control = Port("control")
        self.contexts = {name: self.context(folder, *PORTS[name]) for name in PORTS}

    @staticmethod
    def context(folder, certificate, versions):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        path = os.path.join(folder, certificate)
        context.load_cert_chain(path + ".pem", path + ".key")
        if versions == OUTDATED:
            context.set_ciphers("ALL:@SECLEVEL=0")
        context.minimum_version, context.maximum_version = versions
        return context

    def run(self):
        for port in self.ports.values():
            threading.Thread(target=self.accept, args=(port, self.talk_tls), daemon=True).start()
        threading.Thread(target=self.accept, args=(self.control, self.talk_control),
                         daemon=True).start()

    def accept(self, port, talk):
        while True:
            connection, _ = port.listener.accept()
            connection.settimeout(CONNECTION_SECONDS)
            port.add(open=1, connections=1)
            threading.Thread(target=self.guard, args=(port, talk, connection),
                             daemon=True).start()

    @staticmethod
    def guard(port, talk, connection):
        try:
            with connection:
                talk(port, connection)
        except (OSError, ValueError):
            pass  # the client went away or refused the certificate: the counts tell
        finally:
            port.add(open=-1)

    def talk_tls(self, port, connection):
        with self.contexts[port.name].wrap_socket(connection, server_side=True) as secure:
            port.add(handshakes=1)
            stream = secure.makefile("rb")
            while line := stream.readline(65536):
                port.add(requests=1)
                method, path, _ = line.decode("latin-1").split(" ", 2)
                if not self.answer(secure, stream, method, path, self.headers(stream)):
                    return

    @staticmethod
    def headers(stream):
        headers = {}
        while (line := stream.readline(65536)) not in (b"\r\n", b""):
            name, _, value = line.decode("latin-1").partition(":")
            headers[name.lower()] = value.strip()
        return headers

    def answer(self, secure, stream, method, path, headers):
        """False: the connection is to end."""
        if path == "/hang-up":
            # gone in the middle of an upload, without a farewell
            secure.shutdown(socket.SHUT_RDWR)
            return False
        if path == "/cut":
            secure.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nbegin")
            secure.shutdown(socket.SHUT_RDWR)
            return False
        if path == "/cut-chunked":
            secure.sendall(b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nbegin\r\n")
            secure.shutdown(socket.SHUT_RDWR)
            return False
        length = int(headers.get("content-length", "0"))
        if length > BODY_LIMIT:
            return False
        body = stream.read(length)
        status, content = "200 OK", b""
        if method == "PUT":
            self.objects[path] = body
        elif path in self.objects:
            content = self.objects[path]
        else:
            status = "404 Not Found"
        etag = hashlib.md5(self.objects.get(path, b"")).hexdigest()
        secure.sendall(f"HTTP/1.1 {status}\r\nETag: \"{etag}\"\r\n"
                       f"Content-Length: {len(content)}\r\n\r\n".encode())
        if method != "HEAD":
            secure.sendall(content)
        return True

    def talk_control(self, _, connection):
        stream = connection.makefile("rb")
        _, name, *now = stream.readline(65536).split(b" ")[1].decode().split("/")
        self.headers(stream)
        counts = self.ports[name].counts(settled=not now).encode()
        connection.sendall(b"HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: "
                           + str(len(counts)).encode() + b"\r\n\r\n" + counts)


# ---- commands

def serve(folder, system_trust, owner):
    ended = {signal.SIGTERM, signal.SIGINT, signal.SIGALRM}
    signal.pthread_sigmask(signal.SIG_BLOCK, ended)  # before any thread: all inherit it
    signal.alarm(LIFE_SECONDS)
    try:
        server = Server(folder)
        if system_trust:
            change_trust(install=(os.getpid(), os.path.join(folder, "ca.pem")))
        server.run()
        with open(os.path.join(folder, "ports"), "w") as out:
            for port in [*server.ports.values(), server.control]:
                out.write(f"{port.name} {port.number}\n")
        with open(os.path.join(folder, "pid"), "w") as out:
            out.write(f"{os.getpid()} {owner}")
        print("ready", flush=True)
        os.close(1)
        signal.sigwait(ended)
    finally:
        if system_trust:
            change_trust(remove=os.getpid())


def up(folder, system_trust, owner):
    os.makedirs(folder, exist_ok=True)
    if not down(folder, owner):
        sys.exit(f"the TLS server in {folder} is another run's")
    make_certificates(folder)
    with open(os.path.join(folder, "log"), "w") as log:
        server = subprocess.Popen(
            [sys.executable, os.path.abspath(__file__), "serve", folder,
             "--owner", str(owner)] + (["--system-trust"] if system_trust else []),
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=log, start_new_session=True)
    readable, _, _ = select.select([server.stdout], [], [], 150)
    if not readable or server.stdout.readline() != b"ready\n":
        server.terminate()
        with open(os.path.join(folder, "log")) as log:
            sys.exit("the TLS server did not start\n" + log.read())


def down(folder, owner):
    """False: there is a server of another process, and that lives."""
    path = os.path.join(folder, "pid")
    if os.path.exists(path):
        with open(path) as stored:
            pid, its_owner = map(int, stored.read().split())
        if is_server(pid):
            if its_owner != owner and os.path.exists(f"/proc/{its_owner}"):
                return False
            handle = os.pidfd_open(pid)
            signal.pidfd_send_signal(handle, signal.SIGTERM)
            if not select.select([handle], [], [], 150)[0]:
                signal.pidfd_send_signal(handle, signal.SIGKILL)
                select.select([handle], [], [], 10)
        os.unlink(path)
    if os.access(TRUST_FOLDER, os.W_OK):
        change_trust()
    return True


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("command", choices=["up", "down", "serve"])
    parser.add_argument("folder")
    parser.add_argument("--system-trust", action="store_true")
    parser.add_argument("--owner", type=int, default=os.getppid())
    given = parser.parse_args()
    folder = os.path.abspath(given.folder)
    if given.command == "down":
        down(folder, given.owner)
    else:
        {"up": up, "serve": serve}[given.command](folder, given.system_trust, given.owner)


if __name__ == "__main__":
    main()
