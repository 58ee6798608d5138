#!/usr/bin/env -S python3 -B
"""Checks the archives of a package.

usage: check_archives.py DIST PROGRAMS     PROGRAMS: the folder with the library and the host that the tests ran
"""

import hashlib
import json
import os
import pathlib
import struct
import sys
import tarfile
import unittest
import zipfile
import zlib

ROOT = pathlib.Path(__file__).resolve().parents[2]
VERSION = (ROOT / "VERSION").read_text().strip()
DIST, PROGRAMS = map(pathlib.Path, sys.argv[1:3])
NAMES = [f"orvane-{VERSION}-{system}{kind}" for system in ("windows-x64", "linux-x64") for kind in ("", "-symbols")]
# The sections of a program that hold what it does. The others hold the imports, whose time stamps and places move, and
# the debug link.
CODE = [b".text", b".rdata", b".xdata", b".pdata", b".data", b".rsrc"]


def read(name):
    """The files of an archive by name, with the times and the modes of all."""
    zipped = DIST / (name + ".zip")
    if zipped.exists():
        with zipfile.ZipFile(zipped) as archive:
            rows = [(entry.filename, archive.read(entry), entry.date_time, entry.external_attr >> 16 & 0o777)
                    for entry in archive.infolist()]
    else:
        with tarfile.open(DIST / (name + ".tar.gz")) as archive:
            rows = [(entry.name, archive.extractfile(entry).read(), entry.mtime, entry.mode)
                    for entry in archive.getmembers()]
    return rows


def sections(data):
    """The sections of a Windows program: {name: bytes}."""
    header = struct.unpack_from("<I", data, 0x3C)[0]
    count, optional = struct.unpack_from("<H", data, header + 6)[0], struct.unpack_from("<H", data, header + 20)[0]
    found = {}
    for number in range(count):
        row = header + 24 + optional + 40 * number
        name = data[row:row + 8].rstrip(b"\0")
        size, _, length, place = struct.unpack_from("<4I", data, row + 8)
        found[name] = data[place:place + min(size, length)]
    return found


class Archives(unittest.TestCase):
    def test_check_sums_name_every_file(self):
        lines = (DIST / "SHA256SUMS").read_text().splitlines()
        expected = [f"{hashlib.sha256(file.read_bytes()).hexdigest()}  {file.name}"
                    for file in sorted(DIST.iterdir()) if file.name != "SHA256SUMS"]
        self.assertEqual(lines, expected)
        self.assertEqual(len([line for line in lines if line.endswith((".zip", ".tar.gz"))]), len(NAMES))

    def test_bill_of_materials_names_the_archives(self):
        bill = json.loads((DIST / f"orvane-{VERSION}.spdx.json").read_text())
        sums = {package["name"]: package["checksums"][0]["checksumValue"] for package in bill["packages"]
                if "checksums" in package}
        archives = [file for file in DIST.iterdir() if file.suffix in (".zip", ".gz")]
        self.assertEqual(sums, {file.name: hashlib.sha256(file.read_bytes()).hexdigest() for file in archives})

    def test_programs_come_with_notices_and_pages(self):
        pages = [page.relative_to(ROOT) for page in sorted([*ROOT.glob("*.md"), *ROOT.glob("docs/*.*")])]
        for system, files in (("windows-x64", []), ("linux-x64", ["../../man/man1/orvane.1"])):
            names = {row[0] for row in read(f"orvane-{VERSION}-{system}")}
            for file in ["THIRD-PARTY-NOTICES", *pages, *files]:
                self.assertIn(os.path.normpath(f"orvane-{VERSION}-{system}/share/doc/orvane/{file}"), names)

    def test_entries_are_sorted_have_one_time_and_lie_in_one_folder(self):
        for name in NAMES:
            with self.subTest(archive=name):
                rows = read(name)
                names = [row[0] for row in rows]
                self.assertEqual(names, sorted(names))
                self.assertEqual(len({row[2] for row in rows}), 1)
                self.assertEqual({entry.split("/")[0] for entry in names}, {name})
                programs = {row[0].split("/", 1)[1] for row in rows if row[3] == 0o755}
                self.assertEqual(programs, set() if name.endswith("symbols") else
                                 {"bin/orvane"} if "linux" in name else {"bin/Orvane.dll", "bin/orvane.exe"})

    def test_programs_have_no_symbols_and_name_their_debug_files(self):
        for system, names in (("windows-x64", ["Orvane.dll", "orvane.exe"]), ("linux-x64", ["orvane"])):
            tree = f"orvane-{VERSION}-{system}"
            shipped = {row[0]: row[1] for row in read(tree)}
            symbols = {row[0]: row[1] for row in read(tree + "-symbols")}
            self.assertEqual(len(symbols), len(names))
            for name in names:
                with self.subTest(program=name):
                    program, debug = shipped[f"{tree}/bin/{name}"], symbols[f"{tree}-symbols/{name}.debug"]
                    # The link: the file's name, padded to four bytes, and its checksum.
                    link = (name + ".debug").encode() + b"\0"
                    link += b"\0" * (-len(link) % 4) + struct.pack("<I", zlib.crc32(debug))
                    self.assertIn(link, program)
                    self.assertLess(len(program), len(debug) / 4)
                    for data in (program, debug):
                        self.assertNotIn(os.fsencode(ROOT), data)

    def test_library_and_host_have_the_code_that_was_tested(self):
        tree = f"orvane-{VERSION}-windows-x64"
        shipped = {row[0]: row[1] for row in read(tree)}
        for name in ("Orvane.dll", "orvane.exe"):
            with self.subTest(program=name):
                packed, tested = sections(shipped[f"{tree}/bin/{name}"]), sections((PROGRAMS / name).read_bytes())
                for section in CODE:
                    self.assertEqual(packed[section], tested[section], section)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
