#!/usr/bin/env -S python3 -B
"""The error messages and exit codes of orvane.exe."""

import unittest

from host import EXAMPLES, HostTest, run, run_described

SYSTEM_VOLUME = "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a03}\\"
DATA_VOLUME = "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a06}\\"
OPTICAL_VOLUME = "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-806e6f6e6963}\\"


class Volumes(HostTest):
    def test_volumes_that_can_be_backed_up_pass(self):
        result = run_described("capture", "--volume", SYSTEM_VOLUME, "--volume", DATA_VOLUME)
        self.assert_done(result)
        self.assertIn(b"<root>", result.out)

    def test_refused_volume_fails_with_its_reasons(self):
        result = run_described("capture", "--volume", SYSTEM_VOLUME, "--volume", OPTICAL_VOLUME)
        self.assert_refused(result, 1, "the capture failed")
        self.assertEqual(result.errors[:-1], [
            f"error: Volume {OPTICAL_VOLUME} (Mounted as: E:\\) cannot be backed up because:",
            "error: This not a fixed disk, type is 5",
            "error: CaptureSystemRestorePointInfo Env Exception: I cannot backup the needed information",
        ])

    def test_unknown_volume_fails(self):
        result = run_described("capture", "--volume", "X:")
        self.assert_refused(result, 1)
        self.assertIn("error: Backup cannot proceed. Failed to find any information about volume X:.",
                      result.errors)

    def test_machine_without_disks_fails(self):
        result = run("capture", "--machine", EXAMPLES / "no-disks")
        self.assert_refused(result, 1)
        self.assertIn("error: CaptureSystemRestorePointInfo Env Exception: Failed to obtain EnvInfo", result.errors)


class Descriptions(HostTest):
    def test_missing_description_is_named(self):
        self.assert_refused(run("capture", "--machine", "no-such-machine.json"), 2, "no-such-machine.json",
                            "cannot be opened")

    def test_bad_description_is_refused_with_file_path_and_reason(self):
        cases = {
            "{": ["machine.json: /: "],
            '{"disks": {}}': ["machine.json: /disks: "],
            '{"disks": [{"index": 0}]}': ["machine.json: /disks/0", "size"],
            '{"disks": [{"index": 0, "size": -1}]}': ["machine.json: /disks/0/size: "],
            '{"disc": []}': ["machine.json: /disc: "],
        }
        for text, parts in cases.items():
            with self.subTest(text=text):
                file = self.folder / "machine.json"
                file.write_text(text)
                output = self.folder / "out.xml"
                self.assert_refused(run("capture", "--machine", file, "--output", output), 2, *parts)
                self.assertFalse(output.exists())


class Log(HostTest):
    def test_verbose_shows_all_levels_beside_the_document(self):
        result = run_described("capture", "--verbose")
        self.assertEqual(result.code, 0)
        self.assertTrue(result.out.startswith(b"<?xml "))
        self.assertIn("trace: Entering CaptureSystemRestorePointInfo", result.errors)

    def test_log_file_receives_every_line(self):
        file = self.folder / "log.txt"
        result = run_described("capture", "--log", file)
        self.assert_done(result)
        lines = file.read_text(encoding="utf-8").splitlines()
        self.assertIn("trace: CaptureSystemRestorePointInfo gSaveXmlFormat=2", lines)
        # One call for the size query, one for the capture.
        self.assertEqual(lines.count("trace: Entering CaptureSystemRestorePointInfo"), 2)
        self.assertEqual(lines.count("trace: Exiting CaptureSystemRestorePointInfo"), 2)

    def test_log_file_of_a_failed_capture_has_its_errors(self):
        file = self.folder / "log.txt"
        result = run_described("capture", "--volume", "\u00dc:", "--log", file)
        self.assert_refused(result, 1)
        lines = file.read_text(encoding="utf-8").splitlines()
        line = "error: Backup cannot proceed. Failed to find any information about volume \u00dc:."
        self.assertIn(line, lines)
        self.assertIn(line, result.errors)

    def test_log_that_cannot_be_written_is_refused(self):
        self.assert_refused(run_described("capture", "--log", self.folder / "none" / "log.txt"), 2, "log.txt",
                            "cannot be written")


if __name__ == "__main__":
    unittest.main()
