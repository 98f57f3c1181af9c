"""What the tests of the package share."""

import os
import re
import shutil
import subprocess
import tempfile
import unittest

SOURCES = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
LIMIT = 120  # seconds for one run of a program, so that a hung one fails


class Case(unittest.TestCase):
    """Has a folder for all tests of the class."""
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="mirqos-package-")
        # Wine may still have a file of it open
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)

    @classmethod
    def path(cls, *names):
        return os.path.join(cls.folder, *names)

    def run_command(self, *command, stderr=subprocess.PIPE, **more):
        """Returns what a command wrote to its output stream; it has to succeed."""
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=stderr, text=True,
                              timeout=LIMIT, **more)
        self.assertEqual(done.returncode, 0, (command, done.stdout, done.stderr))
        return done.stdout


def names_folder(data, folder, encoding="utf-8"):
    """Whether bytes hold the path of a folder. One that goes on from another does not count: the
    folder may be called as one of the package's."""
    zeros = "\0".encode(encoding)[1:]
    before = b"(?<![\\w./-]" + zeros + b")|(?<=-[IL])"
    return re.search(b"(?:" + before + b")" + re.escape((folder + "/").encode(encoding)),
                     data) is not None


def pack(tree, folder, **environment):
    """Returns the path of the archive, which is the one file of the folder then."""
    subprocess.run([os.path.join(SOURCES, "scripts", "pack"), tree, folder], check=True,
                   stdout=subprocess.DEVNULL, timeout=LIMIT, env=dict(os.environ, **environment))
    (name,) = os.listdir(folder)
    return os.path.join(folder, name)


def package_name(archive):
    return os.path.basename(archive)[:-len(".zip")]
