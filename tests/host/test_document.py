#!/usr/bin/env -S python3 -B
"""The document that orvane.exe writes."""

import json
import unittest

from host import ANSI, EXAMPLES, MACHINES, HostTest, capture, content, run, run_described, selected

DECLARATION = b'<?xml version="1.0" encoding="UTF-8"?>\n'

# The children of BMREnvInfo.
HEAD = ["Version", "DllVersion", "Processor", "ComputerSystem", "BootConfiguration", "OS"]
FLAT = ["DiskDrives", "VolumeTable", "DriveLetterTable", "BootConfig", "BootIniContents"]
MODEL = ["DeviceInfo", "VolumeInfo"]


def child(tree, *names):
    for name in names:
        tree = next(element for element in tree[1] if element[0] == name)
    return tree


class Document(HostTest):
    def machine(self, label):
        """A small machine with one volume that has this label."""
        file = self.folder / "machine.json"
        file.write_text(json.dumps({
            "disks": [{"index": 0, "size": "10 GiB", "style": "mbr", "signature": 1,
                       "partitions": [{"offset": "1 MiB", "size": "9 GiB", "type": "ntfs", "active": True}]}],
            "volumes": [{"partition": {"disk": 0, "number": 1}, "mountPoints": ["C:\\"], "label": label}],
        }), encoding="utf-8")
        return file

    def test_default_is_the_readable_document(self):
        result = capture()
        self.assert_done(result)
        self.assertTrue(result.out.startswith(DECLARATION + b"<root>\n  <BMREnvInfo>\n    <Version>5</Version>\n"))
        self.assertTrue(result.out.endswith(b"\n  </BMREnvInfo>\n</root>\n"))
        self.assertNotIn(b"\r", result.out)
        self.assert_well_formed(result.out)
        self.assertEqual(child(content(result.out), "BMREnvInfo", "OS", "CSName")[1], "WS-2207")

    def test_every_example_has_the_expected_documents(self):
        for machine in MACHINES:
            for number in (1, 2, 3):
                with self.subTest(machine=machine.name, format=number):
                    result = capture("--machine", machine, "--format", number, *selected(machine))
                    if (machine / f"expected/format{number}.xml").exists():
                        self.assertEqual(result.code, 0, result.errors)
                        self.assert_well_formed(result.out)
                    else:
                        self.assert_refused(result, 1, "the capture failed")
                        expected = (machine / f"expected/format{number}.refused.txt").read_text(encoding="utf-8")
                        # The program shows errors only, and the same one once.
                        lines = dict.fromkeys(line[2:] for line in expected.splitlines() if line.startswith("3 "))
                        self.assertEqual(result.errors[:-1], ["error: " + line for line in lines])

    def test_format_chooses_the_layout(self):
        laptop = EXAMPLES / "bios-laptop"
        for number, version, sections in ((0, "5", FLAT), (1, "3", FLAT), (2, "5", FLAT), (3, "7", MODEL),
                                          (4, "5", FLAT), (7, "5", FLAT)):
            with self.subTest(format=number):
                result = capture("--machine", laptop, "--format", number)
                self.assert_done(result)
                environment = content(result.out)[1][0]
                self.assertEqual([name for name, _ in environment[1]], HEAD + sections)
                self.assertEqual(child(environment, "Version")[1], version)

    def test_raw_document_has_the_same_content(self):
        for machine in ("uefi-workstation", "spanned-dynamic"):
            with self.subTest(machine=machine):
                file = EXAMPLES / machine
                readable = capture("--machine", file, "--format", 3)
                raw = capture("--machine", file, "--format", 3, "--raw")
                self.assertEqual((raw.code, raw.errors), (readable.code, readable.errors))
                self.assertTrue(raw.out.startswith(b"<root>"))
                self.assertTrue(raw.out.endswith(b"</root>"))
                self.assert_well_formed(raw.out)
                self.assertEqual(content(readable.out), content(raw.out))

    def test_letters_of_the_code_page_become_utf8(self):
        label = "\u00dcbung \u20ac & <Ma\u00df> "
        file = self.machine(label)
        readable = run("capture", "--machine", file, "--format", 3)
        raw = run("capture", "--machine", file, "--format", 3, "--raw")
        self.assert_done(readable)
        self.assert_done(raw)
        self.assert_well_formed(readable.out)
        volume = child(content(readable.out), "BMREnvInfo", "VolumeInfo", "Volume")
        self.assertEqual(child(volume, "VolumeLabel")[1], label)
        self.assertIn("\u00dcbung \u20ac".encode(ANSI), raw.out)
        self.assertEqual(content(readable.out), content(raw.out.decode(ANSI)))

    def test_letters_beyond_the_code_page_leave_the_document_whole(self):
        result = run("capture", "--machine", self.machine("\u4e2d\U0001f4be"))
        self.assert_done(result)
        self.assert_well_formed(result.out)

    def test_output_goes_to_the_file(self):
        expected = capture()
        file = self.folder / "\u00fcmgebung.xml"
        result = run_described("capture", "--output", file)
        self.assert_done(result)
        self.assertEqual(result.out, b"")
        self.assertEqual(content(file.read_bytes()), content(expected.out))
        self.assertTrue(file.read_bytes().startswith(DECLARATION))

    def test_raw_output_has_no_declaration(self):
        file = self.folder / "raw.xml"
        self.assert_done(run_described("capture", "--raw", "--output", file))
        self.assertTrue(file.read_bytes().startswith(b"<root>"))
        self.assertTrue(file.read_bytes().endswith(b"</root>"))

    def test_output_that_cannot_be_written_is_told(self):
        self.assert_refused(run_described("capture", "--output", self.folder / "none" / "out.xml"), 1, "out.xml",
                            "cannot be written")

    def test_failed_capture_leaves_the_output_alone(self):
        file = self.folder / "out.xml"
        file.write_text("of an earlier capture")
        self.assert_refused(run_described("capture", "--volume", "unknown", "--output", file, "--force"), 1,
                            "the capture failed")
        self.assertEqual(file.read_text(), "of an earlier capture")
        self.assertEqual(list(self.folder.iterdir()), [file])

    def test_existing_file_is_replaced_with_force_only(self):
        file = self.folder / "out.xml"
        file.write_text("of an earlier capture")
        self.assert_refused(run_described("capture", "--output", file), 1, "out.xml", "--force")
        self.assertEqual(file.read_text(), "of an earlier capture")
        self.assert_done(run_described("capture", "--output", file, "--force"))
        self.assertEqual(content(file.read_bytes()), content(capture().out))
        self.assertEqual(list(self.folder.iterdir()), [file])


if __name__ == "__main__":
    unittest.main()
