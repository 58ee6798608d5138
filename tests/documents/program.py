"""Common code of the tests that run the native orvane, the program in ORVANE."""

import json
import os
import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
CASES = sorted(folder for folder in (ROOT / "examples/machines").iterdir() if (folder / "expected").is_dir())
DOCUMENTS = sorted(ROOT.glob("examples/machines/*/expected/format?.xml"))


def run(*arguments, data=b""):
    """The exit code, standard output as bytes, and the lines of standard error."""
    process = subprocess.run([os.environ["ORVANE"], *map(str, arguments)], input=data, capture_output=True, check=False)
    return process.returncode, process.stdout, process.stderr.decode("utf-8").splitlines()


def show(file):
    """The object of a document."""
    code, out, errors = run("show", "--json", file)
    assert (code, errors) == (0, []), errors
    return json.loads(out)["documents"][0]
