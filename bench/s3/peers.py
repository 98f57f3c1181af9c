"""The programs that a user could take instead, each told to do what a row measures, as well as it
can: with the row's threads and parts where it has such settings, and with many objects in one
process where it can. They read and write files, which lie in memory here.
"""

import os
import shutil

from service import REGION


class Peer:
    """A command line for each row that the program can do: `command` returns None for others."""

    def __init__(self, directory, service, files):
        self.directory = os.path.join(directory, self.name)  # its configuration, and what it fetches
        self.fetched = os.path.join(self.directory, "fetched")
        self.service = service
        self.files = files
        self.bucket = f"s3://{service.bucket}"
        os.makedirs(self.directory)
        # not what else it might be told by its user
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.startswith(("AWS_", "RCLONE_"))}
        self.environment.update(HOME=self.directory, LC_ALL="C.UTF-8")
        self.configure()

    def clear(self):
        """What it fetched in the last run is no business of the next one."""
        shutil.rmtree(self.fetched, ignore_errors=True)
        os.makedirs(self.fetched)

    def run(self, bench, command):
        return bench.run_command(command, self.environment)

    def config(self, name, text):
        path = os.path.join(self.directory, name)
        with open(path, "w") as file:
            file.write(text)
        return path

    def command(self, row):
        return getattr(self, row.name)(row)


class Aws(Peer):
    name = "awscli"
    start = ["/usr/bin/aws", "--version"]  # Debian's, whatever stands before it in the path

    def configure(self):
        self.environment.update(
            AWS_ACCESS_KEY_ID=self.service.access_key, AWS_EC2_METADATA_DISABLED="true",
            AWS_SECRET_ACCESS_KEY=self.service.secret_key)

    def s3(self, row, *arguments):
        # a file is the only way to tell it of threads
        config = self.config(f"config-{row.threads}", (
            f"[default]\nregion = {REGION}\ns3 =\n  max_concurrent_requests = {row.threads}\n"
            "  multipart_chunksize = 8MB\n  multipart_threshold = 65MB\n"))
        return ["env", f"AWS_CONFIG_FILE={config}", self.start[0], "--endpoint-url",
                f"http://{self.service.endpoint}", "s3", *arguments]

    def copy(self, row, source, target, *options):
        return self.s3(row, "cp", "--only-show-errors", *options, source, target)

    def upload(self, row):
        return self.copy(row, self.files.bulk(row), f"{self.bucket}/bulk")

    def read(self, row):
        return self.copy(row, f"{self.bucket}/bulk", f"{self.fetched}/bulk")

    def put(self, row):
        return self.copy(row, self.files.folder(row), f"{self.bucket}/peers-{row.bytes}/",
                         "--recursive")

    def get(self, row):
        return self.copy(row, f"{self.bucket}/peers-{row.bytes}/", self.fetched, "--recursive")

    def list(self, row):
        return self.s3(row, "ls", "--recursive", f"{self.bucket}/listed/")


class S3cmd(Peer):
    """It has one thread, and so a place only in rows with one."""

    name = "s3cmd"
    start = ["s3cmd", "--version"]

    def configure(self):
        endpoint = self.service.endpoint
        self.config(".s3cfg", (
            f"[default]\naccess_key = {self.service.access_key}\n"
            f"secret_key = {self.service.secret_key}\nbucket_location = {REGION}\n"
            f"host_base = {endpoint}\nhost_bucket = {endpoint}\nuse_https = False\n"
            "multipart_chunk_size_mb = 8\nprogress_meter = False\n"))

    def command(self, row):
        return super().command(row) if row.threads == 1 else None

    def upload(self, row):
        return ["s3cmd", "-q", "put", self.files.bulk(row), f"{self.bucket}/bulk"]

    def read(self, _row):
        return ["s3cmd", "-q", "get", f"{self.bucket}/bulk", f"{self.fetched}/bulk"]

    def put(self, row):
        return ["s3cmd", "-q", "put", "--recursive", "--disable-multipart",
                self.files.folder(row) + "/", f"{self.bucket}/peers-{row.bytes}/"]

    def get(self, row):
        return ["s3cmd", "-q", "get", "--recursive", f"{self.bucket}/peers-{row.bytes}/",
                self.fetched + "/"]

    def list(self, _row):
        return ["s3cmd", "ls", "--recursive", f"{self.bucket}/listed/"]


class Rclone(Peer):
    name = "rclone"
    start = ["rclone", "version"]

    def configure(self):
        settings = {"TYPE": "s3", "PROVIDER": "Other", "REGION": REGION,
                    "ACCESS_KEY_ID": self.service.access_key,
                    "SECRET_ACCESS_KEY": self.service.secret_key,
                    "ENDPOINT": f"http://{self.service.endpoint}", "FORCE_PATH_STYLE": "true",
                    # it would ask for the bucket, and for each object once more after sending it
                    "NO_CHECK_BUCKET": "true", "NO_HEAD": "true",
                    "CHUNK_SIZE": "8M", "UPLOAD_CUTOFF": "65M"}
        self.environment.update({f"RCLONE_CONFIG_BENCH_{name}": value
                                 for name, value in settings.items()})
        self.bucket = f"bench:{self.service.bucket}"

    def copy(self, row, command, source, target):
        return ["rclone", command, "--quiet", "--no-check-dest", f"--transfers={row.threads}",
                f"--checkers={row.threads}", f"--s3-upload-concurrency={row.threads}",
                f"--multi-thread-streams={row.threads}", "--multi-thread-cutoff=65M",
                source, target]

    def upload(self, row):
        return self.copy(row, "copyto", self.files.bulk(row), f"{self.bucket}/bulk")

    def read(self, row):
        return self.copy(row, "copyto", f"{self.bucket}/bulk", f"{self.fetched}/bulk")

    def put(self, row):
        return self.copy(row, "copy", self.files.folder(row), f"{self.bucket}/peers-{row.bytes}")

    def get(self, row):
        return self.copy(row, "copy", f"{self.bucket}/peers-{row.bytes}", self.fetched)

    def list(self, _row):
        return ["rclone", "lsf", "--recursive", "--fast-list", "--files-only",
                f"{self.bucket}/listed"]


class Libs3(Peer):
    """The client that comes with libs3: one thread, and a process for each object."""

    name = "s3"
    start = ["s3", "help"]

    def configure(self):
        self.environment.update(S3_ACCESS_KEY_ID=self.service.access_key,
                                S3_SECRET_ACCESS_KEY=self.service.secret_key,
                                S3_HOSTNAME=self.service.endpoint)
        self.bucket = self.service.bucket

    def command(self, row):
        return super().command(row) if row.threads == 1 else None

    def for_each(self, row, action):
        return ["sh", "-ec", f'for name in "$1"/*; do name=${{name##*/}}; {action}; done', "sh",
                self.files.folder(row), f"{self.bucket}/peers-{row.bytes}", self.fetched]

    def upload(self, row):
        return ["s3", "-u", "put", f"{self.bucket}/bulk", f"filename={self.files.bulk(row)}"]

    def read(self, _row):
        return ["s3", "-u", "get", f"{self.bucket}/bulk", f"filename={self.fetched}/bulk"]

    def put(self, row):
        return self.for_each(row, 's3 -u put "$2/$name" "filename=$1/$name"')

    def get(self, row):
        return self.for_each(row, 's3 -u get "$2/$name" "filename=$3/$name"')

    def list(self, _row):
        return ["s3", "-u", "list", self.bucket, "prefix=listed/"]


PEERS = (Aws, S3cmd, Rclone, Libs3)
