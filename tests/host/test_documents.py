#!/usr/bin/env -S python3 -B
"""The commands for documents: orvane.exe and the native orvane write the same bytes, and what they show of disks that
sfdisk made is what sfdisk says of them."""

import json
import os
import pathlib
import shutil
import subprocess
import unittest

from host import EXAMPLES, ROOT, HostTest, Result, run

NATIVE = pathlib.Path(os.environ["ORVANE_NATIVE"])
IMAGES = pathlib.Path(os.environ["ORVANE_IMAGES"])
DOCUMENTS = [file.relative_to(EXAMPLES.parent.parent) for file in sorted(EXAMPLES.glob("*/expected/format?.xml"))]
EXTENDED_TYPES = {"5", "f", "85"}


def run_native(*arguments):
    process = subprocess.run([NATIVE, *map(str, arguments)], capture_output=True, check=False, stdin=subprocess.DEVNULL)
    return Result(process.returncode, process.stdout, process.stderr)


class BothBuilds(HostTest):
    def assert_same(self, *arguments):
        windows = run(*arguments)
        # Wine has lines of its own when it begins.
        errors = [line for line in windows.errors if line.startswith("orvane: ")]
        native = run_native(*arguments)
        self.assertEqual((windows.code, windows.out, errors), (native.code, native.out, native.errors))

    def test_documents_of_all_cases(self):
        self.assertGreater(len(DOCUMENTS), 10)
        self.assert_same("show", *DOCUMENTS)
        self.assert_same("show", "--bytes", *DOCUMENTS)
        self.assert_same("show", "--json", *DOCUMENTS)
        self.assert_same("show", "--json", "--lines", *DOCUMENTS)
        self.assert_same("verify", *DOCUMENTS)
        self.assert_same("verify", "--json", *DOCUMENTS)

    def test_documents_that_are_damaged_or_written_otherwise(self):
        text = (EXAMPLES / "bios-laptop/expected/format2.xml").read_text(encoding="utf-8")
        label = "<Label>Documents<"
        changed = {
            "cut.xml": text[:7000].encode(),
            "letters.xml": text.replace(label, "<Label>  \u00dc\u4e2d\U0001F4BE &lt;\u202e&#x9b; <").encode(),
            "blank.xml": text.replace(label, "<Label>   <").encode(),
            "lines.xml": text.replace("\n", "\r\n").replace(label, "<Label>a\r\nb&#13;<").encode(),
            "utf16.xml": text.replace(label, "<Label>\u00dc\u4e2d\U0001F4BE<").encode("utf-16"),
            "declared.xml": b'<?xml version="1.0" encoding="windows-1252"?>\r\n' +
                            text.replace(label, "<Label>\u00dc\u20ac<").encode("cp1252"),
            "long.xml": text.replace(label, "<Label>" + "x&amp;" * 40000 + "<").encode(),
            "bad-number.xml": text.replace("<size_idx>1<", "<size_idx>x<").encode(),
            "no-utf8.xml": text.replace(label, "<Label>\u00dc<").encode("cp1252"),
            "comment.xml": text.replace("<x0>", "<!-- \u00fc --><x0>").encode(),
            "wrong-count.xml": text.replace("<TotalVolumes>4<", "<TotalVolumes>3<").encode(),
        }
        for name, data in changed.items():
            (self.folder / name).write_bytes(data)
        names = [self.folder / name for name in changed]
        for command in (["show"], ["show", "--json"], ["verify"]):
            self.assert_same(*command, *names)
        self.assert_same("show", "--code-page", "437", self.folder / "no-utf8.xml")

    def test_reports(self):
        for document in DOCUMENTS[::9]:
            pages = [self.folder / "windows.html", self.folder / "native.html"]
            verdicts = ROOT / document.parent / "check.json"
            for page, program in zip(pages, (run, run_native)):
                result = program("report", document, "--output", page, "--force", "--verdicts", verdicts)
                self.assertEqual(result.code, 0, result.errors)
            with self.subTest(document=document):
                self.assertTrue(pages[0].read_bytes().startswith(b"<!DOCTYPE html>"))
                self.assertEqual(pages[0].read_bytes(), pages[1].read_bytes())

    def test_differences(self):
        text = (EXAMPLES / "spanned-dynamic/expected/format2.xml").read_text(encoding="utf-8")
        changed = self.folder / "changed.xml"
        changed.write_text(text.replace("<index>1</index>", "<index>7</index>").replace(
            "<Label>Archive<", "<Label>\u202eOld &amp; \u4e2d<"), encoding="utf-8")
        for old, new in ((EXAMPLES / "spanned-dynamic/expected/format2.xml", changed),
                         (EXAMPLES / "spanned-dynamic/expected/format3.xml", changed),
                         (DOCUMENTS[0], DOCUMENTS[-1])):
            for options in ([], ["--all"], ["--json", "--all"]):
                self.assert_same("diff", *options, old, new)
        self.assert_same("diff", changed, changed)

    def test_bad_arguments(self):
        for arguments in (["show"], ["show", "--lines", "x"], ["verify", "no-such-file"], ["show", "--code-page", "7", "x"],
                          ["show", "--from", "no-such-list"]):
            windows = run(*arguments)
            native = run_native(*arguments)
            self.assertEqual((windows.code, windows.out), (native.code, native.out))
            self.assertEqual(native.code, 2)
            self.assertEqual(windows.errors[-len(native.errors):], native.errors)


class PlansOfBothBuilds(HostTest):
    """orvane plan says and writes the same, byte by byte."""

    LAPTOP = EXAMPLES / "bios-laptop/expected/format2.xml"
    LAPTOP_SIZE = 320072933376

    def setUp(self):
        super().setUp()
        self.plan = self.folder / "plan"

    def files(self):
        return {file.name: file.read_bytes() for file in self.plan.glob("*")}

    def windows(self, *arguments):
        return self.outcome(run, *arguments)

    def native(self, *arguments):
        return self.outcome(run_native, *arguments)

    def outcome(self, program, *arguments):
        result = program("plan", *arguments, "--output", self.plan)
        return result.code, result.out, [line for line in result.errors if line.startswith("orvane: ")], self.files()

    def assert_same(self, code, names, *arguments):
        windows = self.windows(*arguments)
        shutil.rmtree(self.plan, ignore_errors=True)
        native = self.native(*arguments)
        self.assertEqual(windows, native)
        self.assertEqual((native[0], sorted(native[3])), (code, names))
        shutil.rmtree(self.plan, ignore_errors=True)
        return native[2]

    def image(self, size, data=b""):
        image = self.folder / "target.img"
        image.write_bytes(data)
        os.truncate(image, size)
        return image

    def test_documents(self):
        for case, number, code, names in (
            ("bios-laptop", 2, 0, ["disk0.sfdisk", "plan.md"]),
            ("bios-laptop", 3, 0, ["disk0.sfdisk", "plan.md"]),
            ("large-4kn", 2, 0, ["disk0.sfdisk", "disk1.sfdisk", "plan.md"]),
            ("uefi-workstation", 3, 1, ["plan.md"]),
            ("pooled-disks", 1, 0, ["disk0.sfdisk", "disk3.sfdisk", "plan.md"]),
        ):
            with self.subTest(case=case, format=number):
                self.assert_same(code, names, EXAMPLES / f"{case}/expected/format{number}.xml")

    def test_targets(self):
        image = self.image(self.LAPTOP_SIZE + (1 << 20))
        self.assert_same(0, ["disk0.sfdisk", "plan.md"], self.LAPTOP, "--target", f"0={image}")
        self.assertEqual(image.stat().st_size, self.LAPTOP_SIZE + (1 << 20))

    def test_refusals(self):
        workstation = EXAMPLES / "uefi-workstation/expected/format2.xml"
        for code, document, *arguments in (
            ("P020", self.LAPTOP, "--target-size", "0=64 GiB"),
            ("P021", self.LAPTOP, "--target", f"0={self.image(self.LAPTOP_SIZE)}", "--sector-size", "0=4096"),
            ("P022", workstation, "--target", f"0={self.folder}/target.img", "--target", f"1={self.folder}/./target.img"),
        ):
            with self.subTest(code=code):
                errors = self.assert_same(1, [], document, *arguments)
                self.assertIn(code, [line.split()[1] for line in errors])
        image = self.image(self.LAPTOP_SIZE, b"\x01")
        errors = self.assert_same(1, [], self.LAPTOP, "--target", f"0={image}")
        self.assertEqual([line.split()[1] for line in errors], ["P023"])

    def test_trouble(self):
        for arguments in (["--target", f"0={self.folder}/none.img"], ["--disk", "7"], ["--target-size", "0=many"]):
            self.assertEqual(len(self.assert_same(2, [], self.LAPTOP, *arguments)), 1)

    def test_a_second_run_replaces_nothing_without_force(self):
        self.assertEqual(self.windows(self.LAPTOP)[0], 0)
        (self.plan / "plan.md").write_text("mine")
        before = self.files()
        windows = self.windows(self.LAPTOP)
        self.assertEqual(windows, (*self.native(self.LAPTOP)[:3], before))
        self.assertEqual(self.files(), before)
        self.assertEqual(windows[0], 2)
        self.assertEqual(self.windows(self.LAPTOP, "--force")[0], 0)
        self.assertNotEqual(self.files()["plan.md"], b"mine")

    def test_a_disk_of_windows_is_no_target(self):
        code, out, errors, files = self.windows(self.LAPTOP, "--target", "0=\\\\.\\PhysicalDrive0")
        self.assertEqual((code, out, files, len(errors)), (2, b"", {}, 1))
        self.assertIn("only images can be looked at on this system; --target-size and --sector-size tell of a disk", errors[0])


class DisksOfSfdisk(HostTest):
    def shown(self, image):
        """The second disk of a machine, which has the image; its first partition has a volume."""
        machine = {
            "disks": [{"index": 0, "size": "64 GiB", "style": "mbr", "signature": 1,
                       "partitions": [{"offset": "1 MiB", "size": "60 GiB", "type": "ntfs", "active": True}]},
                      {"index": 1, "image": os.path.relpath(image, self.folder)}],
            "volumes": [{"partition": {"disk": 0, "number": 1}, "mountPoints": ["C:\\"]},
                        {"partition": {"disk": 1, "number": 1}, "mountPoints": ["D:\\"]}],
        }
        description = self.folder / "machine.json"
        description.write_text(json.dumps(machine), encoding="utf-8")
        document = self.folder / "document.xml"
        self.assert_done(run("capture", "--machine", description, "--output", document, "--force"))
        shown = run_native("show", "--json", document)
        self.assertEqual((shown.code, shown.errors), (0, []))
        return json.loads(shown.out)["documents"][0]["disks"][1]

    def test_show_says_what_sfdisk_says(self):
        images = [image for image in sorted(IMAGES.glob("*.img")) if image.with_suffix(".json").exists()]
        compared = 0
        for image in images:
            table = json.loads(image.with_suffix(".json").read_text())["partitiontable"]
            if not table.get("partitions"):
                continue
            with self.subTest(image=image.name):
                disk = self.shown(image)
                sector = table.get("sectorsize", 512)
                gpt = table["label"] == "gpt"
                self.assertEqual(disk["style"], "GPT" if gpt else "MBR")
                if gpt:
                    self.assertEqual(disk["id"], "{" + table["id"].upper() + "}")
                else:
                    self.assertEqual(disk["signature"], int(table["id"], 16))
                expected = sorted(
                    (row["start"] * sector, row["size"] * sector,
                     ("{" + row["type"].upper() + "}", "{" + row["uuid"].upper() + "}") if gpt else
                     (int(row["type"], 16), row.get("bootable", False)))
                    for row in table["partitions"] if gpt or row["type"] not in EXTENDED_TYPES)
                actual = sorted((row["start"], row["size"],
                                 (row["typeGuid"], row["id"]) if gpt else (row["type"], row["active"]))
                                for row in disk["partitions"])
                self.assertEqual(actual, expected)
                compared += 1
        self.assertGreater(compared, 2)


if __name__ == "__main__":
    unittest.main()
