"""Tests what is in the package. Usage: contents_test.py BUILD_TREE OBJDUMP [CASE...]"""

import calendar
import os
import posixpath
import re
import struct
import sys
import unittest
import zipfile

from package_case import SOURCES, Case, names_folder, pack, package_name

TREE = OBJDUMP = None
# parts of Windows that every installation has
WINDOWS = {"ADVAPI32.dll", "KERNEL32.dll", "RPCRT4.dll", "WINHTTP.dll", "bcrypt.dll", "msvcrt.dll",
           "xmllite.dll"}


class Contents(Case):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.archive = pack(TREE, cls.path("first"))
        with zipfile.ZipFile(cls.archive) as package:
            cls.entries = package.infolist()
            root = package_name(cls.archive) + "/"
            cls.files = {entry.filename.removeprefix(root): package.read(entry)
                         for entry in cls.entries}

    def programs(self):
        return [name for name in self.files if name.endswith((".dll", ".exe"))]

    def unpacked(self, name):
        path = self.path(os.path.basename(name))
        with open(path, "wb") as file:
            file.write(self.files[name])
        return path

    def test_the_name_tells_version_and_system(self):
        self.assertRegex(package_name(self.archive), r"^mirqos-\d+\.\d+\.\d+-windows-x64$")

    def test_it_holds_the_listed_files_and_no_other(self):
        with open(os.path.join(SOURCES, "tests", "package", "files.txt")) as listed:
            self.assertEqual(list(self.files), listed.read().split())

    def test_a_build_packed_again_elsewhere_gives_the_same_bytes(self):
        again = pack(TREE, self.path("second"), TZ="Asia/Tokyo", TMPDIR=self.folder,
                     SOURCE_DATE_EPOCH=str(self.time_in("bin/MIRQOS.dll")))
        with open(self.archive, "rb") as first, open(again, "rb") as second:
            self.assertTrue(first.read() == second.read())

    def time_in(self, program):
        data = self.files[program]
        (header,) = struct.unpack_from("<I", data, 0x3C)
        self.assertEqual(data[header:header + 4], b"PE\0\0")
        return struct.unpack_from("<I", data, header + 8)[0]

    def test_nothing_tells_when_it_was_linked_or_packed(self):
        (date,) = {entry.date_time for entry in self.entries}
        seconds = calendar.timegm(date)  # even ones: an archive knows no others
        self.assertEqual({self.time_in(name) // 2 * 2 for name in self.programs()}, {seconds})
        library = self.run_command(OBJDUMP, "-p", self.unpacked("bin/MIRQOS.dll"))
        self.assertEqual(re.findall(r"Time/Date stamp\s+(\w+)", library), ["0"])

    def test_nothing_tells_where_it_was_built(self):
        for name, data in self.files.items():
            for place in (SOURCES, TREE, self.folder):
                for encoding in ("utf-8", "utf-16-le"):
                    self.assertFalse(names_folder(data, place, encoding), (name, place))
            if name.startswith(("bin/", "lib/")):
                self.assertNotIn(b"/usr/", data, name)

    def test_links_of_the_documents_lead_to_files_of_the_package(self):
        documents = [name for name in self.files if name.endswith(".md")]
        links = [(name, link) for name in documents
                 for link in re.findall(r"\]\(([^)#]+)[^)]*\)", self.files[name].decode())
                 if "://" not in link]
        self.assertIn(("README.md", "docs/formats.md"), links)
        for name, link in links:
            target = posixpath.normpath(posixpath.join(posixpath.dirname(name), link))
            self.assertTrue(any(file == target or file.startswith(target + "/")
                                for file in self.files), (name, link))

    def test_the_programs_need_windows_and_the_library_alone(self):
        needed = {}
        for name in self.programs():
            headers = self.run_command(OBJDUMP, "-p", self.unpacked(name))
            needed[name] = set(re.findall(r"DLL Name: (\S+)", headers)) - WINDOWS
        self.assertEqual(needed, {"bin/MIRQOS.dll": set(), "bin/mirqos-logctl.exe": set(),
                                  "bin/mirqos-logview.exe": set(),
                                  "bin/mirqos.exe": {"MIRQOS.dll"}})

    def test_the_library_exports_what_is_listed(self):
        host_tests = os.path.join(SOURCES, "tests", "host")
        self.run_command(os.path.join(host_tests, "check_exports.sh"),
                         os.path.join(host_tests, "exports.txt"), OBJDUMP,
                         self.unpacked("bin/MIRQOS.dll"))


if __name__ == "__main__":
    TREE, OBJDUMP = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
