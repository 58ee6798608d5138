#!/usr/bin/env -S python3 -B
"""orvane report: its exit codes, and that it replaces a file only with --force, whole or not at all."""

import os
import pathlib
import subprocess
import tempfile
import unittest

from program import ROOT, run

LAPTOP = ROOT / "examples/machines/bios-laptop/expected/format2.xml"
VERDICTS = LAPTOP.with_name("check.json")


class ReportFiles(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        self.page = self.folder / "page.html"

    def report(self, document, *options, data=b""):
        code, out, errors = run("report", document, "--output", self.page, *options, data=data)
        self.assertEqual(out, b"")
        return code, errors

    def refuse(self, document, *options, reason, data=b""):
        """Nothing is written, and nothing that is there is changed."""
        before = {file: file.read_bytes() for file in self.folder.iterdir()}
        code, errors = self.report(document, *options, data=data)
        self.assertEqual((code, len(errors)), (2, 1), errors)
        self.assertIn(reason, errors[0])
        self.assertEqual({file: file.read_bytes() for file in self.folder.iterdir()}, before)

    def test_a_page_is_written(self):
        self.assertEqual(self.report(LAPTOP), (0, []))
        page = self.page.read_text(encoding="utf-8")
        self.assertTrue(page.startswith("<!DOCTYPE html>") and page.endswith("</html>\n"))
        self.assertIn("LT-ANNA", page)
        self.assertEqual([file.name for file in self.folder.iterdir()], ["page.html"])

    def test_a_document_with_errors_has_a_page_too(self):
        # Format 3 leaves the partitions of the GPT disk with the volumes out.
        document = ROOT / "examples/machines/uefi-workstation/expected/format3.xml"
        self.assertEqual(run("verify", document)[0], 1)
        self.assertEqual(self.report(document), (0, []))
        self.assertIn("D0", self.page.read_text(encoding="utf-8"))

    def test_a_file_is_replaced_with_force_only(self):
        self.page.write_text("kept")
        self.refuse(LAPTOP, reason="page.html")
        self.assertEqual(self.report(LAPTOP, "--force"), (0, []))
        replaced = self.page.read_bytes()
        self.page.unlink()
        self.assertEqual(self.report(LAPTOP), (0, []))
        self.assertEqual(self.page.read_bytes(), replaced)

    def test_a_file_that_appears_in_between_is_kept(self):
        command = [os.environ["ORVANE"], "report", LAPTOP, "--output", self.page]
        for _ in range(5):
            started = [subprocess.Popen(command, stderr=subprocess.DEVNULL) for _ in range(6)]
            self.assertEqual(sorted(process.wait() for process in started), [0, 2, 2, 2, 2, 2])
            self.assertEqual(list(self.folder.iterdir()), [self.page])
            self.page.unlink()

    def test_standard_input_is_a_document(self):
        self.assertEqual(self.report("-", data=LAPTOP.read_bytes()), (0, []))
        self.assertIn("standard input", self.page.read_text(encoding="utf-8"))
        self.refuse("-", "--force", data=LAPTOP.read_bytes()[:5000], reason="standard input: line ")

    def test_trouble_leaves_the_page_as_it_was(self):
        self.page.write_text("kept")
        self.refuse(self.folder / "none.xml", "--force", reason="cannot be opened")
        self.refuse(LAPTOP, "--force", "--verdicts", self.folder / "none.json", reason="cannot be opened")
        wrong = self.folder / "wrong.json"
        for text in ("{", "[]", '{"schema": 2}', '{"schema": 1, "disks": 1e999}'):
            wrong.write_text(text)
            self.refuse(LAPTOP, "--force", "--verdicts", wrong, reason="wrong.json: ")

    def test_an_output_that_cannot_be_written(self):
        self.page = self.folder / "no-folder/page.html"
        self.refuse(LAPTOP, reason="page.html")
        self.page = self.folder / "folder"
        self.page.mkdir()
        code, errors = self.report(LAPTOP, "--force")
        self.assertEqual((code, len(errors)), (2, 1), errors)
        self.assertEqual(list(self.page.iterdir()), [])

    def test_arguments_that_cannot_be_used(self):
        self.assertEqual(run("report", LAPTOP)[0], 2)
        self.assertEqual(run("report", "--output", self.page)[0], 2)
        self.assertEqual(run("report", LAPTOP, LAPTOP, "--output", self.page)[0], 2)
        self.assertFalse(self.page.exists())

    def test_verdicts_are_on_the_page(self):
        self.assertEqual(self.report(LAPTOP, "--verdicts", VERDICTS), (0, []))
        # What check.json says of the optical drive.
        self.assertIn("This not a fixed disk, type is 5", self.page.read_text(encoding="utf-8"))


if __name__ == "__main__":
    unittest.main()
