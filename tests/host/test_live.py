#!/usr/bin/env -S python3 -B
"""orvane.exe without a described machine, on Wine itself. Wine lacks some of the queried functions."""

import functools
import json
import unittest

from host import HostTest, run

HINT = "orvane: Wine has no disks of its own to describe; --machine FILE describes another machine"


@functools.cache
def live(*arguments):
    return run(*arguments)


class Live(HostTest):
    def assert_clean_end(self, result):
        """Checks that the run printed output, or failed with the library's errors and a hint."""
        if result.code == 0:
            self.assertNotEqual(result.out, b"")
            self.assertNotIn(HINT, result.errors)
        else:
            self.assertEqual(result.code, 1, result.errors)
            self.assertTrue(any(line.startswith("error: ") for line in result.errors), result.errors)
            self.assertEqual(result.errors[-1], HINT)
            self.assertRegex(result.errors[-2], "^orvane: the (capture|dump|check) failed$")

    def lines(self, kind):
        return live("dump", kind).out.decode("utf-8").splitlines()

    def test_every_command_ends_cleanly(self):
        for arguments in (("dump", "wmi"), ("dump", "disks"), ("dump", "volumes"), ("dump", "firmware"), ("check",),
                          ("check", "--json"), ("capture",), ("capture", "--format", 3)):
            with self.subTest(arguments=arguments):
                self.assert_clean_end(live(*arguments))

    def test_processor_is_the_one_of_this_machine(self):
        result, lines = live("dump", "wmi"), self.lines("wmi")
        if "error: WMIDumpInfo Processor Info Failed" in result.errors:
            self.assertNotIn("[Processor Information]", lines)
            return
        start = lines.index("[Processor Information]")
        for line, pattern in zip(lines[start + 1:start + 9], (
                r"^Architecture: \d+$", r"^CurrentClockSpeed: \d+$", r"^Family: \d+$", r"^Manufacturer: \S+",
                r"^MaxClockSpeed: \d+$", r"^ProcessorId: \d+$", r"^ProcessorType: 3$", r"^UniqueId: 0$"),
                strict=True):
            self.assertRegex(line, pattern)
        # 9 is x64, the only architecture of the library.
        self.assertEqual(lines[start + 1], "Architecture: 9")

    def test_sections_are_told_or_their_failure(self):
        result, lines = live("dump", "wmi"), self.lines("wmi")
        for heading, failure in (("Processor", "Processor Info"), ("Boot Configuration", "Boot Configuration Info"),
                                 ("Computer System", "System Info"),
                                 ("Operating System", "Operating System Info")):
            with self.subTest(section=heading):
                told = f"[{heading} Information]" in lines
                self.assertNotEqual(told, f"error: WMIDumpInfo {failure} Failed" in result.errors)

    def test_firmware_names_the_version_and_a_type(self):
        lines = self.lines("firmware")
        self.assertEqual(lines[:2], ["Capture DLL Version: 9.50.6732", "==========Firmware Detection=========="])
        if live("dump", "firmware").code == 0:
            self.assertRegex(lines[2], "^Firmware type: (BIOS|UEFI|Unknown)$")

    def test_check_judges_the_disks_of_the_dump(self):
        lines = self.lines("disks")
        indexes = [int(line.removeprefix("Disk id: ")) for line in lines if line.startswith("Disk id: ")]
        self.assertIn(f"Number of Disks: {len(indexes)}", lines)
        disks = json.loads(live("check", "--json").out.decode("utf-8"))["disks"]
        self.assertEqual([disk["index"] for disk in disks], indexes)
        for disk in disks:
            self.assertEqual(disk["canBackup"], disk["reasons"] == [], disk)

    def test_captured_document_is_well_formed(self):
        for result in (live("capture"), live("capture", "--format", 3)):
            if result.code == 0:
                self.assert_well_formed(result.out)
            else:
                self.assertEqual(result.out, b"")


if __name__ == "__main__":
    unittest.main()
