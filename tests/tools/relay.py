"""A relay between the program and the server, for what a network does at the worst moment."""

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
