#!/usr/bin/env -S python3 -B
"""orvane plan: the partitioning tools make its scripts on blank images, and read back what the document says. Targets,
files and exit codes."""

import os
import pathlib
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

from program import DOCUMENTS, ROOT, run

sys.path.insert(0, str(ROOT / "tests/documents/loop"))
import tools  # noqa: E402

LAPTOP = ROOT / "examples/machines/bios-laptop/expected/format2.xml"
LAPTOP_SIZE = 320072933376  # disk 0, MBR, 512-byte sectors
LARGE = ROOT / "examples/machines/large-4kn/expected/format2.xml"  # two disks with 4096-byte sectors
WORKSTATION = ROOT / "examples/machines/uefi-workstation/expected/format2.xml"
MIB = 1 << 20


def text(element, name):
    return (element.findtext(name) or "").strip()


def extended_by_rows(rows):
    """The extended partition begins with its first row and ends with its last. Its type is not in the document."""
    inside = [row for row in rows if text(row, "parttype") in ("Logical", "Free space")]
    if not inside:
        return []
    start = min(int(text(row, "start")) for row in inside)
    end = max(int(text(row, "start")) + int(text(row, "size")) for row in inside)
    return [(start, end - start, "f", "", False, None)]


def flat_disks(root):
    """Formats 1 and 2: {number: (size, sector size, [partition])}, a partition as (start, size, type, id, active, slot).
    The slot is None where the document does not tell it."""
    disks = {}
    for disk in root.find("BMREnvInfo/DiskDrives"):
        if not disk.tag.startswith("x"):
            continue
        partitions = extended_by_rows([row for row in disk if row.tag.startswith("y")])
        for row in disk:
            if row.tag.startswith("y") and text(row, "parttype") in ("Primary", "Logical"):
                gpt = text(row, "partition_style") == "1"
                kind = text(row, "gpt_partition_type").strip("{}") if gpt else f"{int(text(row, 'mbr_partition_type')):x}"
                guid = text(row, "partition_guid").strip("{}") if gpt else ""
                active = not gpt and text(row, "primary") == "1"
                partitions.append((int(text(row, "start")), int(text(row, "size")), kind, guid, active, None))
        disks[text(disk, "index")] = (int(text(disk, "size")), int(text(disk, "disk_bytes_per_sector")), partitions)
    return disks


def model_disks(root):
    """The same for format 3, whose GPT disks have no partitions."""
    disks = {}
    for disk in root.find("BMREnvInfo/DeviceInfo"):
        if not disk.tag.startswith("Disk"):
            continue
        partitions = []
        for row in disk:
            if not row.tag.startswith("Partition") or not len(row):
                continue
            entry = int(row.tag.removeprefix("Partition"))
            kind = f"{int(text(row, 'Type')):x}"
            # Behind the four slots, an entry of an extended type is a record, which the tools make.
            if text(row, "PartitionNumber") != "0" or (entry <= 4 and kind in ("5", "f")):
                active = text(row, "BootIndicator") == "True"
                slot = entry if entry <= 4 else None
                partitions.append((int(text(row, "Offset")), int(text(row, "Length")), kind, "", active, slot))
        disks[text(disk, "DiskId")] = (int(text(disk, "DiskSize")), int(text(disk, "bytes_per_sector") or 0), partitions)
    return disks


def disks_of(document):
    root = ElementTree.parse(document).getroot()
    return (model_disks if root.find("BMREnvInfo/DeviceInfo") is not None else flat_disks)(root)


def made_by_tools(script, image, size, sector):
    """What the tools read from a blank image after they made the script on it, in bytes."""
    tools.make_blank(image, size)
    tools.apply_script(image, sector, script)
    table = tools.read_dump(tools.dump(image, sector))
    return [
        (one["start"] * sector, one["size"] * sector, one["type"], one["uuid"], one["active"],
         one["number"] if table["label"] == "dos" and one["number"] <= 4 else None)
        for one in table["partitions"]
    ]


def without_untold(found, wanted):
    """The slots only if the document tells them."""
    if any(slot for *_, slot in wanted):
        return found
    return [(*one, None) for *one, _ in found]


class Plans(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        scratch = tempfile.TemporaryDirectory(dir="/dev/shm" if os.access("/dev/shm", os.W_OK) else None)
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        self.plan = self.folder / "plan"

    def image(self, name, size, data=b"", at=0):
        file = self.folder / name
        tools.make_blank(file, size)
        with file.open("r+b") as stream:
            stream.seek(at)
            stream.write(data)
        return file

    def refused(self, document, *arguments):
        code, out, errors = run("plan", document, "--output", self.plan, *arguments)
        self.assertEqual((code, out), (1, b""))
        self.assertFalse(self.plan.exists())
        return [line.split()[1] for line in errors]

    def trouble(self, *arguments):
        code, out, errors = run("plan", *arguments)
        self.assertEqual((code, out, len(errors)), (2, b"", 1), errors)
        return errors[0]

    def test_tools_make_of_every_script_what_the_document_says(self):
        made = 0
        for number, document in enumerate(DOCUMENTS):
            plan = self.folder / str(number)
            code, _, errors = run("plan", document, "--output", plan)
            self.assertIn(code, (0, 1), errors)
            for script in sorted(plan.glob("*.sfdisk")):
                with self.subTest(document=document, script=script.name):
                    size, sector, wanted = disks_of(document)[script.stem.removeprefix("disk")]
                    found = made_by_tools(script, self.folder / "image.img", size, sector)
                    found = without_untold(found, wanted)
                    self.assertEqual(sorted(found, key=lambda one: one[0]), sorted(wanted, key=lambda one: one[0]))
                    made += 1
        self.assertGreater(made, 30)

    def test_the_type_of_the_extended_partition_is_that_of_format_3(self):
        document = self.folder / "type5.xml"
        before = LAPTOP.with_name("format3.xml").read_bytes()
        self.assertEqual(before.count(b"<Type>15<"), 1)
        document.write_bytes(before.replace(b"<Type>15<", b"<Type>5<"))
        run("plan", document, "--output", self.plan)
        found = made_by_tools(self.plan / "disk0.sfdisk", self.folder / "image.img", LAPTOP_SIZE, 512)
        self.assertEqual([(kind, slot) for _, _, kind, _, _, slot in found if slot], [("7", 1), ("7", 2), ("5", 3)])

    def test_gaps_between_the_slots_of_format_3_stay(self):
        """The second slot is emptied: what was in the third stays there."""
        root = ElementTree.parse(LAPTOP.with_name("format3.xml"))
        for element in root.find(".//Partition2"):
            if element.tag in ("PartitionNumber", "Offset", "Length", "Type"):
                element.text = "0"
        document = self.folder / "gap.xml"
        root.write(document, encoding="utf-8", xml_declaration=True)
        run("plan", document, "--output", self.plan)
        found = made_by_tools(self.plan / "disk0.sfdisk", self.folder / "image.img", LAPTOP_SIZE, 512)
        self.assertEqual([(kind, slot) for _, _, kind, _, _, slot in found if slot], [("7", 1), ("f", 3)])
        self.assertNotIn("Empty slots", (self.plan / "plan.md").read_text())

    def test_an_empty_gpt_is_made(self):
        """Format 2 has one row for the whole of a GPT disk without partitions."""
        root = ElementTree.parse(WORKSTATION)
        disk = root.find(".//DiskDrives/x1")
        disk.remove(disk.find("y0"))
        disk.remove(disk.find("y1"))
        row = disk.find("y2")
        row.tag = "y0"
        row.find("start").text = "0"
        row.find("size").text = text(disk, "size")
        disk.find("size_idy").text = "1"
        document = self.folder / "empty.xml"
        root.write(document, encoding="utf-8", xml_declaration=True)
        run("plan", document, "--output", self.plan, "--disk", "1")
        image = self.folder / "image.img"
        self.assertEqual(made_by_tools(self.plan / "disk1.sfdisk", image, int(text(disk, "size")), 512), [])
        self.assertEqual(tools.read_dump(tools.dump(image, 512))["id"], text(disk, "disk_guid").strip("{}"))

    def test_disk_ids_are_those_of_the_document(self):
        run("plan", LAPTOP, "--output", self.plan)
        image = self.folder / "image.img"
        made_by_tools(self.plan / "disk0.sfdisk", image, LAPTOP_SIZE, 512)
        self.assertEqual(tools.read_dump(tools.dump(image, 512))["id"], "0x7a3c51e8")

    def test_a_good_target_stays_as_it_is_and_is_named(self):
        image = self.image("target.img", LAPTOP_SIZE + MIB)
        code, out, errors = run("plan", LAPTOP, "--output", self.plan, "--target", f"0={image}")
        self.assertEqual((code, errors), (0, []))
        self.assertEqual(out.decode().split(), [f"{self.plan}/disk0.sfdisk", f"{self.plan}/plan.md"])
        self.assertIn(f"# Target: {image}, {LAPTOP_SIZE + MIB} bytes.\n", (self.plan / "disk0.sfdisk").read_text())
        self.assertIn("| Left over on the target | 1048576 bytes (1 MiB) at its end |", (self.plan / "plan.md").read_text())
        self.assertEqual((image.stat().st_size, image.stat().st_blocks), (LAPTOP_SIZE + MIB, 0))

    def test_a_target_that_is_too_small_is_refused(self):
        last = max(start + size for start, size, *_ in disks_of(LAPTOP)["0"][2])
        image = self.image("small.img", last - 1)
        self.assertEqual(self.refused(LAPTOP, "--target", f"0={image}"), ["P020"])
        self.assertEqual(self.refused(LAPTOP, "--target-size", f"0={last - 1}"), ["P020"])
        self.assertEqual(self.refused(LAPTOP, "--target-size", "0=64 GiB"), ["P020"])

    def test_other_sectors_are_refused(self):
        image = self.image("target.img", LAPTOP_SIZE)
        self.assertEqual(self.refused(LAPTOP, "--target", f"0={image}", "--sector-size", "0=4096"), ["P021"])
        self.assertEqual(run("plan", LARGE, "--output", self.plan, "--target-size", "0=20TB", "--sector-size", "0=4096")[0], 0)

    def test_the_same_target_twice_is_refused(self):
        image = self.image("target.img", 2 << 40)
        link = self.folder / "link.img"
        link.symlink_to(image)
        self.assertEqual(self.refused(WORKSTATION, "--target", f"0={image}", "--target", f"1={link}"), ["P022"])

    def test_a_target_that_is_not_blank_is_refused(self):
        for at in (0, MIB - 1, LAPTOP_SIZE - MIB, LAPTOP_SIZE - 1):
            with self.subTest(at=at):
                image = self.image("target.img", LAPTOP_SIZE, b"\x01", at)
                self.assertEqual(self.refused(LAPTOP, "--target", f"0={image}"), ["P023"])
        for at in (MIB, LAPTOP_SIZE - MIB - 1):
            image = self.image("target.img", LAPTOP_SIZE, b"\x01", at)
            self.assertEqual(run("plan", LAPTOP, "--output", self.plan, "--force", "--target", f"0={image}")[0], 0)

    def test_files_are_replaced_with_force_only(self):
        self.plan.mkdir()
        (self.plan / "plan.md").write_text("mine")
        self.assertIn("plan.md: the file exists", self.trouble(LAPTOP, "--output", self.plan))
        self.assertEqual(os.listdir(self.plan), ["plan.md"])
        self.assertEqual(run("plan", LAPTOP, "--output", self.plan, "--force")[0], 0)
        self.assertEqual(sorted(os.listdir(self.plan)), ["disk0.sfdisk", "plan.md"])

    def test_a_target_is_not_replaced_by_an_output_file(self):
        self.plan.mkdir()
        image = self.image("plan/disk0.sfdisk", LAPTOP_SIZE)
        link = self.folder / "link.img"
        link.symlink_to(image)
        for target in (image, link):
            error = self.trouble(LAPTOP, "--output", self.plan, "--force", "--target", f"0={target}")
            self.assertIn("disk0.sfdisk: the file is the target of disk 0", error)
        self.assertEqual((os.listdir(self.plan), image.stat().st_size), (["disk0.sfdisk"], LAPTOP_SIZE))

    def test_disks_that_format_1_leaves_out_are_a_note(self):
        """The numbers are in the READMEs of the cases: rows of 500 bytes."""
        for case, numbers in (("pooled-disks", "1, 2, 4"), ("virtual-disk-start", "2")):
            document = ROOT / f"examples/machines/{case}/expected/format1.xml"
            code, _, errors = run("plan", document, "--output", self.folder / case)
            self.assertEqual(code, 0)
            self.assertEqual([line.split()[1:3] for line in errors], [["P002", "note:"]])
            self.assertTrue(errors[0].endswith(f": {numbers}."), errors)
            self.assertIn(f": {numbers}.", (self.folder / case / "plan.md").read_text())
        code, _, errors = run("plan", document, "--output", self.plan, "--disk", "2")
        self.assertEqual((code, [line.split()[1] for line in errors], os.listdir(self.plan)), (0, ["P002"], ["plan.md"]))

    def test_one_disk_of_two(self):
        code, _, _ = run("plan", "-", "--output", self.plan, "--disk", "1", data=WORKSTATION.read_bytes())
        self.assertEqual((code, sorted(os.listdir(self.plan))), (0, ["disk1.sfdisk", "plan.md"]))

    def test_a_disk_that_cannot_be_made_is_an_answer(self):
        code, _, errors = run("plan", WORKSTATION.with_name("format3.xml"), "--output", self.plan)
        self.assertEqual((code, sorted(os.listdir(self.plan))), (1, ["plan.md"]))
        self.assertEqual([line.split()[1] for line in errors], ["P003", "P003"])

    def test_trouble(self):
        output = ["--output", self.plan]
        self.assertIn("no disk 7", self.trouble(LAPTOP, *output, "--disk", "7"))
        self.assertIn("no such target", self.trouble(LAPTOP, *output, "--target", f"0={self.folder}/none"))
        self.assertIn("is no size", self.trouble(LAPTOP, *output, "--target-size", "0=many"))
        self.assertIn("is no size", self.trouble(LAPTOP, *output, "--target-size", "0=99999999999 TiB"))
        self.assertIn("N=VALUE", self.trouble(LAPTOP, *output, "--target", "target.img"))
        self.assertIn("is given twice", self.trouble(LAPTOP, *output, "--target-size", "0=1TB", "--target-size", "0=1TB"))
        self.assertIn("size of its own", self.trouble(LAPTOP, *output, "--target-size", "0=1TB", "--target", "0=x"))
        self.assertIn("size of sectors", self.trouble(LAPTOP, *output, "--sector-size", "0=513"))
        self.assertIn("none.xml", self.trouble(self.folder / "none.xml", *output))
        self.assertIn("the folder cannot be made", self.trouble(LAPTOP, "--output", LAPTOP))
        self.assertFalse(self.plan.exists())


if __name__ == "__main__":
    unittest.main()
