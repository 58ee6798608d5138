#!/usr/bin/env -S python3 -B
"""The manual page orvane(1): well-formed for man, with every command and every option, the same each time it is made."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

from program import ROOT, run

SHIPPED = os.environ["ORVANE_NATIVE"]


def help_of(*words):
    code, out, errors = run(*words, "--help")
    assert (code, errors) == (0, []), errors
    return out.decode()


def commands():
    listed = help_of().split("\nSubcommands:\n")[1].split("\n\n")[0]
    return re.findall(r"^  (\w+) ", listed, re.M)


class ManualPage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            pages = [pathlib.Path(folder) / name for name in ("first.1", "second.1")]
            for page in pages:
                subprocess.run([ROOT / "scripts/man", SHIPPED, page], check=True)
            cls.source, cls.again = (page.read_bytes() for page in pages)
            environment = os.environ | {"MANWIDTH": "80", "LC_ALL": "C.UTF-8", "MANROFFOPT": ""}
            man = subprocess.run(["man", "--warnings", "--no-hyphenation", "--no-justification", pages[0]],
                                 capture_output=True, text=True, check=True, env=environment)
            cls.shown, cls.warnings = man.stdout, man.stderr

    def test_man_finds_nothing_wrong(self):
        self.assertEqual(self.warnings, "")
        self.assertTrue(self.shown.startswith("ORVANE(1)"))

    def test_the_same_program_gives_the_same_page(self):
        self.assertEqual(self.source, self.again)

    def test_every_command_with_its_options(self):
        self.assertEqual(set(commands()), {"show", "verify", "diff", "report", "plan"})
        sections = dict(re.findall(r"^(ORVANE [A-Z]+)$(.*?)(?=^[A-Z]|\Z)", self.shown, re.M | re.S))
        for command in commands():
            section = sections["ORVANE " + command.upper()]
            self.assertIn(f"orvane {command} ", section)
            for option in re.findall(r"^  (--[a-z-]+)", help_of(command), re.M):
                self.assertRegex(section, rf"(?m)^ +{option}\b")
            for example in re.findall(r"^  (orvane .*)", help_of(command), re.M):
                self.assertIn(f"       {example}\n", section)


if __name__ == "__main__":
    unittest.main()
