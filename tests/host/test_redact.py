#!/usr/bin/env -S python3 -B
"""orvane record --redact and --map."""

import json
import os
import pathlib
import stat
import unittest

from host import EXAMPLES, HostTest, run

LAPTOP = EXAMPLES / "uefi-workstation"


class Redact(HostTest):
    def setUp(self):
        super().setUp()
        self.machine = self.folder / "machine.json"
        self.observations = self.folder / "observations.json"
        self.map = self.folder / "map.json"

    def record(self, *arguments, machine=LAPTOP):
        return run("record", "--output", self.machine, "--machine", machine, *arguments)

    def files(self):
        return sorted(path.name for path in self.folder.iterdir())

    def test_redacted_recording_is_proved_and_marked(self):
        result = self.record("--redact", "--observations", self.observations, "--map", self.map)
        self.assertEqual((result.code, result.errors), (0, []))
        self.assertRegex(result.out.decode("utf-8"), r"^\d+ questions, proved\n$")
        self.assertEqual(self.files(), ["machine.json", "map.json", "observations.json"])
        self.assertEqual(json.loads(self.machine.read_text(encoding="utf-8"))["recording"], "redacted")
        self.assertIs(json.loads(self.observations.read_text(encoding="utf-8"))["redacted"], True)
        proved = run("prove", self.observations)
        self.assertEqual((proved.code, proved.errors), (0, []))

    def test_no_replaced_value_is_left(self):
        self.record("--redact", "--no-proof", "--map", self.map, "--observations", self.observations)
        replaced = json.loads(self.map.read_text(encoding="utf-8"))
        answers = json.loads(self.observations.read_text(encoding="utf-8"))["answers"]
        written = (self.machine.read_text(encoding="utf-8") + json.dumps(answers, ensure_ascii=False)).lower()
        for pair in replaced["texts"]:
            if len(pair["from"]) >= 10 and " " not in pair["from"]:
                self.assertNotIn(json.dumps(pair["from"]).strip('"').lower(), written)
        self.assertTrue(replaced["guids"])
        for pair in replaced["guids"]:
            self.assertNotIn(pair["from"].lower(), written)

    def test_findings_hold_no_replaced_value(self):
        # The recording does not refuse writing as the machine does, so that every line of its format 1 is a finding.
        result = self.record("--redact", "--map", self.map, machine=EXAMPLES / "guarded-disks")
        self.assertEqual(result.code, 3, result.errors)
        printed = result.out.decode("utf-8").lower()
        self.assertIn("unexplained: format 1, only there: ", printed)
        replaced = json.loads(self.map.read_text(encoding="utf-8"))
        names = [pair for pair in replaced["texts"] if len(pair["from"]) >= 10 and " " not in pair["from"]]
        self.assertTrue(any(pair["to"].lower() in printed for pair in names))
        for pair in names:
            self.assertNotIn(pair["from"].lower(), printed)
        for pair in replaced["guids"]:
            self.assertNotIn(pair["from"].strip("{}").lower(), printed)

    def test_same_machine_gives_the_same_file(self):
        self.record("--redact", "--no-proof")
        first = self.machine.read_bytes()
        self.record("--redact", "--no-proof", "--force")
        self.assertEqual(self.machine.read_bytes(), first)

    def test_map_is_readable_by_its_owner_alone(self):
        self.record("--redact", "--no-proof", "--map", self.map)
        # Wine gives the group of the owner what it gives the owner.
        self.assertEqual(stat.S_IMODE(os.stat(self.map).st_mode) & (stat.S_IRWXO | stat.S_IWGRP), 0)
        self.assertNotEqual(stat.S_IMODE(os.stat(self.machine).st_mode) & stat.S_IROTH, 0, "others are not kept out")

    def test_map_that_cannot_be_written_leaves_nothing(self):
        result = self.record("--redact", "--no-proof", "--map", pathlib.Path("/proc/map.json"))
        self.assertEqual(result.code, 1)
        self.assertEqual(self.files(), [])

    def test_map_without_redaction_is_bad_usage(self):
        self.assert_refused(self.record("--map", self.map), 2, "--map", "--redact")
        self.assert_refused(self.record("--redact", "--map", self.machine), 2, "same file")

    def test_without_redaction_the_last_line_counts(self):
        result = self.record("--no-proof", "--observations", self.observations)
        self.record("--redact", "--no-proof", "--force", "--map", self.map)
        replaced = json.loads(self.map.read_text(encoding="utf-8"))
        ids = len(replaced["guids"]) + len(replaced["ids"])
        self.assertRegex(result.out.decode("utf-8").splitlines()[-1],
                         rf"machine\.json holds {len(replaced['texts'])} names and {ids} ids; --redact replaces them$")
        self.assertEqual(json.loads(self.machine.read_text(encoding="utf-8"))["recording"], "redacted")

    def planted(self, label, model):
        machine = self.folder / "planted.json"
        machine.write_text(json.dumps({
            "disks": [{"index": 0, "size": "1 GiB", "signature": 7, "wmi": {"Model": model},
                       "partitions": [{"offset": "1 MiB", "size": "100 MiB", "type": "ntfs"}]}],
            "volumes": [{"partition": {"disk": 0, "number": 1}, "mountPoints": ["C:\\"], "label": label}],
        }), encoding="utf-8")
        return self.record("--redact", "--no-proof", "--observations", self.observations, machine=machine)

    def test_private_value_inside_another_refuses(self):
        result = self.planted("Wessling", "ACME Wessling-Disk 100")
        self.assertEqual(result.code, 1)
        self.assertIn('"Wessling"', "\n".join(result.errors))
        self.assertIn("in /disks/0/wmi/", "\n".join(result.errors))
        self.assertEqual(self.files(), ["planted.json"])

    def test_everyday_and_short_labels_do_not_refuse(self):
        for label in ("OS", "Windows", "Archive", "Disk", "WORKSTATION", "Data 01"):
            with self.subTest(label):
                result = self.planted(label, "ACME OS Windows Archive Disk 100")
                self.assertEqual(result.code, 3, result.errors)
                written = json.loads(self.machine.read_text(encoding="utf-8"))
                self.assertNotEqual(written["volumes"][0]["label"], label)
                self.machine.unlink()
                self.observations.unlink()


if __name__ == "__main__":
    unittest.main()
