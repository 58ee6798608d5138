#!/usr/bin/env -S python3 -B
"""The dumps as orvane.exe prints them."""

import unittest

from host import EXAMPLES, HostTest, run, run_described

KINDS = ("wmi", "disks", "volumes", "firmware")
LEVELS = {"1": "information", "3": "error"}


def expected(machine, kind):
    """The expected messages of a dump, without trace lines, as (level, text). A line feed at the end of a message is
    removed."""
    file = EXAMPLES / machine / "expected" / f"{kind}.txt"
    for line in file.read_text(encoding="utf-8").splitlines():
        level, text = line.split(" ", 1)
        yield LEVELS[level], text.removesuffix("\\n")


def lines_of(machine, kind, level):
    return [text for of, text in expected(machine, kind) if of == level]


class Dump(HostTest):
    def assert_lines(self, out, lines):
        self.assertEqual(out.decode("utf-8"), "".join(line + "\n" for line in lines))

    def test_lines_go_to_standard_output_and_errors_to_standard_error(self):
        for kind in KINDS:
            with self.subTest(kind=kind):
                result = run("dump", kind, "--machine", EXAMPLES / "uefi-workstation")
                self.assertEqual(result.code, 0)
                self.assert_lines(result.out, lines_of("uefi-workstation", kind, "information"))
                self.assertEqual(result.errors,
                                 ["error: " + line for line in lines_of("uefi-workstation", kind, "error")])

    def test_both_come_in_the_order_of_the_dump(self):
        result = run("dump", "volumes", "--machine", EXAMPLES / "uefi-workstation", joined=True)
        self.assertEqual(result.code, 0)
        marks = {"information": "", "error": "error: "}
        self.assert_lines(result.out,
                          [marks[level] + text for level, text in expected("uefi-workstation", "volumes")])

    def test_machine_without_disks_has_an_empty_list(self):
        result = run("dump", "disks", "--machine", EXAMPLES / "no-disks")
        self.assertEqual(result.code, 0)
        self.assertEqual(result.out, b"\n[Device Information]\nNumber of Disks: 0\n")
        self.assertEqual(result.errors, ["error: " + line for line in lines_of("no-disks", "disks", "error")])

    def test_volumes_that_cannot_be_collected_fail(self):
        file = self.folder / "out.txt"
        file.write_text("of an earlier dump")
        result = run("dump", "volumes", "--machine", EXAMPLES / "no-disks", "--output", file, "--force")
        self.assert_refused(result, 1, "the dump failed")
        self.assertIn("error: Failed to obtain environment information", result.errors)
        self.assertEqual(file.read_text(), "of an earlier dump")

    def test_output_goes_to_the_file(self):
        file = self.folder / "\u00fcbersicht.txt"
        result = run_described("dump", "firmware", "--output", file)
        self.assert_done(result)
        self.assertEqual(result.out, b"")
        self.assert_lines(file.read_bytes(), lines_of("uefi-workstation", "firmware", "information"))

    def test_existing_file_is_replaced_with_force_only(self):
        file = self.folder / "out.txt"
        file.write_text("of an earlier dump")
        self.assert_refused(run_described("dump", "firmware", "--output", file), 1, "out.txt", "--force")
        self.assertEqual(file.read_text(), "of an earlier dump")
        self.assert_done(run_described("dump", "firmware", "--output", file, "--force"))
        self.assert_lines(file.read_bytes(), lines_of("uefi-workstation", "firmware", "information"))
        self.assertEqual(list(self.folder.iterdir()), [file])

    def test_output_that_cannot_be_written_is_told(self):
        self.assert_refused(run_described("dump", "firmware", "--output", self.folder / "none" / "out.txt"), 1,
                            "out.txt", "cannot be written")

    def test_log_and_verbose_have_all_levels(self):
        file = self.folder / "log.txt"
        result = run_described("dump", "firmware", "--verbose", "--log", file)
        self.assertEqual(result.code, 0)
        self.assert_lines(result.out, lines_of("uefi-workstation", "firmware", "information"))
        self.assertEqual(file.read_text(encoding="utf-8").splitlines(), result.errors)
        self.assertIn("information: Firmware type: UEFI", result.errors)
        self.assertTrue(any(line.startswith("trace: Entering function FirmwareDumpInfo ") for line in result.errors),
                        result.errors)


if __name__ == "__main__":
    unittest.main()
