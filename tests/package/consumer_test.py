"""Tests that a host's project is built from the unpacked package alone, and that what was unpacked
runs. Usage: consumer_test.py BUILD_TREE TOOLCHAIN_FILE RUNNER [CASE...]

The S3 server is found as the other programs' tests find it.
"""

import os
import shutil
import subprocess
import sys
import unittest
import uuid
import zipfile

from package_case import SOURCES, Case, names_folder, pack, package_name

sys.path.append(os.path.join(SOURCES, "tests", "tools"))
import tool_case

TREE = TOOLCHAIN = RUNNER = None


def clean_environment():
    """Nothing that could lead a build to other headers or libraries."""
    return {name: value for name, value in os.environ.items()
            if name == "PATH" or not ("PATH" in name or name.startswith("CMAKE_"))}


class Consumer(Case):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        archive = pack(TREE, cls.path("archive"))
        with zipfile.ZipFile(archive) as package:
            package.extractall(cls.path("a place"))
        cls.name = package_name(archive)
        cls.package = cls.path("a place", cls.name)
        cls.config = os.path.join(cls.package, "lib", "cmake", "MIRQOS")

    def run_program(self, *command, **environment):
        environment = dict(os.environ, **environment)
        environment.setdefault("MIRQOS_WINEPREFIX", os.path.join(TREE, "wineprefix"))
        return self.run_command(RUNNER, *command, env=environment, cwd=self.folder)

    def build(self):
        """Builds a copy of the consumer, with a copy of the toolchain file; returns the program."""
        shutil.copytree(os.path.join(SOURCES, "tests", "consumer"), self.path("consumer"))
        shutil.copy(TOOLCHAIN, self.path("toolchain.cmake"))
        self.run_command("cmake", "-G", "Ninja", "-S", self.path("consumer"), "-B",
                         self.path("build"), "-DCMAKE_BUILD_TYPE=Release",
                         "-DCMAKE_TOOLCHAIN_FILE=" + self.path("toolchain.cmake"),
                         "-DMIRQOS_DIR=" + self.config, env=clean_environment())
        self.run_command("cmake", "--build", self.path("build"), env=clean_environment())
        return self.path("build", "consumer.exe")

    def files_of_build_naming(self, folder):
        found = []
        for parent, _, names in os.walk(self.path("build")):
            for name in names:
                with open(os.path.join(parent, name), "rb") as file:
                    if names_folder(file.read(), folder):
                        found.append(name)
        return found

    def test_a_host_is_built_from_the_package_alone_and_works(self):
        program = self.build()
        # what the compiler read
        self.assertIn(".ninja_deps",
                      self.files_of_build_naming(self.package + "/include/mirqos"))
        self.assertEqual(self.files_of_build_naming(SOURCES), [])
        self.assertEqual(self.files_of_build_naming(TREE), [])
        server = {"MIRQOS_S3_" + name: value for name, value in tool_case.server().items()}
        self.assertEqual(self.run_program(program, "package-" + uuid.uuid4().hex, **server),
                         "stored and read back\n")

    def test_the_programs_run_and_tell_the_version(self):
        version = self.name.split("-")[1]
        for program in ("mirqos", "mirqos-logctl", "mirqos-logview"):
            said = self.run_program(os.path.join(self.package, "bin", program + ".exe"), "--version")
            self.assertEqual(said, f"{program} {version}\n")

    def refusal(self, *settings, version=""):
        """What CMake says of the package in a build that is not for it."""
        script = self.path("find.cmake")
        with open(script, "w") as file:
            file.write("".join(f"set({setting})\n" for setting in settings))
            file.write(f'set(MIRQOS_DIR "{self.config}")\n'
                       f"find_package(MIRQOS {version} CONFIG)\n"
                       "if(MIRQOS_FOUND)\n  message(FATAL_ERROR found)\nendif()\n")
        said = self.run_command("cmake", "-P", script, stderr=subprocess.STDOUT)
        return " ".join(said.split())

    def test_a_build_that_it_is_not_for_is_told_why(self):
        self.assertIn("is a DLL for Windows", self.refusal())
        self.assertIn("was built with MinGW", self.refusal("WIN32 1", "MSVC 1"))
        self.assertIn("was built with MinGW",
                      self.refusal("WIN32 1", "CMAKE_CXX_SIMULATE_ID MSVC"))
        self.assertIn("64bit", self.refusal("WIN32 1", "CMAKE_SIZEOF_VOID_P 4"))
        self.assertIn('compatible with requested version "99"',
                      self.refusal("WIN32 1", version="99"))


if __name__ == "__main__":
    TREE, TOOLCHAIN, RUNNER = sys.argv[1:4]
    unittest.main(argv=sys.argv[:1] + sys.argv[4:], verbosity=2)
