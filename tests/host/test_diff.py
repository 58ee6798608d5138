#!/usr/bin/env -S python3 -B
"""orvane diff --live: what is told of a machine that has changed since a capture."""

import copy
import json
import unittest

from host import EXAMPLES, MACHINES, HostTest, capture, run

LAPTOP = "bios-laptop"
WORKSTATION = "uefi-workstation"
FORMATS = (2, 3)

# Of the workstation. Format 3 has no identifiers of GPT disks.
DISK_0 = {2: "{6F1F4A52-9C0D-4E1B-8A37-52D1B0C4E9A1}", 3: "disk 0"}
DISK_1 = {2: "{A2D0B6C8-17F4-4A63-B8E5-9D3F60217C44}", 3: "disk 1"}
RESERVED_1 = {number: disk + "@17408" for number, disk in DISK_1.items()}
DATA_PARTITION = "{71C9E0AA-5D38-4B0C-8E21-6F4D3A2B1C02}"
RECOVERY_PARTITION = "{3C5D7E10-42B6-4D0F-9F6E-0A1B2C3D4E04}"
DATA = "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a06}\\"
RECOVERY = "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a04}\\"
NEW_DISK = "{0B5E6A11-2C3D-4E4F-8A5B-6C7D8E9F0A1B}"


def volume_of(machine, path):
    return next(volume for volume in machine["volumes"] if volume["guid"] and volume["guid"] in path)


def renumber(machine, numbers):
    for disk in machine["disks"]:
        disk["index"] = numbers.get(disk["index"], disk["index"])
    for volume in machine["volumes"]:
        if "partition" in volume:
            number = volume["partition"]["disk"]
            volume["partition"]["disk"] = numbers.get(number, number)


def swap(machine):
    renumber(machine, {0: 1, 1: 0})


def resize_disk(machine):
    machine["disks"][1]["size"] += 1 << 30


def resize_partition(machine):
    machine["disks"][1]["partitions"][1]["size"] = "900000 MiB"


def add_disk(machine):
    machine["disks"].append({"index": 2, "size": "10 GiB", "style": "gpt", "diskId": NEW_DISK,
                             "partitions": [{"offset": "1 MiB", "size": "9 GiB", "type": "basic-data"}]})


def remove_disk(machine):
    del machine["disks"][1]
    machine["volumes"] = [volume for volume in machine["volumes"] if volume.get("partition", {}).get("disk") != 1]


def remove_partition(machine):
    del machine["disks"][0]["partitions"][3]
    machine["volumes"].remove(volume_of(machine, RECOVERY))


def relabel(machine):
    volume_of(machine, DATA)["label"] = "Archive"


def move_letter(machine):
    volume_of(machine, DATA)["mountPoints"] = ["F:\\"]


def reformat(machine):
    volume_of(machine, DATA)["serial"] = "0x77777777"


def make_dynamic(machine):
    partitions = machine["disks"][1]["partitions"]
    partitions[1]["type"] = "ldm-data"
    partitions.append({"offset": "953868 MiB", "size": "512 KiB", "type": "ldm-metadata"})


def convert(machine):
    """The laptop's partitions stay where they are; the extended partition goes."""
    disk = machine["disks"][0]
    for key in ("signature", "checksum", "layoutChecksum"):
        del disk[key]
    disk["style"] = "gpt"
    disk["diskId"] = NEW_DISK
    first, second, extended = disk["partitions"]
    disk["partitions"] = [{"offset": partition["offset"], "size": partition["size"], "type": "basic-data"}
                          for partition in (first, second, *extended["logical"])]
    machine["firmware"] = {"type": "uefi"}


# Name, case, what happens, and what is told then in each format: object, kind, id, whether it is a guess. In format 3
# the workstation's disks are recognised by their volumes.
STORIES = (
    ("renumbered", WORKSTATION, lambda machine: renumber(machine, {1: 3}), {
        2: [("disk", "renumbered", DISK_1[2], False)],
        3: [("disk", "renumbered", DISK_1[3], True)]}),
    ("swapped", WORKSTATION, swap, {
        2: [("disk", "renumbered", DISK_0[2], False), ("disk", "renumbered", DISK_1[2], False)],
        3: [("disk", "renumbered", DISK_0[3], True), ("disk", "renumbered", DISK_1[3], True)]}),
    ("disk resized", WORKSTATION, resize_disk, {
        2: [("disk", "resized", DISK_1[2], False)],
        3: [("disk", "resized", DISK_1[3], True)]}),
    ("partition resized", WORKSTATION, resize_partition, {
        2: [("partition", "resized", DATA_PARTITION, False), ("volume", "resized", DATA, False)],
        3: [("volume", "resized", DATA, False)]}),
    ("disk added", WORKSTATION, add_disk, {
        2: [("disk", "added", NEW_DISK, False)],
        3: [("disk", "added", "disk 2", False)]}),
    ("disk removed", WORKSTATION, remove_disk, {
        number: [("disk", "removed", DISK_1[number], False), ("volume", "removed", DATA, False),
                 ("volume", "removed", RESERVED_1[number], False)] for number in FORMATS}),
    ("partition removed", WORKSTATION, remove_partition, {
        2: [("partition", "removed", RECOVERY_PARTITION, False), ("volume", "removed", RECOVERY, False)],
        3: [("volume", "removed", RECOVERY, False)]}),
    ("relabelled", WORKSTATION, relabel, {
        number: [("volume", "relabelled", DATA, False)] for number in FORMATS}),
    ("letter moved", WORKSTATION, move_letter, {
        number: [("volume", "remounted", DATA, False)] for number in FORMATS}),
    ("reformatted", WORKSTATION, reformat, {
        number: [("volume", "reformatted", DATA, False)] for number in FORMATS}),
    ("made dynamic", WORKSTATION, make_dynamic, {
        2: [("disk", "dynamic", DISK_1[2], False)],
        3: [("disk", "dynamic", DISK_1[3], True)]}),
    # MBR and GPT disks have no common identifier.
    ("converted to GPT", LAPTOP, convert, {
        number: [("disk", "converted", "0x7A3C51E8", True)] for number in FORMATS}),
)



class Diff(HostTest):
    def captured(self, machine, number):
        """A file with the document of the machine."""
        file = self.folder / f"{machine.name}-{number}.xml"
        result = capture("--machine", machine, "--format", number)
        self.assert_done(result)
        file.write_bytes(result.out)
        return file

    def changed(self, name, change):
        file = self.folder / "machine.json"
        machine = json.loads((EXAMPLES / name / "machine.json").read_text(encoding="utf-8"))
        before = copy.deepcopy(machine)
        change(machine)
        self.assertNotEqual(machine, before)
        file.write_text(json.dumps(machine), encoding="utf-8")
        return file

    def test_each_change_is_told_and_nothing_else(self):
        for name, machine, change, told in STORIES:
            for number in FORMATS:
                with self.subTest(change=name, format=number):
                    old = self.captured(EXAMPLES / machine, number)
                    result = run("diff", "--live", "--json", "--machine", self.changed(machine, change), old)
                    self.assertEqual((result.code, result.errors), (1, []))
                    document = json.loads(result.out)
                    self.assertEqual(document["new"], {"file": None, "format": number})
                    changes = [tuple(change[key] for key in ("object", "kind", "id", "guess"))
                               for change in document["changes"]]
                    # Volumes come in the order of the document, which differs between the formats.
                    self.assertEqual(sorted(changes), sorted(told[number]))

    def test_partition_that_was_added_is_told(self):
        """The reverse of a partition that was removed."""
        changed = self.changed(WORKSTATION, remove_partition)
        result = capture("--machine", changed)
        self.assert_done(result)
        old = self.folder / "old.xml"
        old.write_bytes(result.out)
        result = run("diff", "--live", "--machine", EXAMPLES / WORKSTATION, old)
        self.assertEqual((result.code, result.errors), (1, []))
        lines = result.out.decode("utf-8").splitlines()
        self.assertEqual(len(lines), 2, lines)
        self.assertTrue(lines[0].startswith("Disk 0, partition at 476.3 GiB: added ("), lines)
        self.assertTrue(lines[1].startswith(f"Volume {RECOVERY}: added ("), lines)

    def test_every_case_is_the_same_as_another_capture_of_it(self):
        for machine in MACHINES:
            documents = [(number, machine / f"expected/format{number}.xml") for number in (2, 3, 1)]
            number, document = next(((number, file) for number, file in documents if file.exists()), (None, None))
            if document:
                with self.subTest(machine=machine.name, format=number):
                    result = run("diff", "--live", "--all", "--machine", machine, document)
                    self.assertEqual((result.code, result.out), (0, b""), result.errors)

    def test_capture_that_fails_is_trouble(self):
        old = EXAMPLES / WORKSTATION / "expected/format2.xml"
        result = run("diff", "--live", "--machine", EXAMPLES / "no-disks", old)
        self.assert_refused(result, 2, "the capture failed")

    def test_bad_arguments_are_trouble(self):
        old = EXAMPLES / WORKSTATION / "expected/format2.xml"
        self.assert_refused(run("diff", "--live", old, old), 2, "one document")
        self.assert_refused(run("diff", "--live", "--machine", self.folder / "none.json", old), 2, "none.json")
        result = run("diff", "--machine", EXAMPLES / WORKSTATION, old, old)
        self.assertEqual((result.code, result.out), (2, b""))


if __name__ == "__main__":
    unittest.main()
