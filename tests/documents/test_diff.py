#!/usr/bin/env -S python3 -B
"""orvane diff: its arguments, exit codes and JSON. Runs the native program in ORVANE."""

import json
import os
import pathlib
import subprocess
import tempfile
import unittest

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXPECTED = ROOT / "examples/machines/bios-laptop/expected"
LAPTOP = EXPECTED / "format2.xml"
DOCUMENTS = sorted(ROOT.glob("examples/machines/*/expected/format?.xml"))


def run(*arguments, data=b""):
    """The exit code, standard output, and the lines of standard error."""
    process = subprocess.run([os.environ["ORVANE"], "diff", *map(str, arguments)], input=data, capture_output=True,
                             check=False)
    return process.returncode, process.stdout.decode("utf-8"), process.stderr.decode("utf-8").splitlines()


class Diff(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)

    def changed(self, old, new):
        """The laptop's document with another text."""
        text = LAPTOP.read_text(encoding="utf-8")
        self.assertIn(old, text)
        file = self.folder / "changed.xml"
        file.write_text(text.replace(old, new), encoding="utf-8")
        return file

    def assert_trouble(self, result, *parts):
        code, out, errors = result
        self.assertEqual((code, out, len(errors)), (2, "", 1), errors)
        for part in parts:
            self.assertIn(part, errors[0])

    def test_the_same_document(self):
        self.assertEqual(run(LAPTOP, LAPTOP), (0, "", []))
        self.assertEqual(run("--all", LAPTOP, EXPECTED / "format3.xml"), (0, "", []))

    def test_a_change_is_a_sentence(self):
        self.assertEqual(run(LAPTOP, self.changed("<Label>Pictures<", "<Label>Photos<")),
                         (1, 'Volume F:\\: relabelled from "Pictures" to "Photos"\n', []))

    def test_used_space_counts_with_all_only(self):
        file = self.changed("<m_FileSystemUsedSpace>32501760<", "<m_FileSystemUsedSpace>32505856<")
        self.assertEqual(run(LAPTOP, file), (0, "", []))
        code, out, errors = run("--all", LAPTOP, file)
        self.assertEqual((code, errors), (1, []))
        # Both are 31.0 MiB.
        self.assertTrue(out.endswith(": used space changed from 32501760 bytes to 32505856 bytes\n"), out)

    def test_texts_cannot_control_a_terminal(self):
        file = self.changed("<Label>Pictures<", "<Label>a\u202eb\u0085c<")
        code, out, _ = run(LAPTOP, file)
        self.assertEqual(code, 1)
        self.assertIn("a\\u202Eb\\u0085c", out)
        code, out, _ = run("--json", LAPTOP, file)
        self.assertTrue(out.isascii(), out)
        self.assertEqual(json.loads(out)["changes"][0]["new"], {"label": "a\u202eb\u0085c"})

    def test_documents_from_standard_input_and_from_a_list(self):
        data = LAPTOP.read_bytes()
        self.assertEqual(run(LAPTOP, "-", data=data), (0, "", []))
        self.assertEqual(run("-", LAPTOP, data=data), (0, "", []))
        names = self.folder / "names.txt"
        names.write_text(f"{LAPTOP}\n{LAPTOP}\n", encoding="utf-8")
        self.assertEqual(run("--from", names), (0, "", []))
        self.assertEqual(run("--from", "-", data=f"{LAPTOP}\n{LAPTOP}\n".encode()), (0, "", []))

    def test_trouble(self):
        self.assert_trouble(run(LAPTOP), "two documents", "1 is given")
        self.assert_trouble(run(LAPTOP, LAPTOP, LAPTOP), "two documents", "3 are given")
        self.assert_trouble(run("-", "-"), "standard input")
        self.assert_trouble(run(LAPTOP, "no-such-file"), "no-such-file", "cannot be opened")
        self.assert_trouble(run(ROOT / "README.md", LAPTOP), "README.md")
        self.assert_trouble(run("--json", ROOT / "README.md", LAPTOP), "README.md")

    def test_both_documents_are_named_if_neither_can_be_read(self):
        code, out, errors = run("no-such-file", ROOT / "README.md")
        self.assertEqual((code, out, len(errors)), (2, "", 2))
        self.assertIn("no-such-file", errors[0])
        self.assertIn("README.md", errors[1])

    def test_a_program_without_captures_has_no_live(self):
        code, _, errors = run("--live", LAPTOP)
        self.assertEqual(code, 2)
        self.assertIn("--live", errors[0])

    def test_json_agrees_with_its_schema(self):
        schema = json.loads((ROOT / "docs/schema/diff.schema.json").read_text(encoding="utf-8"))
        jsonschema.Draft7Validator.check_schema(schema)
        validator = jsonschema.Draft7Validator(schema)
        document = None
        for new in DOCUMENTS:
            code, out, _ = run("--json", "--all", LAPTOP, new)
            document = json.loads(out)
            errors = [f"{list(error.absolute_path)}: {error.message[:200]}" for error in validator.iter_errors(document)]
            self.assertEqual(errors, [], new)
            self.assertEqual(code, 0 if document["same"] else 1)
        for change in ({"schema": 2}, {"same": not document["same"]}, {"changes": [{}]}, {"more": 1}):
            self.assertFalse(validator.is_valid({**document, **change}), change)


if __name__ == "__main__":
    unittest.main()
