#!/usr/bin/env -S python3 -B
"""The XML schemas accept every document, and reject invalid ones."""

import copy
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "host"))
from host import EXAMPLES, MACHINES, ROOT, HostTest, capture

FLAT = ROOT / "docs/schema/environment-flat.xsd"
MODEL = ROOT / "docs/schema/environment-model.xsd"

# Elements whose count the schemas cannot require.
NUMBERED = re.compile(r"(child|x|y|volume|extent|Drive|Disk|Partition|Extent|MountPoint)[0-9]+")
# Optional elements. A disk without its GUID has the same elements as one without a known table.
OPTIONAL = {"VolumeId", "VolumeGUID", "DeviceName", "VolumePartitionSize", "NumberOfMountPoints", "Volume", "GUID"}
# Text elements whose value may look like a number.
TEXTS = {"TotalPhysicalMemory", "CountryCode", "Locale", "SerialNumber", "VolumeLabel", "GUID"}

ODD_MACHINE = ROOT / "tests/package/odd-machine.json"


def validate(schema, documents):
    """Returns {file: whether it is valid}, from one run of xmllint."""
    files = [str(file) for file in documents]
    check = subprocess.run(["xmllint", "--noout", "--schema", str(schema), *files], capture_output=True, text=True,
                           check=False)
    verdicts = dict(re.findall(r"^(.*) (validates|fails to validate)$", check.stderr, re.M))
    if set(verdicts) != set(files):
        raise RuntimeError(check.stderr)
    return {pathlib.Path(file): verdict == "validates" for file, verdict in verdicts.items()}


class Mutants:
    """Copies of a document, each with the same fault in a different place."""

    def __init__(self, document, folder):
        self.root = ElementTree.fromstring(document)
        self.folder = folder
        self.places = {}

    def write(self, place, change):
        """Writes a copy of the document to which `change` was applied. `place` starts with the element's index."""
        mutant = copy.deepcopy(self.root)
        change(list(mutant.iter())[place[0]])
        file = self.folder / f"{len(self.places)}.xml"
        ElementTree.ElementTree(mutant).write(file)
        self.places[file] = place[1:]

    def accepted_by(self, schema):
        assert self.places, "no place for the fault"
        return [self.places[file] for file, accepted in validate(schema, self.places).items() if accepted]


def without_child(document, folder):
    mutants = Mutants(document, folder)
    for number, element in enumerate(mutants.root.iter()):
        for position, child in enumerate(element):
            if not NUMBERED.fullmatch(child.tag) and child.tag not in OPTIONAL:
                mutants.write((number, element.tag, child.tag),
                              lambda parent, position=position: parent.remove(parent[position]))
    return mutants


def swap(parent, position):
    parent[position], parent[position + 1] = parent[position + 1], parent[position]


def with_children_swapped(document, folder):
    mutants = Mutants(document, folder)
    for number, element in enumerate(mutants.root.iter()):
        for position, (first, second) in enumerate(zip(element, element[1:])):
            both_free = NUMBERED.fullmatch(first.tag) and NUMBERED.fullmatch(second.tag)
            if not both_free and first.tag != second.tag:
                mutants.write((number, element.tag, first.tag, second.tag),
                              lambda parent, position=position: swap(parent, position))
    return mutants


def with_number_spoilt(document, folder):
    mutants = Mutants(document, folder)
    for number, element in enumerate(mutants.root.iter()):
        if re.fullmatch(r"-?[0-9]+", element.text or "") and element.tag not in TEXTS:
            for wrong in ("", "x", "+1", "01", "1.0", str(2**64), str(-2**63 - 1)):
                mutants.write((number, element.tag, wrong), lambda leaf, wrong=wrong: setattr(leaf, "text", wrong))
    return mutants


def with_more(document, folder):
    """Adds an attribute to every element, and an unknown element to every section that does not end with numbered
    elements."""
    mutants = Mutants(document, folder)
    counts = {"size", "size_idx", "size_idy", "TotalVolumes", "TotalDrives", "BlockSize", "NumberOfDisks",
              "NumberOfPartitions", "NumberOfDiskExtents"}
    for number, element in enumerate(mutants.root.iter()):
        mutants.write((number, element.tag, "attribute"), lambda any_element: any_element.set("unknown", "1"))
        if len(element) == 0 or not (NUMBERED.fullmatch(element[-1].tag) or element[-1].tag in counts):
            mutants.write((number, element.tag, "element"),
                          lambda any_element: ElementTree.SubElement(any_element, "Unknown"))
    return mutants


FAULTS = (without_child, with_children_swapped, with_number_spoilt, with_more)


class Schemas(HostTest):
    def assert_taken(self, schema, documents):
        self.assertNotEqual(documents, [])
        self.assertEqual([file for file, taken in validate(schema, documents).items() if not taken], [])

    def assert_faults_are_refused(self, schema, document):
        for make in FAULTS:
            with self.subTest(fault=make.__name__), tempfile.TemporaryDirectory() as folder:
                self.assertEqual(make(document, pathlib.Path(folder)).accepted_by(schema), [])

    def captured(self, *arguments):
        result = capture(*arguments)
        self.assertEqual(result.code, 0, result.errors)
        file = self.folder / f"{len(list(self.folder.iterdir()))}.xml"
        file.write_bytes(result.out)
        return file

    def test_flat_documents_are_taken(self):
        documents = list(EXAMPLES.glob("*/expected/format[12].xml"))
        documents.append(self.captured("--machine", EXAMPLES / "server-many-disks"))
        self.assert_taken(FLAT, documents)

    def test_model_documents_are_taken(self):
        machines = [machine for machine in MACHINES if (machine / "expected/format3.xml").exists()]
        self.assertGreater(len(machines), 1)
        documents = [self.captured("--machine", machine, "--format", 3) for machine in [*machines, ODD_MACHINE]]
        self.assert_taken(MODEL, documents)

    def test_documents_of_the_other_layout_are_refused(self):
        flat = EXAMPLES / "uefi-workstation/expected/format2.xml"
        model = self.captured("--machine", EXAMPLES / "uefi-workstation", "--format", 3)
        self.assertEqual(validate(MODEL, [flat]), {flat: False})
        self.assertEqual(validate(FLAT, [model]), {model: False})

    def test_faults_in_a_flat_document_are_refused(self):
        self.assert_faults_are_refused(FLAT, (EXAMPLES / "spanned-dynamic/expected/format2.xml").read_bytes())

    def test_faults_in_a_model_document_are_refused(self):
        for machine in (EXAMPLES / "bios-laptop", EXAMPLES / "uefi-workstation", ODD_MACHINE):
            with self.subTest(machine=machine.name):
                self.assert_faults_are_refused(MODEL, self.captured("--machine", machine, "--format", 3).read_bytes())


if __name__ == "__main__":
    unittest.main()
