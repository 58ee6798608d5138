#!/usr/bin/env -S python3 -B
"""The documents of all example machines: what two formats both say of a machine is the same."""

import itertools
import unittest

from program import CASES, DOCUMENTS, run, show

# Members that are not facts about the machine, and those of rows whose meaning differs by format: the numbers that a
# document counts itself, and the row's copy of what the volume says.
NOT_COMPARED = {"number", "drive", "fileSystem", "volume"}

# Format 2 passes over larger numbers, which are those of drives without a disk.
LARGEST_NUMBER = 65535


def differences(place, one, other, left_out=frozenset()):
    """The places where both say something and it is not the same."""
    if isinstance(one, dict) and isinstance(other, dict):
        return [difference for name in one.keys() & other.keys() - left_out
                for difference in differences(f"{place}/{name}", one[name], other[name])]
    return [] if one == other else [f"{place}: {one!r} and {other!r}"]


def by_key(rows, key):
    return {row[key]: row for row in rows if key in row}


def compare_rows(place, one, other, key, compare):
    common = by_key(one, key).keys() & by_key(other, key).keys()
    return [difference for value in sorted(common)
            for difference in compare(f"{place} {value}", by_key(one, key)[value], by_key(other, key)[value])]


def compare_partitions(place, one, other):
    if not ("partitions" in one and "partitions" in other):
        return []
    rows = [sorted(disk["partitions"], key=lambda row: row["start"]) for disk in (one, other)]
    if len(rows[0]) != len(rows[1]):
        return [f"{place}: {len(rows[0])} and {len(rows[1])} partitions"]
    return [difference for pair in zip(*rows)
            for difference in differences(f"{place}/partition", *pair, left_out=NOT_COMPARED)]


def compare_disks(place, one, other):
    # "RAW" is also a table that the library does not know.
    unknown = {"style"} if "RAW" in (one.get("style"), other.get("style")) else set()
    return differences(place, one, other, {"partitions", "gaps"} | unknown) + compare_partitions(place, one, other)


def compare_volumes(place, one, other):
    found = differences(place, one, other, {"extents"})
    if "extents" in one and "extents" in other:
        places = [sorted((extent["disk"], extent["start"], extent["size"]) for extent in volume["extents"])
                  for volume in (one, other)]
        found += differences(f"{place}/extents", *places)
    return found


def compare(one, other):
    return (differences("system", one["system"], other["system"]) +
            compare_rows("disk", one["disks"], other["disks"], "number", compare_disks) +
            compare_rows("volume", one["volumes"], other["volumes"], "device", compare_volumes))


class Cases(unittest.TestCase):
    maxDiff = None

    def test_formats_agree_on_what_both_say(self):
        compared = 0
        for case in CASES:
            documents = {file.stem: show(file) for file in sorted(case.glob("expected/format?.xml"))}
            for one, other in itertools.combinations(sorted(documents), 2):
                with self.subTest(case=case.name, formats=(one, other)):
                    self.assertEqual(compare(documents[one], documents[other]), [])
                    compared += 1
        self.assertGreater(compared, 5)

    def test_a_difference_is_noticed(self):
        one = show(DOCUMENTS[0])
        for path in (["disks", 0, "size"], ["disks", 0, "partitions", 0, "size"], ["volumes", 0, "label"],
                     ["volumes", 0, "extents", 0, "start"], ["system", "operatingSystem", "csName"]):
            other = show(DOCUMENTS[0])
            place = other
            for step in path[:-1]:
                place = place[step]
            place[path[-1]] = "changed"
            self.assertEqual(len(compare(one, other)), 1, path)

    def test_disk_numbers_are_those_that_the_formats_share(self):
        for case in CASES:
            files = [case / f"expected/format{number}.xml" for number in (2, 3)]
            if all(file.exists() for file in files):
                with self.subTest(case=case.name):
                    flat, model = map(show, files)
                    self.assertEqual([disk["number"] for disk in flat["disks"]],
                                     [disk["number"] for disk in model["disks"] if disk["number"] <= LARGEST_NUMBER])

    def test_every_document_is_read_without_faults_of_its_form(self):
        for file in DOCUMENTS:
            with self.subTest(file=file):
                codes = {finding["code"] for finding in show(file)["findings"]}
                self.assertEqual(codes & {"D001", "D002", "D003", "D004", "D005", "D006"}, set())

    def test_documents_of_all_cases_are_shown(self):
        code, out, errors = run("show", *DOCUMENTS)
        self.assertEqual((code, errors), (0, []))
        self.assertEqual(out.count(b", format "), len(DOCUMENTS))


if __name__ == "__main__":
    unittest.main()
