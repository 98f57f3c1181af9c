"""What stands between the program and the server, for what happens at the worst moment."""

import http.client
import http.server
import socket
import threading

LIMIT = 120  # seconds that a stalled connection waits at most


class Relay:
    """Passes connections on to `target` ("host:port"). Each that has carried `after` bytes in one
    direction stalls then: `reached` is set, and it goes on once `release` is."""

    def __init__(self, target, after, upwards=True):
        host, port = target.rsplit(":", 1)
        self.target = (host, int(port))
        self.after, self.upwards = after, upwards
        self.reached, self.release = threading.Event(), threading.Event()
        self.open = []
        self.lock = threading.Lock()
        self.closed = False
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.endpoint = "http://127.0.0.1:%d" % self.listener.getsockname()[1]
        threading.Thread(target=self._accept, daemon=True).start()

    def close(self):
        """The server is gone: nothing open goes on, nothing new comes in."""
        with self.lock:
            self.closed = True
            ends = [self.listener] + self.open
        for end in ends:
            try:
                end.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass  # it ended by itself
            end.close()
        self.release.set()

    def _accept(self):
        while True:
            try:
                near, _ = self.listener.accept()
                far = socket.create_connection(self.target)
            except OSError:
                return
            with self.lock:
                if self.closed:
                    near.close()
                    far.close()
                    return
                self.open += [near, far]
            for source, sink, up in ((near, far, True), (far, near, False)):
                threading.Thread(target=self._carry, args=(source, sink, up == self.upwards),
                                 daemon=True).start()

    def _carry(self, source, sink, counted):
        carried = 0
        try:
            while True:
                data = source.recv(65536)
                if not data:
                    break
                carried += len(data)
                if counted and carried > self.after and not self.release.is_set():
                    self.reached.set()
                    self.release.wait(LIMIT)
                sink.sendall(data)
        except OSError:
            pass  # the other side is gone
        for end in (source, sink):
            try:
                end.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass


class Proxy:
    """Passes requests on to `target` ("host:port") one by one: `rule(method, path, forward)` gives
    the answer of each, (status, headers, body), or None to hang up; forward() is the server's."""

    def __init__(self, target, rule):
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), ProxyHandler)
        self.server.daemon_threads = True
        self.server.block_on_close = False
        self.server.target, self.server.rule = target, rule
        self.endpoint = "http://127.0.0.1:%d" % self.server.server_port
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def close(self):
        self.server.shutdown()
        self.server.server_close()


class ProxyHandler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_any(self):
        sent = self.rfile.read(int(self.headers.get("Content-Length", 0)))

        def forward():
            onward = http.client.HTTPConnection(self.server.target, timeout=LIMIT)
            onward.putrequest(self.command, self.path, skip_host=True, skip_accept_encoding=True)
            for name, value in self.headers.items():
                onward.putheader(name, value)
            onward.endheaders(sent)
            answer = onward.getresponse()
            body = answer.read()
            onward.close()
            return answer.status, answer.getheaders(), body
        answer = self.server.rule(self.command, self.path, forward)
        if answer is None:
            self.close_connection = True
            return
        status, headers, body = answer
        self.send_response_only(status)
        for name, value in headers:
            if name.lower() not in ("transfer-encoding", "connection"):
                self.send_header(name, value)
        if "content-length" not in (name.lower() for name, _ in headers):
            self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    do_GET = do_HEAD = do_PUT = do_POST = do_DELETE = do_any

    def log_message(self, *_):
        pass
