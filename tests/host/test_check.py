#!/usr/bin/env -S python3 -B
"""orvane.exe check: which disks and volumes can be backed up."""

import json
import unittest

from host import EXAMPLES, MACHINES, HostTest, run, run_described, selected

SYSTEM_VOLUME = "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a03}\\"
OPTICAL_VOLUME = "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-806e6f6e6963}\\"


# The codes of docs/reasons.md.
NOT_FIXED, NO_SUCH_VOLUME, OTHER = "R001", "R021", "R000"


def verdict(reasons, codes=()):
    return {"canBackup": not reasons, "reasons": reasons, "codes": list(codes)}


# A disk without a partition table, names with non-ASCII letters and special characters, a volume on a missing disk.
ODD_MACHINE = {
    "disks": [{"index": 0, "size": "64 GiB", "style": "mbr", "signature": 1,
               "partitions": [{"offset": "1 MiB", "size": "60 GiB", "type": "ntfs", "active": True}]},
              {"index": 2, "size": "1 TiB", "style": "raw"}],
    "volumes": [
        {"guid": "{00000000-0000-0000-0000-000000000001}", "partition": {"disk": 0, "number": 1},
         "mountPoints": ["C:\\"], "label": "  Failure reason: none"},
        {"guid": "{00000000-0000-0000-0000-000000000002}", "device": "\\Device\\HarddiskVolume2", "unchecked": True,
         "extents": [{"disk": 7, "offset": "1 MiB", "length": "1 GiB"}], "mountPoints": ["C:\\\u00dcbung\\"],
         "label": "Volume #3"},
        {"guid": "{00000000-0000-0000-0000-000000000003}", "device": "\\Device\\CdRom0", "driveType": "cdrom",
         "mountPoints": ["C:\\50%d\\", "E:\\"], "media": False},
    ],
}
ODD_TABLE = """Disks
  Backup  Disk  Size
  yes     0     64.00 GB
  no      2     1024.00 GB
            R016 Unknown disk partition style 2

Volumes
  Backup  Volume                                             Device                   Mounted as
  no      \\\\?\\Volume{00000000-0000-0000-0000-000000000003}\\  \\Device\\CdRom0           C:\\50%d\\, E:\\
            R001 This not a fixed disk, type is 5
  yes     \\\\?\\Volume{00000000-0000-0000-0000-000000000001}\\  \\Device\\HarddiskVolume1  C:\\
  no      \\\\?\\Volume{00000000-0000-0000-0000-000000000002}\\  \\Device\\HarddiskVolume2  C:\\\u00dcbung\\
            R002 Extent is on disk 7 but we don't have such disk.
"""
ODD_SELECTION = """
Selected
  Backup  Volume
  no      \\Device\\CdRom0
            R001 This not a fixed disk, type is 5
  no      00000000-0000-0000-0000-000000000002
            R002 Extent is on disk 7 but we don't have such disk.
"""


class Check(HostTest):
    def odd_machine(self):
        file = self.folder / "machine.json"
        file.write_text(json.dumps(ODD_MACHINE), encoding="utf-8")
        return file

    def test_every_example_is_judged_as_expected(self):
        for machine in MACHINES:
            with self.subTest(machine=machine.name):
                result = run("check", "--machine", machine, "--json", *selected(machine))
                expected = (machine / "expected/check.json").read_bytes()
                self.assertEqual(result.out, expected)
                report = json.loads(expected)
                fit = None not in (report["disks"], report["volumes"]) and all(volume["canBackup"] for volume in report["selected"])
                self.assertEqual(result.code, 0 if fit else 1, result.errors)

    def test_table_tells_the_same_to_people(self):
        result = run("check", "--machine", self.odd_machine())
        self.assert_done(result)
        self.assertEqual(result.out.decode("utf-8"), ODD_TABLE)

    def test_selected_volumes_that_cannot_be_backed_up_fail(self):
        result = run("check", "--machine", self.odd_machine(), "--volume", "\\Device\\CdRom0", "--volume",
                     "00000000-0000-0000-0000-000000000002")
        self.assertEqual((result.code, result.errors), (1, []))
        self.assertEqual(result.out.decode("utf-8"), ODD_TABLE + ODD_SELECTION)

    def test_selected_volume_that_can_be_backed_up_passes(self):
        result = run_described("check", "--volume", SYSTEM_VOLUME, "--json")
        self.assert_done(result)
        self.assertEqual(json.loads(result.out)["selected"], [{"volume": SYSTEM_VOLUME, **verdict([])}])

    def test_each_selected_volume_is_judged_by_itself(self):
        unknown = ["Backup cannot proceed. Failed to find any information about volume \u00dc:."]
        unspeakable = ["The reason has letters that this system's locale lacks."]
        result = run_described("check", "--volume", OPTICAL_VOLUME, "--volume", SYSTEM_VOLUME, "--volume", "\u00dc:",
                               "--volume", "\u4e2d:", "--json")
        self.assertEqual((result.code, result.errors), (1, []))
        self.assertEqual(json.loads(result.out.decode("utf-8"))["selected"], [
            {"volume": OPTICAL_VOLUME, **verdict(["This not a fixed disk, type is 5"], [NOT_FIXED])},
            {"volume": SYSTEM_VOLUME, **verdict([])},
            {"volume": "\u00dc:", **verdict(unknown, [NO_SUCH_VOLUME])},
            {"volume": "\u4e2d:", **verdict(unspeakable, [OTHER])},
        ])

    def test_machine_without_disks_cannot_be_checked(self):
        errors = ["error: DeviceManager::ObtainPhysicalDrivesIndexes FindFirstObject failed",
                  "error: Failed to obtain environment information"]
        machine = EXAMPLES / "no-disks"
        table = run("check", "--machine", machine)
        self.assertEqual((table.code, table.errors), (1, [*errors, "orvane: the check failed"]))
        self.assertEqual(table.out, b"Disks\n  none found\n\nVolumes\n  could not be listed\n")
        document = run("check", "--machine", machine, "--json", "--volume", "X:")
        self.assertEqual(document.code, 1)
        self.assertEqual(document.errors[:2], errors)
        self.assertEqual(document.errors[-1], "orvane: the check failed")
        self.assertEqual(json.loads(document.out), {
            "schema": 1, "disks": [], "volumes": None,
            "selected": [{"volume": "X:", "canBackup": None, "reasons": [], "codes": []}]})

    def test_verbose_and_log_have_what_the_table_leaves_out(self):
        file = self.folder / "log.txt"
        result = run_described("check", "--verbose", "--log", file)
        self.assertEqual(result.code, 0)
        self.assertTrue(result.out.startswith(b"Disks\n"))
        self.assertIn("error: This not a fixed disk, type is 5", result.errors)
        self.assertTrue(any(line.startswith("trace: Entering function ") for line in result.errors))
        self.assertEqual(file.read_text(encoding="utf-8").splitlines(), result.errors)

    def test_bad_description_is_refused(self):
        self.assert_refused(run("check", "--machine", "no-such-machine.json"), 2, "no-such-machine.json",
                            "cannot be opened")


if __name__ == "__main__":
    unittest.main()
