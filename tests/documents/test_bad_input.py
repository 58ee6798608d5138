#!/usr/bin/env -S python3 -B
"""Bad input: one line with file, place and reason, exit code 2; memory within six times the file."""

import json
import os
import pathlib
import resource
import subprocess
import sys
import tempfile
import time
import unittest

from program import ROOT, run

DOCUMENT = (ROOT / "examples/machines/bios-laptop/expected/format2.xml").read_bytes()
FORMAT_3 = (ROOT / "examples/machines/bios-laptop/expected/format3.xml").read_bytes()
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


def with_volumes(count, changed):
    """The document of format 3, with its last volume `count` times more; `changed` alters the volume."""
    text = b"".join(line.strip() for line in FORMAT_3.splitlines() if not line.startswith(b"<?xml"))
    begin, end = text.rindex(b"<Volume>"), text.rindex(b"</Volume>") + len(b"</Volume>")
    return text[:end] + changed(text[begin:end]) * count + text[end:]


def dense(volume):
    """With as many values as it can have, each as short as values can be in all of a document."""
    return volume.replace(b"</Volume>", b"<a>0123456789012</a>" * 99000 + b"</Volume>")


def reversed_folders(volume):
    begin, end = volume.index(b"<NumberOfMountPoints>"), volume.index(b"</MountPoint1>") + len(b"</MountPoint1>")
    folders = b"".join(b"<MountPoint%d>M:\\f</MountPoint%d>" % (number, number) for number in range(99000, 0, -1))
    return volume[:begin] + b"<NumberOfMountPoints>99000</NumberOfMountPoints>" + folders + volume[end:]


def drawn(volume):
    """With a label of box drawing: each character is one byte in code page 437, and three in UTF-8."""
    begin, end = volume.index(b"<VolumeLabel>") + len(b"<VolumeLabel>"), volume.index(b"</VolumeLabel>")
    return volume[:begin] + b"\xcd" * 340000 + volume[end:]


# A process of its own: the peak of a child begins with the memory of the process that starts it.
MEASURE = """
import os, sys
child = os.posix_spawn(sys.argv[1], sys.argv[1:], os.environ,
                       file_actions=[(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)])
print(os.wait4(child, 0)[2].ru_maxrss * 1024)
"""


def peak(file, command="verify", *options):
    """The most memory that the program has when it reads the file."""
    measured = subprocess.run([sys.executable, "-S", "-c", MEASURE, SHIPPED, command, *options, file], capture_output=True, check=True)
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
        self.refuse(b"<r>" + (b"<b>" + b"<a/>" * 90000 + b"</b>") * 110, "more elements than a document of this size can have")
        self.refuse(b"<r>" + b"<a>" * (13 << 20), "more than 64 levels of elements")
        self.refuse(DOCUMENT.replace(b"<Processor>", b"<Processor>" + b"<a>0123456789012</a>" * (2 << 20)),
                    "more than 100000 elements in an element")
        self.refuse(bytes(40 << 20), "the character U+0000, which XML forbids")

    def test_names_in_a_list_need_not_be_utf_8(self):
        folder = os.fsencode(self.folder)
        for name in (b"one.xml", b"\xfcber.xml"):
            pathlib.Path(os.fsdecode(folder + b"/" + name)).write_bytes(DOCUMENT)
        listed = self.folder / "list.txt"
        listed.write_bytes(folder + b"/one.xml\n" + folder + b"/\xfcber.xml\n")
        code, out, errors = run("show", "--from", listed)
        self.assertEqual((code, out.count(b"LT-ANNA"), errors), (0, 2, []))
        code, out, errors = run("show", "--json", "--from", listed)
        self.assertEqual((code, len(json.loads(out)["documents"]), errors), (0, 2, []))

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

    def test_made_up_documents_are_read_in_the_same_memory(self):
        small = self.folder / "small.xml"
        small.write_bytes(DOCUMENT)
        smallest = peak(small)
        for count, changed, options in ((20, dense, ()), (10, reversed_folders, ()), (120, drawn, ("--code-page", "437"))):
            with self.subTest(changed.__name__):
                file = self.folder / "made-up.xml"
                file.write_bytes(with_volumes(count, changed))
                size = file.stat().st_size
                self.assertGreater(size, 35_000_000)
                self.assertLess(peak(file, "verify", *options) - smallest, 6 * size)
                for command in ("show", "verify"):
                    begin = time.monotonic()
                    peak(file, command, *options)
                    self.assertLess(time.monotonic() - begin, 20, command)


if __name__ == "__main__":
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    unittest.main()
