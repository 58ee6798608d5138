#!/usr/bin/env -S python3 -B
"""The example agent in C: the program on this system, and its main() on described machines."""

import os
import pathlib
import sys
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "host"))
from host import EXAMPLES, HostTest, content, run

AGENT = os.environ["ORVANE_AGENT"]
DESCRIBED_AGENT = os.environ["ORVANE_DESCRIBED_AGENT"]

SYSTEM_VOLUME = "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a03}\\"
DATA_VOLUME = "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-1e6f0c2d9a06}\\"
OPTICAL_VOLUME = "\\\\?\\Volume{8d3b1c7e-52a9-4f06-bb10-806e6f6e6963}\\"


def on_workstation(*volumes):
    return run(EXAMPLES / "uefi-workstation", *volumes, program=DESCRIBED_AGENT)


def assert_outcome_on_this_system(test, result):
    """Accepts a document or the library's errors, because Wine may lack functions that a capture needs."""
    if result.code == 0:
        test.assertTrue(result.out.startswith(b"<root>"))
        test.assert_well_formed(result.out)
    else:
        test.assertEqual((result.code, result.out), (1, b""), result.errors)
        test.assertTrue(all(line.startswith("error: ") for line in result.errors), result.errors)
        test.assertTrue(result.errors[-1].startswith("error: CaptureSystemRestorePointInfo "), result.errors)


class Agent(HostTest):
    def test_described_machine_is_written_to_standard_output(self):
        result = on_workstation()
        self.assert_done(result)
        expected = (EXAMPLES / "uefi-workstation/expected/format2.xml").read_bytes()
        self.assertEqual(content(result.out), content(expected.replace(b"generated ", b"made ")))
        self.assertTrue(result.out.startswith(b"<root>"))
        self.assertTrue(result.out.endswith(b"</root>"))

    def test_volumes_that_can_be_backed_up_change_nothing(self):
        result = on_workstation(SYSTEM_VOLUME, DATA_VOLUME)
        self.assert_done(result)
        self.assertIn(b"<BMREnvInfo>", result.out)

    def test_refused_volume_fails_with_its_reasons(self):
        result = on_workstation(SYSTEM_VOLUME, OPTICAL_VOLUME)
        self.assertEqual((result.code, result.out), (1, b""))
        self.assertEqual(result.errors, [
            f"error: Volume {OPTICAL_VOLUME} (Mounted as: E:\\) cannot be backed up because:",
            "error: This not a fixed disk, type is 5",
            "error: CaptureSystemRestorePointInfo Env Exception: I cannot backup the needed information",
        ])

    def test_empty_volume_is_refused(self):
        result = on_workstation(SYSTEM_VOLUME, "")
        self.assertEqual((result.code, result.out), (1, b""))
        self.assertEqual(result.errors, ["error: the volumes cannot be selected"])

    def test_this_system_is_captured_or_the_reason_told(self):
        assert_outcome_on_this_system(self, run(program=AGENT))


if __name__ == "__main__":
    unittest.main()
