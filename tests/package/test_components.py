#!/usr/bin/env -S python3 -B
"""packaging/components.toml has what was linked, by the linker maps, the headers that were read, by Ninja, and the copies in
the sources, by the notices beside them: no more."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "packaging"), str(ROOT / "tests/host")]
import components
from host import PROGRAM, VERSION, build_folder

NATIVE = pathlib.Path(os.environ["ORVANE_NATIVE"]).resolve()
BUILDS = {"windows": (build_folder(), [PROGRAM, PROGRAM.with_name("Orvane.dll")]), "linux": (NATIVE.parents[1], [NATIVE])}
# What Ninja built and what is not released.
NOT_RELEASED = re.compile(r"(tests|bench|deps|examples|fuzz)/")


def foreign(files, build):
    """The files outside of the project, without links."""
    real = {pathlib.Path(os.path.realpath(build / file)) for file in files}
    return {file for file in real if not file.is_relative_to(ROOT.resolve())}


def linked(build, programs):
    """Archives of which a member was taken, and objects, of the linker maps."""
    files = set()
    for program in programs:
        text = program.with_name(program.name + ".map").read_text(errors="replace")
        files |= set(re.findall(r"^(/\S+\.a)\(", text, re.M)) | set(re.findall(r"^LOAD (/\S+\.o)$", text, re.M))
    return foreign(files, build)


def headers(build):
    told = subprocess.run(["ninja", "-C", build, "-t", "deps"], stdout=subprocess.PIPE, text=True, check=True).stdout
    files, wanted = set(), False
    for line in told.splitlines():
        if line and not line.startswith(" "):
            wanted = not NOT_RELEASED.match(line)
        elif wanted and line:
            files.add(line.strip())
    return foreign(files, build)


class Components(unittest.TestCase):
    def test_table_has_what_is_in_the_programs(self):
        for system, (build, programs) in BUILDS.items():
            with self.subTest(system=system):
                archives = set(components.packages_of(linked(build, programs)))
                read = set(components.packages_of(headers(build)))
                self.assertTrue(archives and read)
                found = {name: "linked" if name in archives else "headers" for name in archives | read}
                table = {row.package: row.uses[system] for row in components.read()
                         if system in row.uses and not row.copied}
                self.assertEqual(table, found)

    def test_table_has_the_notice_of_every_copy_in_the_sources(self):
        told = subprocess.run(["git", "ls-files", "*.copyright"], cwd=ROOT, stdout=subprocess.PIPE, text=True, check=True)
        self.assertEqual({row.notice.relative_to(ROOT).as_posix() for row in components.read() if row.copied},
                         set(told.stdout.split()))

    def test_notices_have_the_text_of_every_work(self):
        for system in BUILDS:
            text = components.notices(system)
            for row in components.read():
                with self.subTest(system=system, package=row.package):
                    self.assertEqual(f"{row.package} {row.version}" in text, system in row.uses)
                    if system in row.uses:
                        self.assertIn(row.notice.read_text(errors="replace").rstrip(), text)

    def test_bill_is_the_same_again_and_names_what_is_in_each_archive(self):
        with tempfile.TemporaryDirectory() as folder:
            files = [pathlib.Path(folder, f"orvane-{VERSION}-{system}-x64.zip") for system in BUILDS]
            for file in files:
                file.write_bytes(file.name.encode())
            text = components.bill(VERSION, 0, files)
            self.assertEqual(text, components.bill(VERSION, 0, reversed(files)))
        bill = components.json.loads(text)
        self.assertEqual(bill["creationInfo"]["created"], "1970-01-01T00:00:00Z")
        names = {package["SPDXID"]: package["name"] for package in bill["packages"]}
        for system, file in zip(BUILDS, files):
            inside = {names[row["relatedSpdxElement"]] for row in bill["relationships"]
                      if names.get(row["spdxElementId"]) == file.name}
            self.assertEqual(inside, {row.package for row in components.read() if system in row.uses})
        used = " ".join(package["licenseDeclared"] for package in bill["packages"])
        self.assertEqual({row["licenseId"] for row in bill["hasExtractedLicensingInfos"]},
                         set(re.findall(r"LicenseRef-[\w.-]+", used)))


if __name__ == "__main__":
    unittest.main()
