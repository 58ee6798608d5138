#!/usr/bin/env -S python3 -B
"""The comparisons of the closed loop notice every difference that counts, and no other."""

import importlib.machinery
import importlib.util
import os
import pathlib
import random
import re
import sys
import tempfile
import unittest
from unittest import mock
import xml.etree.ElementTree as ElementTree

from program import ROOT

sys.path.insert(0, str(ROOT / "tests/documents/loop"))
import compare  # noqa: E402
import library_writers  # noqa: E402
import tables  # noqa: E402
import tools  # noqa: E402

_loader = importlib.machinery.SourceFileLoader("run_loop", str(ROOT / "tests/documents/loop/run-loop"))
run_loop = importlib.util.module_from_spec(importlib.util.spec_from_loader("run_loop", _loader))
_loader.exec_module(run_loop)

MBR = """label: dos
label-id: 0x1badcafe
device: a.img
unit: sectors
sector-size: 512

a.img1 : start=          63, size=        1000, type=7, bootable
a.img3 : start=        2047, size=      300000, type=f
a.img5 : start=        2110, size=        1001, type=6
"""
GPT = """label: gpt
label-id: 6F1F4A52-9C0D-4E1B-8A37-52D1B0C4E9A1
device: a.img
unit: sectors
first-lba: 34
last-lba: 1048542
sector-size: 512

a.img1 : start=2048, size=1000, type=C12A7328-F81F-11D2-BA4B-00A0C93EC93B, uuid=AAAAAAAA-0000-4000-8000-000000000001
a.img7 : start=300, size=1000, type=C12A7328-F81F-11D2-BA4B-00A0C93EC93B, uuid=AAAAAAAA-0000-4000-8000-000000000002, name="x"
"""
DOCUMENT = ROOT / "examples/machines/bios-laptop/expected/format2.xml"


def same(one, other, with_id=True):
    return compare.comparable(tools.read_dump(one), with_id) == compare.comparable(tools.read_dump(other), with_id)


class Comparisons(unittest.TestCase):
    def test_a_dump_is_read(self):
        self.assertEqual(
            tools.read_dump(MBR)["partitions"][0],
            {"number": 1, "start": 63, "size": 1000, "type": "7", "uuid": "", "active": True},
        )
        self.assertEqual(tools.read_dump(GPT)["partitions"][1]["uuid"], "AAAAAAAA-0000-4000-8000-000000000002")

    def test_differences_of_dumps_count(self):
        for text, old, new in [
            (MBR, "start=          63", "start=64"),
            (MBR, "size=        1001", "size=1002"),
            (MBR, "size=      300000", "size=300001"),
            (MBR, "type=6", "type=7"),
            (MBR, ", bootable", ""),
            (MBR, "0x1badcafe", "0x1badcaff"),
            (MBR, "a.img5 : start=        2110", "a.img4 : start=2110"),
            (GPT, "0001\n", "0003\n"),
            (GPT, "start=300", "start=301"),
            (GPT, "6F1F", "6F2F"),
            (GPT, "type=C12A7328", "type=C12A7329"),
        ]:
            with self.subTest(old=old):
                self.assertIn(old, text)
                self.assertFalse(same(text, text.replace(old, new, 1)))

    def test_what_the_document_does_not_say_does_not_count(self):
        for text, old, new in [
            (MBR, "a.img3", "a.img2"),
            (MBR, "type=f", "type=5"),
            (GPT, ', name="x"', ""),
            (GPT, "a.img7", "a.img2"),
        ]:
            with self.subTest(old=old):
                self.assertTrue(same(text, text.replace(old, new, 1)))
        self.assertTrue(same(MBR, MBR.replace("0x1badcafe", "0x00000001"), with_id=False))

    def differences(self, old, new, larger):
        text = DOCUMENT.read_text(encoding="utf-8")
        changed = re.sub(old, new, text, count=1, flags=re.DOTALL)
        self.assertNotEqual(changed, text)
        return compare.document_differences("document", text, changed, larger)

    def test_differences_of_documents_count(self):
        self.assertTrue(self.differences("<start>1048576</start>", "<start>1048577</start>", True))
        self.assertTrue(self.differences("<m_PartitionNumber>1<", "<m_PartitionNumber>2<", True))
        self.assertTrue(self.differences("<Label>Documents<", "<Label>Other<", False))
        self.assertTrue(self.differences("<size>320072933376</size>", "<size>320072933377</size>", False))
        self.assertEqual(self.differences("<size>320072933376</size>", "<size>320072933377</size>", True), [])

    def test_cases_are_those_of_their_seed(self):
        for seed in range(50):
            disks = tables.random_disks(random.Random(seed))
            self.assertEqual(disks, tables.random_disks(random.Random(seed)))
            for disk in disks:
                numbers = [one.number for one in disk.partitions]
                self.assertEqual(len(numbers), len(set(numbers)))
                self.assertLessEqual(max(one.end for one in disk.partitions), disk.sectors)
                self.assertTrue(tables.SMALLEST - disk.sector < disk.size <= tables.LARGEST)


class Failures(unittest.TestCase):
    """Every failure is told of its case, whose seed is then printed."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)

    def test_any_error_of_a_step_is_told(self):
        for number, error in enumerate((tools.ToolError("x"), ElementTree.ParseError("x"), AttributeError("x"), TypeError("x"))):
            case = run_loop.Case(number, self.folder)
            case.attempt(mock.Mock(side_effect=error))
            self.assertEqual(case.wrong, [f"{type(error).__name__}: x"])

    def test_answers_of_the_writer_that_cannot_be_used_are_told(self):
        disk = tables.Disk("gpt", "sfdisk", 512, 204800, "6F1F4A52-9C0D-4E1B-8A37-52D1B0C4E9A1", [])
        cases = [run_loop.Case(seed, self.folder) for seed in range(3)]
        for case in cases:
            case.disks = [disk]
        answers = '{"ids": []\n{"error": "no"}\n'
        library_writers.check(cases, self.folder, lambda *_: answers, str)
        for case, text in zip(cases, ("JSONDecodeError", "writer: no", "no answer")):
            self.assertEqual(len(case.wrong), 1)
            self.assertIn(text, case.wrong[0])

    def test_a_program_that_does_not_end_is_ended(self):
        program = self.folder / "sleeps"
        program.write_text("#!/bin/sh\necho begun\nexec sleep 60\n")
        program.chmod(0o755)
        with mock.patch.dict(os.environ, {"ORVANE_RUN": "", "SLEEPS": str(program)}), mock.patch.object(run_loop, "LIMIT", 1):
            self.assertEqual(run_loop.run_on_windows("SLEEPS"), "begun\n\nended after 1 seconds\n")


if __name__ == "__main__":
    unittest.main()
