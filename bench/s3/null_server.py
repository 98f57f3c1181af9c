"""nginx as an S3 server that does next to nothing: it takes each upload into memory and drops it, and
answers reads with files and listings with pages that were written before. What a client does against
it is the client's own cost.

It answers an upload when it has all of it. An answer before that makes some clients stop sending.
"""

import ctypes
import os
import random
import signal
import socket
import subprocess
import time

from service import Service

HOST = "127.0.0.1"
BUCKET = "bench"
KEYS_IN_PAGE = 1000
LIFE = 3600  # seconds, should nobody end it

CONFIG = """\
{user}
daemon off;
worker_processes auto;
pid {dir}/pid;
error_log {dir}/error.log error;
events {{ worker_connections 1024; }}
http {{
    access_log off;
    default_type application/octet-stream;
    sendfile on;
    tcp_nodelay on;
    keepalive_timeout {life};
    keepalive_requests 1000000000;
    open_file_cache max=1000 inactive={life};
    open_file_cache_valid {life};
    # a whole part or object in memory, or it would go to a file
    client_max_body_size 0;
    client_body_buffer_size 128m;
    client_body_temp_path {dir}/body;
    proxy_temp_path {dir}/proxy;
    fastcgi_temp_path {dir}/fastcgi;
    uwsgi_temp_path {dir}/uwsgi;
    scgi_temp_path {dir}/scgi;

    # the page after the one that ended at the token or marker
    map $args $page {{
        default first;
        "~prefix=(?<peers>peers-[0-9]+)" $peers;
        "~(?:continuation-token=|marker=listed(?:/|%2F))(?<last>[0-9]+)" after-$last;
    }}
    server {{
        listen {host}:{port};

        location ~ ^/bench/?$ {{
            types {{}}
            default_type application/xml;
            root {dir};
            try_files /pages/$page =404;
        }}
        location /bench/ {{
            if ($request_method = PUT) {{ rewrite ^ /.put last; }}
            if ($request_method = POST) {{ rewrite ^ /.post last; }}
            rewrite ^/bench/(?:objects|peers)-([0-9]+)/ /files/objects-$1 break;
            rewrite ^/bench/(.*) /files/$1 break;
            root {dir};
        }}
        # To mirror a request, nginx reads its body. Then it looks for a file:
        # for PUT that is status 405, for POST 404, and each is answered here.
        location = /.put {{
            internal;
            mirror /.taken;
            root {dir};
            error_page 405 =200 @stored;
        }}
        location = /.post {{
            internal;
            mirror /.taken;
            root {dir};
            error_page 404 =200 @upload;
        }}
        location = /.taken {{ internal; return 204; }}
        location @stored {{
            # no digest of the body, and says so with its hyphen
            add_header ETag '"00000000000000000000000000000000-1"';
            return 200;
        }}
        location @upload {{
            default_type application/xml;
            if ($args ~ uploadId) {{ return 200 '{completed}'; }}
            return 200 '{begun}';
        }}
    }}
}}
"""
NAMESPACE = 'xmlns="http://s3.amazonaws.com/doc/2006-03-01/"'
XML = '<?xml version="1.0" encoding="UTF-8"?>'
BEGUN = (f'{XML}<InitiateMultipartUploadResult {NAMESPACE}><Bucket>{BUCKET}</Bucket><Key>bulk</Key>'
         '<UploadId>0123456789abcdef</UploadId></InitiateMultipartUploadResult>')
COMPLETED = (f'{XML}<CompleteMultipartUploadResult {NAMESPACE}><Bucket>{BUCKET}</Bucket>'
             '<Key>bulk</Key><ETag>"00000000000000000000000000000000-1"</ETag>'
             '</CompleteMultipartUploadResult>')


def listing(keys, size, following=None):
    """One page of a listing, as clients of the newer or the older form expect it. `following` is the
    token of the next page, if there is one."""
    entries = "".join(
        f"<Contents><Key>{key}</Key><LastModified>2026-01-01T00:00:00.000Z</LastModified>"
        f"<ETag>&quot;00000000000000000000000000000000-1&quot;</ETag><Size>{size}</Size>"
        "<StorageClass>STANDARD</StorageClass></Contents>" for key in keys)
    more = "" if following is None else (
        f"<NextContinuationToken>{following}</NextContinuationToken>"
        f"<NextMarker>{keys[-1]}</NextMarker>")
    return (f"{XML}<ListBucketResult {NAMESPACE}><Name>{BUCKET}</Name><Prefix></Prefix>"
            f"<MaxKeys>{len(keys)}</MaxKeys><KeyCount>{len(keys)}</KeyCount>"
            f"<IsTruncated>{'true' if more else 'false'}</IsTruncated>{more}{entries}"
            "</ListBucketResult>")


def end_with_parent():
    ctypes.CDLL(None).prctl(1, signal.SIGTERM)


class NullServer:
    """Runs from construction to close(), with all its files in `directory`."""

    def __init__(self, directory, files, rows):
        """`files` has the objects that `rows` read."""
        self.directory = directory
        self.process = None
        os.makedirs(os.path.join(directory, "files"))
        os.makedirs(os.path.join(directory, "pages"))
        for row in rows:
            if row.name == "read":
                self.offer("bulk", files.bulk(row))
            elif row.name == "get":
                self.offer(f"objects-{row.bytes}", files.object(row))
                self.write_page(f"peers-{row.bytes}", listing(
                    [f"peers-{row.bytes}/{n:06}" for n in range(row.peer_count)], row.bytes))
            elif row.name == "list":
                self.write_pages(row.count // KEYS_IN_PAGE)
        self.start()

    def offer(self, name, file):
        path = os.path.join(self.directory, "files", name)
        if not os.path.exists(path):
            os.link(file, path)

    def write_page(self, name, text):
        with open(os.path.join(self.directory, "pages", name), "w") as page:
            page.write(text)

    def write_pages(self, count):
        for number in range(count):
            self.write_page("first" if number == 0 else f"after-{number - 1:04}", listing(
                [f"listed/{number:04}-{n:03}" for n in range(KEYS_IN_PAGE)], 1,
                f"{number:04}" if number + 1 < count else None))

    def start(self):
        for _ in range(10):
            port = random.randint(20000, 32000)
            config = os.path.join(self.directory, "nginx.conf")
            with open(config, "w") as text:
                text.write(CONFIG.format(
                    user="user root;" if os.getuid() == 0 else "", dir=self.directory, host=HOST,
                    port=port, life=LIFE, begun=BEGUN, completed=COMPLETED))
            # its buffers are to stay its own, or it would ask the system for each of them anew
            environment = dict(os.environ, MALLOC_MMAP_THRESHOLD_="1073741824",
                               MALLOC_TRIM_THRESHOLD_="4294967296")
            self.process = subprocess.Popen(
                ["timeout", str(LIFE), "nginx", "-e", os.path.join(self.directory, "error.log"),
                 "-p", self.directory, "-c", config], env=environment, preexec_fn=end_with_parent)
            if self.answers(port):
                self.service = Service(f"{HOST}:{port}", BUCKET, "anybody", "anything")
                return
            self.close()
        raise RuntimeError("nginx does not start; see its error.log")

    def answers(self, port):
        for _ in range(100):
            if self.process.poll() is not None:
                return False
            try:
                socket.create_connection((HOST, port), timeout=1).close()
                return True
            except OSError:
                time.sleep(0.05)
        return False

    def close(self):
        if self.process is not None and self.process.poll() is None:
            self.process.terminate()
            self.process.wait()
