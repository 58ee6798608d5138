"""Common code of the command-line tests of orvane.exe.

They run the program in ORVANE_EXE; on a build machine without Windows, with the command in ORVANE_RUN.
"""

import functools
import os
import pathlib
import re
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

import made_values

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples/machines"
PROGRAM = pathlib.Path(os.environ["ORVANE_EXE"])
VERSION = (ROOT / "VERSION").read_text().strip()
MACHINES = sorted(file.parent for file in EXAMPLES.glob("*/machine.json"))
WORKSTATION = EXAMPLES / "uefi-workstation"

# The ANSI code page of the locale set in run().
ANSI = "cp1252"


class Result:
    """The results of a run: exit code, standard output as bytes, standard error as lines (none if it was redirected
    to standard output)."""

    def __init__(self, code, out, errors):
        self.code = code
        self.out = out
        self.errors = errors.decode("utf-8").splitlines()


def build_folder():
    for folder in PROGRAM.resolve().parents:
        if (folder / "CMakeCache.txt").exists():
            return folder
    raise RuntimeError(f"{PROGRAM} lies in no build folder")


def contents(file):
    file.seek(0)
    return file.read()


def run(*arguments, program=PROGRAM, folder=ROOT, joined=False):
    """Runs the program. `joined` redirects standard error to standard output."""
    environment = dict(os.environ, LC_ALL="C.UTF-8")
    environment.setdefault("ORVANE_WINEPREFIX", str(build_folder() / "wine-prefix"))
    command = [*os.environ.get("ORVANE_RUN", "").split(), str(program), *map(str, arguments)]
    # Files instead of pipes: Wine's services outlive the program and would keep pipes open for seconds.
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as errors:
        process = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=out, stderr=out if joined else errors,
                                 cwd=folder, env=environment, check=False)
        return Result(process.returncode, contents(out), contents(errors))


def selected(machine):
    """The arguments that select the volumes of the case."""
    file = machine / "selected.txt"
    volumes = file.read_text(encoding="utf-8").split("\n") if file.exists() else []
    return [argument for volume in volumes if volume for argument in ("--volume", volume)]


def run_described(*arguments, **options):
    """Runs on the example workstation, unless the arguments name another machine."""
    machine = [] if "--machine" in arguments else ["--machine", WORKSTATION]
    return run(*arguments, *machine, **options)


@functools.cache
def capture(*arguments):
    """Runs a capture. The result is cached and shared by all tests."""
    return run_described("capture", *arguments)


def content(document):
    """The document as nested (name, text or children), without white space between elements. Replaces the values that
    differ from run to run: the addresses of GPT disks, and the GUIDs that format 2 generates for volumes, which are
    numbered in order of appearance."""
    made = {}

    def text_of(element):
        text = element.text or ""
        if element.tag == "GUID":
            return "an address" if int(text, 16) else "nothing"
        if element.tag in made_values.VOLUME_GUIDS and re.fullmatch(r"\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}", text):
            return made.setdefault(text, f"made {len(made) + 1}")
        return text

    def of(element):
        return (element.tag, [of(child) for child in element] or text_of(element))

    return of(ElementTree.fromstring(document))


class HostTest(unittest.TestCase):
    """A test with its own temporary folder."""

    maxDiff = None

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)

    def assert_done(self, result):
        self.assertEqual((result.code, result.errors), (0, []))

    def assert_refused(self, result, code, *parts):
        """Checks the exit code, that standard output is empty, and that standard error has one line of the program, which
        contains every part."""
        self.assertEqual(result.code, code, result.errors)
        self.assertEqual(result.out, b"")
        self.assertTrue(result.errors and result.errors[-1] != "", "nothing was said")
        ours = [line for line in result.errors if line.startswith("orvane: ")]
        self.assertEqual(len(ours), 1, result.errors)
        for part in parts:
            self.assertIn(part, ours[0])

    def assert_well_formed(self, document):
        check = subprocess.run(["xmllint", "--noout", "-"], input=document, capture_output=True, check=False)
        self.assertEqual((check.returncode, check.stderr), (0, b""))
