#!/usr/bin/env python3
"""Tests of scripts/setup against a machine of stubs: dpkg-query, apt-get, apt-cache, id and sudo are small scripts that
obey the test and note their calls."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

SETUP = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../scripts/setup")
NEEDED = ("bash", "cat", "env", "grep", "head", "mktemp", "rm", "sed", "sh")


class Setup(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        for program in NEEDED:
            os.symlink(shutil.which(program), self.path(program))
        self.stub("id", "echo 0")
        self.stub("dpkg-query", 'shift 2; for p; do grep -qx "$p" "$MACHINE/missing" || echo "$p installed"; done')
        self.stub("apt-cache", '! grep -qx "$2" "$MACHINE/unknown"')
        self.stub("apt-get", 'echo "$*" >>"$MACHINE/calls"; case "$*" in *install*) : >"$MACHINE/missing";; esac')
        self.write("unknown", "")
        self.write("calls", "")

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)

    def stub(self, name, script):
        self.write(name, f"#!/bin/sh\n{script}\n")
        os.chmod(self.path(name), 0o755)

    def run_setup(self, missing=(), purposes=()):
        self.write("missing", "".join(f"{name}\n" for name in missing))
        return subprocess.run([SETUP, *purposes], env={"PATH": self.folder, "MACHINE": self.folder}, capture_output=True,
                              text=True, timeout=60, check=False)

    def calls(self):
        with open(self.path("calls"), encoding="utf-8") as file:
            return file.read()

    def test_asks_apt_nothing_when_nothing_is_missing(self):
        run = self.run_setup()
        self.assertEqual((0, "", ""), (run.returncode, run.stdout, run.stderr))
        self.assertEqual("", self.calls())

    def test_updates_the_lists_and_installs_what_is_missing(self):
        run = self.run_setup(["cmake", "libsodium-dev"])
        self.assertEqual(0, run.returncode, run.stderr)
        update, install = self.calls().splitlines()
        self.assertTrue(update.endswith(" update"), update)
        self.assertTrue(install.endswith(" cmake libsodium-dev"), install)

    def test_installs_no_toolkit_and_no_compiler_for_windows_for_the_demo(self):
        missing = ["cmake", "qt6-base-dev", "wine", "g++-mingw-w64-x86-64", "xvfb"]
        self.assertEqual(0, self.run_setup(missing, ["demo"]).returncode)
        self.assertTrue(self.calls().splitlines()[1].endswith(" cmake"), self.calls())

    def test_installs_for_several_purposes_each_package_once(self):
        self.assertEqual(0, self.run_setup(["cmake", "wine", "libgtest-dev"], ["test", "windows"]).returncode)
        self.assertTrue(self.calls().splitlines()[1].endswith(" cmake libgtest-dev wine"), self.calls())

    def test_refuses_an_unknown_purpose(self):
        run = self.run_setup(["cmake"], ["demos"])
        self.assertEqual((1, "scripts/setup: give what to install for: demo, test, windows or tidy\n"),
                         (run.returncode, run.stderr))

    def test_names_the_package_that_cannot_be_had(self):
        self.write("unknown", "libsodium-dev\n")
        run = self.run_setup(["cmake", "libsodium-dev"])
        self.assertEqual(1, run.returncode)
        self.assertEqual("scripts/setup: the package libsodium-dev is in none of this machine's package sources "
                         "(Debian 12 has it).\n", run.stderr)
        self.assertNotIn("install", self.calls())

    def test_says_why_the_lists_could_not_be_fetched(self):
        self.stub("apt-get", 'echo "E: No network" >&2; exit 100')
        run = self.run_setup(["cmake"])
        self.assertEqual(1, run.returncode)
        self.assertEqual("scripts/setup: the package lists could not be fetched: No network\n", run.stderr)

    def test_needs_root_or_sudo_only_when_something_is_missing(self):
        self.stub("id", "echo 1000")
        self.assertEqual(0, self.run_setup().returncode)
        run = self.run_setup(["cmake"])
        self.assertEqual(1, run.returncode)
        self.assertEqual("scripts/setup: these packages are missing and neither root nor sudo is at hand: cmake\n",
                         run.stderr)

    def test_uses_sudo_when_it_is_not_root(self):
        self.stub("id", "echo 1000")
        self.stub("sudo", 'echo sudo >>"$MACHINE/calls"; exec "$@"')
        self.assertEqual(0, self.run_setup(["cmake"]).returncode)
        self.assertEqual(2, self.calls().splitlines().count("sudo"))

    def test_notices_a_package_that_is_still_missing_afterwards(self):
        self.stub("apt-get", "exit 0")
        run = self.run_setup(["cmake"])
        self.assertEqual(1, run.returncode)
        self.assertIn("still missing: cmake", run.stderr)

    def test_lists_the_packages_where_there_is_no_apt(self):
        os.remove(self.path("apt-get"))
        run = self.run_setup()
        self.assertEqual(1, run.returncode)
        self.assertIn("install these packages by hand: g++ cmake", run.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv)
