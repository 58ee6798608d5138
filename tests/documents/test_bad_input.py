#!/usr/bin/env -S python3 -B
"""Bad input: one line with file, place and reason, exit code 2; memory within six times the file."""

import os
import pathlib
import resource
import subprocess
import sys
import tempfile
import unittest

from program import ROOT, run

DOCUMENT = (ROOT / "examples/machines/bios-laptop/expected/format2.xml").read_bytes()
# The sanitizers need memory of their own, so the shipped program is measured.
SHIPPED = os.environ["ORVANE_NATIVE"]


def large_document(volumes):
    """The document with its third volume many times, without white space between elements, as the library writes it."""
    text = b"".join(line.strip() for line in DOCUMENT.splitlines())
    begin, end = text.index(b"<volume2>"), text.index(b"</volume2>") + len(b"</volume2>")
    row = text[begin:end]
    rows = []
    for number in range(4, volumes):
        name = b"volume%d>" % number
        changed = row.replace(b"volume2>", name).replace(b"HarddiskVolume3", b"HarddiskVolume%d" % number)
        rows.append(changed)
    place = text.index(b"</VolumeTable>")
    return (text[:place] + b"".join(rows) + text[place:]).replace(b"<TotalVolumes>4", b"<TotalVolumes>%d" % volumes)


# A process of its own: the peak of a child begins with the memory of the process that starts it.
MEASURE = """
import os, sys
child = os.posix_spawn(sys.argv[1], sys.argv[1:], os.environ,
                       file_actions=[(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)])
print(os.wait4(child, 0)[2].ru_maxrss * 1024)
"""


def peak(file):
    """The most memory that the program has when it verifies the file."""
    measured = subprocess.run([sys.executable, "-S", "-c", MEASURE, SHIPPED, "verify", file], capture_output=True, check=True)
    return int(measured.stdout)


class BadInput(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)

    def refuse(self, data, *parts):
        file = self.folder / "document.xml"
        file.write_bytes(data)
        for command in ("show", "verify"):
            code, out, errors = run(command, file)
            self.assertEqual((code, out, len(errors)), (2, b"", 1), errors)
            self.assertTrue(errors[0].startswith(f"orvane: {file}: "), errors)
            for part in parts:
                self.assertIn(part, errors[0])

    def test_truncated(self):
        self.refuse(DOCUMENT[:5000], "line ", "column ", "the text ends inside of ")

    def test_mixed_up(self):
        self.refuse(DOCUMENT.replace(b"<VolumeTable>", b"<DiskDrives>").replace(b"</VolumeTable>", b"</DiskDrives>"),
                    "DiskDrives: the section is there twice")

    def test_numbers_over_64_bits(self):
        self.refuse(DOCUMENT.replace(b"<m_Size>524288000", b"<m_Size>18446744073709551616", 1),
                    'VolumeTable/volume0/m_Size: "18446744073709551616" is out of range')

    def test_extents_on_disks_that_are_not_there(self):
        self.refuse(DOCUMENT.replace(b"<m_DiskNumber>0", b"<m_DiskNumber>7"),
                    "VolumeTable/volume0/extent0/m_DiskNumber: the document has no disk 7")

    def test_forty_megabytes_of_anything(self):
        self.refuse(b"<a/>" * (10 << 20), "line 1, column 5: a second root element")
        self.refuse(b"<r>" + b"<a/>" * (10 << 20), "more elements than a document of this size can have")
        self.refuse(b"<r>" + b"<a>" * (13 << 20), "more than 64 levels of elements")
        self.refuse(bytes(40 << 20), "the character U+0000, which XML forbids")

    def test_memory_is_at_most_six_times_the_file(self):
        small = self.folder / "small.xml"
        small.write_bytes(DOCUMENT)
        large = self.folder / "large.xml"
        large.write_bytes(large_document(40000))
        size = large.stat().st_size
        self.assertGreater(size, 30 << 20)

        smallest = peak(small)
        self.assertLess(smallest, 30 << 20)
        self.assertLess(peak(large) - smallest, 6 * size)


if __name__ == "__main__":
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    unittest.main()
