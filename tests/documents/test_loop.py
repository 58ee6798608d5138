#!/usr/bin/env -S python3 -B
"""The comparisons of the closed loop notice every difference that counts, and no other."""

import random
import re
import sys
import unittest

from program import ROOT

sys.path.insert(0, str(ROOT / "tests/documents/loop"))
import compare  # noqa: E402
import tables  # noqa: E402
import tools  # noqa: E402

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


if __name__ == "__main__":
    unittest.main()
