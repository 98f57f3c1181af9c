"""The rows of the tables: what is moved, in which sizes, by how many threads."""

import dataclasses

KIB = 1024
MIB = 1024 * KIB
PART = 8 * MIB


@dataclasses.dataclass(frozen=True)
class Row:
    server: str     # "null" or "real"
    name: str       # as bench.s3 knows it
    threads: int
    bytes: int      # of an object, or of a part
    count: int      # objects, parts or keys
    peer_count: int # how many of them a peer is given, which needs longer for each

    @property
    def id(self):
        size = {"put": f"-{human(self.bytes)}", "get": f"-{human(self.bytes)}"}.get(self.name, "")
        return f"{self.server}-{self.name}{size}-{self.threads}".replace(" ", "")

    @property
    def title(self):
        threads = f"{self.threads} thread{'s' if self.threads > 1 else ''}"
        whole = human(self.bytes * self.count)
        return {"upload": f"upload {whole} in parts, {threads}",
                "read": f"read {whole} in ranges, {threads}",
                "put": f"put {human(self.bytes)}, {threads}",
                "get": f"get {human(self.bytes)}, {threads}",
                "list": f"list {self.count:,} keys"}[self.name]

    @property
    def bulk(self):
        return self.name in ("upload", "read")

    def rate(self, seconds, peer=False):
        """What went through in a second, and in what it is counted."""
        count = self.peer_count if peer else self.count
        if self.name == "list":
            return count / seconds, "keys/s"
        if self.bytes < MIB:
            return count / seconds, "objects/s"
        return count * self.bytes / seconds / 1e6, "MB/s"

    @property
    def target(self):
        """The most that the library may need, in times of the floor."""
        return 1.10 if self.bytes * self.count >= 256 * MIB and self.bytes >= MIB else 1.25


def human(size):
    for unit, name in ((1024 * MIB, "GiB"), (MIB, "MiB"), (KIB, "KiB")):
        if size >= unit:
            return f"{size // unit} {name}"
    return f"{size} B"


def _rows(server, parts, threads_bulk, objects, keys):
    for name in ("upload", "read"):
        for threads in threads_bulk:
            yield Row(server, name, threads, PART, parts, parts)
    for size, counts, peer_count in objects:
        for name in ("put", "get"):
            for threads, count in counts.items():
                yield Row(server, name, threads, size, count, peer_count)
    yield Row(server, "list", 1, 0, keys, keys)


ROWS = (
    *_rows("null", 128, (1, 4, 8), (
        (4 * KIB, {1: 4000, 8: 8000}, 400),
        (MIB, {1: 300, 8: 300}, 100),
        (64 * MIB, {1: 8, 8: 16}, 8)), 100_000),
    *_rows("real", 32, (1, 4, 8), (
        (4 * KIB, {1: 300, 8: 1000}, 200),
        (MIB, {1: 40, 8: 80}, 40),
        (64 * MIB, {1: 4}, 3)), 20_000),  # to put more there would take minutes
)
