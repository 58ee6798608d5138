#!/usr/bin/env -S python3 -B
"""orvane record without a described machine, on Wine itself.

What its description does not explain are Wine's own manners: live-findings.txt has each of them, with the reason. With
another version of Wine the list differs.
"""

import json
import os
import pathlib
import re
import unittest

from host import HostTest, run

EXPECTED = pathlib.Path(__file__).with_name("live-findings.txt")

FINDING = re.compile(r"^unexplained: (?P<call>\S+?)(?: on (?P<object>.+?))?(?:, no access)?"
                     r"(?:, [\d, and]+ (?:bytes|characters))?: (?P<here>.+) here, (?P<there>.+) there$")
OUTCOME = re.compile(r"^(success|no answer|(?:\w+ )?error \w+)$")

KINDS = (
    (r"PhysicalDrive\d+$|\\\\\?\\GLOBALROOT\\Device\\Harddisk\d+(\\.*)?$", "a disk"),
    (r"(\\\\\?\\GLOBALROOT\\Device\\|\\\\\?\\Volume\{).*\\$|[A-Z]:\\", "a root"),
    (r"(\\\\\?\\GLOBALROOT\\Device\\|\\\\\?\\Volume\{).*$|[A-Z]:$", "a volume"),
    (r"Win32_\w+$|\\Device$|\\GLOBAL\?\?$", None),  # stays
)
# Wine's drive for the root of the build machine's file system, which may or may not be opened.
BUILD_MACHINE = re.compile(r"Z:\\?$")


def kind_of(name):
    for pattern, kind in KINDS:
        if re.match(pattern, name or ""):
            return kind or name
    return "a name" if name else "the machine"


def manner(match):
    """A finding about a call, without names, sizes and counts."""
    outcomes = [match[side] if OUTCOME.match(match[side]) else "a value" for side in ("here", "there")]
    outcomes = outcomes if outcomes != ["a value"] * 2 else ["a value", "another value"]
    return f"{match['call']} on {kind_of(match['object'])}: {outcomes[0]}, {outcomes[1]}"


def manners(lines):
    findings = [FINDING.match(line) for line in lines]
    return sorted({manner(match) for match in findings if match and not BUILD_MACHINE.match(match["object"] or "")})


def expected_manners():
    lines = EXPECTED.read_text(encoding="utf-8").splitlines()
    return sorted(line for line in lines if line and not line.startswith("#"))


class RecordLive(HostTest):
    def test_system_is_recorded(self):
        machine, observations = self.folder / "machine.json", self.folder / "observations.json"
        result = run("record", "--output", machine, "--observations", observations)
        self.assertIn(result.code, (0, 3), result.errors)
        lines = result.out.decode("utf-8").splitlines()
        self.assertRegex(lines[-2], r"^\d+ questions, (proved|something is unexplained)$")
        self.assertRegex(lines[-1], r" holds \d+ names and \d+ ids; --redact replaces them$")
        json.loads(observations.read_text(encoding="utf-8"))
        self.assertEqual([line for line in lines if line.startswith("unexplained: ") and not FINDING.match(line)], [])

        # The library makes of the description what it makes of the system.
        for arguments in (("capture", "--format", 3), ("dump", "disks")):
            live, described = run(*arguments), run(*arguments, "--machine", machine)
            self.assertEqual(described.code, live.code, described.errors)
            self.assertEqual(self.error_lines(described), self.error_lines(live))

        # The answers can be proved again without the system, with the same findings.
        again = run("prove", observations).out.decode("utf-8").splitlines()
        self.assertEqual(manners(again), manners(lines))

        if os.environ.get("ORVANE_RUN"):
            self.assertEqual(manners(lines), expected_manners())

    @staticmethod
    def error_lines(result):
        return [line for line in result.errors if line.startswith("error: ")]


if __name__ == "__main__":
    unittest.main()
