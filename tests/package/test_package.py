#!/usr/bin/env -S python3 -B
"""The installed package, and a separate project that is built with it."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "host"))
from host import ROOT, HostTest, build_folder, run
from test_agent import assert_outcome_on_this_system

AGENT_SOURCE = ROOT / "examples/agent.c"
DOCUMENTATION = "share/doc/orvane"

FIXED_FILES = {
    "bin/Orvane.dll",
    "bin/orvane.exe",
    "lib/libOrvane.dll.a",
    "lib/cmake/Orvane/OrvaneConfig.cmake",
    "lib/cmake/Orvane/OrvaneConfigVersion.cmake",
    "include/orvane/orvane.h",
}


def command(*words):
    return subprocess.run([*map(str, words)], text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)


def cmake(*arguments):
    return command(os.environ["ORVANE_CMAKE"], *arguments)


class Package(HostTest):
    @classmethod
    def setUpClass(cls):
        scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(scratch.cleanup)
        installed = pathlib.Path(scratch.name) / "first"
        install = cmake("--install", build_folder(), "--prefix", installed)
        if install.returncode != 0:
            raise RuntimeError(install.stdout)
        # Moved, so that paths recorded during the installation would not work.
        cls.tree = installed.rename(installed.with_name("moved here"))

    def configure(self, version):
        return cmake("-S", ROOT / "tests/package/consumer", "-B", self.folder,
                     "-G", os.environ["ORVANE_GENERATOR"],
                     f"-DCMAKE_TOOLCHAIN_FILE={os.environ['ORVANE_TOOLCHAIN']}",
                     f"-DOrvane_DIR={self.tree}/lib/cmake/Orvane",
                     f"-DAGENT_SOURCE={AGENT_SOURCE}", f"-DORVANE_WANTED={version}")

    def assert_succeeds(self, process):
        self.assertEqual(process.returncode, 0, process.stdout)

    def test_installed_files_are_the_documented_ones(self):
        found = {file.relative_to(self.tree).as_posix() for file in self.tree.rglob("*") if file.is_file()}
        pages = [*ROOT.glob("*.md"), AGENT_SOURCE, *ROOT.glob("docs/*.md"),
                 *ROOT.glob("docs/*.png"), ROOT / "machine/recorder/redact/everyday_words.copyright",
                 ROOT / "machine/recorder/redact/everyday_words.inc", ROOT / "machine/recorder/redact/known_names.cpp",
                 *ROOT.glob("docs/schema/*.*"),
                 *(file for file in ROOT.glob("examples/machines/**/*") if file.is_file())]
        expected = FIXED_FILES | {f"{DOCUMENTATION}/{page.relative_to(ROOT).as_posix()}" for page in pages}
        self.assertEqual(sorted(found), sorted(expected))
        header = "include/orvane/orvane.h"
        self.assertEqual((self.tree / header).read_bytes(), (ROOT / header).read_bytes())

    def test_installed_host_finds_the_installed_library(self):
        machine = self.tree / DOCUMENTATION / "examples/machines/bios-laptop"
        result = run("capture", "--machine", machine, program=self.tree / "bin/orvane.exe")
        self.assert_done(result)
        self.assert_well_formed(result.out)

    def test_consumer_is_built_and_runs(self):
        self.assert_succeeds(self.configure(9))
        self.assert_succeeds(cmake("--build", self.folder))
        copied = (self.folder / "Orvane.dll").read_bytes()
        self.assertEqual(copied, (self.tree / "bin/Orvane.dll").read_bytes())
        assert_outcome_on_this_system(self, run(program=self.folder / "agent.exe"))

    def test_plain_compiler_builds_the_agent(self):
        program = self.folder / "agent.exe"
        self.assert_succeeds(command(os.environ["ORVANE_C_COMPILER"], AGENT_SOURCE, f"-I{self.tree}/include",
                                     f"-L{self.tree}/lib", "-lOrvane", "-lole32", "-o", program))
        shutil.copy(self.tree / "bin/Orvane.dll", self.folder)
        assert_outcome_on_this_system(self, run(program=program))

    def test_consumer_of_another_major_version_is_refused(self):
        for version in (8, 10):
            configured = self.configure(version)
            self.assertNotEqual(configured.returncode, 0)
            self.assertIn(f'compatible with requested version "{version}"', " ".join(configured.stdout.split()))


if __name__ == "__main__":
    unittest.main()
