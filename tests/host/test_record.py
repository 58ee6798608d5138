#!/usr/bin/env -S python3 -B
"""orvane record and orvane prove."""

import json
import unittest

from host import EXAMPLES, HostTest, run


class Record(HostTest):
    def setUp(self):
        super().setUp()
        self.machine = self.folder / "machine.json"
        self.observations = self.folder / "observations.json"

    def record(self, *arguments, machine=EXAMPLES / "uefi-workstation"):
        return run("record", "--output", self.machine, "--machine", machine, *arguments)

    def test_described_machine_is_recorded_and_proved(self):
        result = self.record("--observations", self.observations)
        self.assertEqual((result.code, result.errors), (0, []))
        self.assertRegex(result.out.decode("utf-8"), r"^\d+ questions, proved\n.*\n$")
        original = run("capture", "--machine", EXAMPLES / "uefi-workstation", "--format", 3)
        recorded = run("capture", "--machine", self.machine, "--format", 3)
        self.assertEqual(recorded.code, 0, recorded.errors)
        self.assertEqual(len(recorded.out.splitlines()), len(original.out.splitlines()))
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["machine.json", "observations.json"])

    def test_without_proof_it_is_unproved(self):
        result = self.record("--no-proof")
        self.assertEqual((result.code, result.errors), (3, []))
        self.assertRegex(result.out.decode("utf-8"), r"^\d+ questions, all explained; the library was not run\n.*\n$")

    def test_observations_prove_without_the_machine(self):
        self.record("--no-proof", "--observations", self.observations)
        result = run("prove", self.observations)
        self.assertEqual((result.code, result.errors), (0, []))
        self.assertRegex(result.out.decode("utf-8"), r"^\d+ questions, all explained\n$")

    def test_answer_that_no_description_explains_is_named(self):
        self.record("--no-proof", "--observations", self.observations)
        observed = json.loads(self.observations.read_text(encoding="utf-8"))
        changed = next(answer for answer in observed["answers"]
                       if answer["call"].endswith("GET_LENGTH_INFO") and answer.get("size") == 4)
        self.assertEqual(changed["error"], 122)
        changed["error"] = 24
        self.observations.write_text(json.dumps(observed), encoding="utf-8")
        result = run("prove", self.observations)
        self.assertEqual((result.code, result.errors), (3, []))
        self.assertEqual(result.out.decode("utf-8").splitlines()[0],
                         "unexplained: IOCTL_DISK_GET_LENGTH_INFO on PhysicalDrive0, 4 bytes: error 24 here, "
                         "error 122 there")

    def test_existing_file_is_kept_unless_forced(self):
        self.machine.write_text("mine", encoding="utf-8")
        result = self.record("--no-proof")
        self.assert_refused(result, 1, "machine.json", "--force")
        self.assertEqual(self.machine.read_text(encoding="utf-8"), "mine")
        self.assertEqual(self.record("--no-proof", "--force").code, 3)
        json.loads(self.machine.read_text(encoding="utf-8"))

    def test_folder_that_does_not_exist_leaves_nothing(self):
        result = run("record", "--no-proof", "--output", self.folder / "none" / "machine.json",
                     "--machine", EXAMPLES / "no-disks")
        self.assertEqual(result.code, 1, result.errors)
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_one_file_for_both_is_bad_usage(self):
        self.assert_refused(self.record("--observations", self.machine), 2, "same file")
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_machine_that_cannot_be_read_is_bad_usage(self):
        self.assert_refused(self.record(machine=self.folder / "none.json"), 2, "none.json")
        self.assert_refused(run("prove", self.folder / "none.json"), 2, "none.json")


if __name__ == "__main__":
    unittest.main()
