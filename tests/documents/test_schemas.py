#!/usr/bin/env -S python3 -B
"""Every JSON of the commands agrees with its schema in docs/schema."""

import json
import unittest

import jsonschema
from program import DOCUMENTS, ROOT, run

SCHEMAS = ROOT / "docs/schema"


def validator(name):
    schema = json.loads((SCHEMAS / name).read_text(encoding="utf-8"))
    jsonschema.Draft7Validator.check_schema(schema)
    return jsonschema.Draft7Validator(schema)


class Schemas(unittest.TestCase):
    def assert_valid(self, name, document):
        errors = [f"{list(error.absolute_path)}: {error.message[:200]}" for error in validator(name).iter_errors(document)]
        self.assertEqual(errors, [])

    def test_show(self):
        _, out, _ = run("show", "--json", *DOCUMENTS, "no-such-file", ROOT / "README.md")
        self.assert_valid("show.schema.json", json.loads(out))

    def test_lines_of_show(self):
        _, out, _ = run("show", "--json", "--lines", *DOCUMENTS, "no-such-file", ROOT / "README.md")
        lines = out.decode("utf-8").splitlines()
        self.assertEqual(len(lines), len(DOCUMENTS) + 2)
        for line in lines:
            self.assertTrue(line.startswith('{"schema":1,'))
            self.assert_valid("show.schema.json", json.loads(line))

    def test_verify(self):
        _, out, _ = run("verify", "--json", *DOCUMENTS, "no-such-file", ROOT / "README.md")
        self.assert_valid("verify.schema.json", json.loads(out))

    def test_check(self):
        for file in sorted(ROOT.glob("examples/machines/*/expected/check.json")):
            with self.subTest(file=file):
                self.assert_valid("check.schema.json", json.loads(file.read_text(encoding="utf-8")))

    def test_schemas_refuse_other_things(self):
        _, out, _ = run("show", "--json", DOCUMENTS[0])
        for change in ({"schema": 2}, {"documents": [{}]}, {"more": 1}):
            self.assertFalse(validator("show.schema.json").is_valid({**json.loads(out), **change}), change)


if __name__ == "__main__":
    unittest.main()
