#!/usr/bin/env -S python3 -B
"""The version in the file VERSION is that of the programs, of the library and of the last release in CHANGELOG.md."""

import os
import pathlib
import re
import struct
import subprocess
import sys
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "host"))
from host import PROGRAM, ROOT, VERSION, build_folder

# VS_FIXEDFILEINFO: its signature and the version of its structure, then the version of the file, of the product, the
# mask of the flags, the flags, the system and the type.
FIXED = struct.pack("<2I", 0xFEEF04BD, 0x00010000)
SYSTEM_NT_WINDOWS = 0x00040004
APPLICATION, LIBRARY = 1, 2


def utf16(text):
    return text.encode("utf-16-le")


def string_of(data, key):
    """A string of the version resource: the type 1, the key, a terminator, padding to four bytes, the value."""
    place = data.index(utf16("\1" + key + "\0")) + 2 * (len(key) + 2)
    while data[place:place + 2] == b"\0\0":
        place += 2
    return data[place:data.index(b"\0\0\0", place) + 1].decode("utf-16-le")


class Version(unittest.TestCase):
    def test_resources_of_program_and_library(self):
        first, second, third = map(int, VERSION.split("."))
        version = [first << 16 | second, third << 16]
        for name, kind, internal in (("orvane.exe", APPLICATION, "orvane"), ("Orvane.dll", LIBRARY, "Orvane")):
            with self.subTest(file=name):
                data = (PROGRAM.parent / name).read_bytes()
                numbers = struct.unpack_from("<8I", data, data.index(FIXED) + len(FIXED))
                self.assertEqual([*numbers[:4]], version * 2)
                self.assertEqual([*numbers[6:]], [SYSTEM_NT_WINDOWS, kind])
                self.assertEqual(string_of(data, "FileVersion"), VERSION + ".0")
                self.assertEqual(string_of(data, "ProductVersion"), VERSION + ".0")
                self.assertEqual(string_of(data, "OriginalFilename"), name)
                self.assertEqual(string_of(data, "InternalName"), internal)

    def test_native_program(self):
        told = subprocess.run([os.environ["ORVANE_NATIVE"], "--version"], stdout=subprocess.PIPE, check=True).stdout
        self.assertEqual(told, f"orvane {VERSION}\n".encode())

    def test_cmake_package(self):
        text = (build_folder() / "package/OrvaneConfigVersion.cmake").read_text()
        self.assertIn(f'set(PACKAGE_VERSION "{VERSION}")', text)

    def test_last_release_of_the_change_log(self):
        headings = re.findall(r"^## (.*)$", (ROOT / "CHANGELOG.md").read_text(), re.M)
        self.assertEqual(headings[0], "[Unreleased]")
        self.assertRegex(headings[1], rf"^\[{re.escape(VERSION)}\] - \d{{4}}-\d\d-\d\d$")


if __name__ == "__main__":
    unittest.main()
