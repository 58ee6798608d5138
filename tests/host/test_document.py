#!/usr/bin/env -S python3 -B
"""The document as orvane.exe delivers it."""

import json
import unittest

from host import ANSI, EXAMPLES, HostTest, capture, content, run

DECLARATION = b'<?xml version="1.0" encoding="UTF-8"?>\n'


def child(tree, *names):
    for name in names:
        tree = next(element for element in tree[1] if element[0] == name)
    return tree


class Document(HostTest):
    def machine(self, label):
        """A small machine whose one volume has that label."""
        file = self.folder / "machine.json"
        file.write_text(json.dumps({
            "disks": [{"index": 0, "size": "10 GiB", "style": "mbr", "signature": 1,
                       "partitions": [{"offset": "1 MiB", "size": "9 GiB", "type": "ntfs", "active": True}]}],
            "volumes": [{"partition": {"disk": 0, "number": 1}, "mountPoints": ["C:\\"], "label": label}],
        }), encoding="utf-8")
        return file

    def test_default_is_the_readable_document_of_the_workstation(self):
        result = capture()
        self.assert_done(result)
        self.assertTrue(result.out.startswith(DECLARATION + b"<root>\n  <BMREnvInfo>\n    <Version>7</Version>\n"))
        self.assertTrue(result.out.endswith(b"\n  </BMREnvInfo>\n</root>\n"))
        self.assertNotIn(b"\r", result.out)
        self.assert_well_formed(result.out)
        workstation = capture("--machine", EXAMPLES / "uefi-workstation.json")
        self.assertEqual(content(result.out), content(workstation.out))

    def test_every_example_is_captured(self):
        for machine in sorted(EXAMPLES.glob("*.json")):
            with self.subTest(machine=machine.name):
                disks = json.loads(machine.read_text(encoding="utf-8")).get("disks", [])
                result = capture("--machine", machine)
                # A machine without a disk cannot be captured.
                self.assertEqual(result.code, 0 if disks else 1, result.errors)
                if disks:
                    self.assert_well_formed(result.out)
                    self.assertEqual(child(content(result.out), "BMREnvInfo", "DeviceInfo", "NumberOfDisks")[1],
                                     str(len(disks)))
                else:
                    self.assertEqual(result.out, b"")

    def test_raw_document_has_the_same_content(self):
        for machine in ("uefi-workstation", "spanned-dynamic"):
            with self.subTest(machine=machine):
                file = EXAMPLES / f"{machine}.json"
                readable = capture("--machine", file)
                raw = capture("--machine", file, "--raw")
                self.assertEqual((raw.code, raw.errors), (readable.code, readable.errors))
                self.assertTrue(raw.out.startswith(b"<root>"))
                self.assertTrue(raw.out.endswith(b"</root>"))
                self.assert_well_formed(raw.out)
                self.assertEqual(content(readable.out), content(raw.out))

    def test_letters_of_the_code_page_become_utf8(self):
        label = "\u00dcbung \u20ac & <Ma\u00df> "
        file = self.machine(label)
        readable = run("capture", "--machine", file)
        raw = run("capture", "--machine", file, "--raw")
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
        result = run("capture", "--output", file)
        self.assert_done(result)
        self.assertEqual(result.out, b"")
        self.assertEqual(content(file.read_bytes()), content(expected.out))
        self.assertTrue(file.read_bytes().startswith(DECLARATION))

    def test_raw_output_has_no_declaration(self):
        file = self.folder / "raw.xml"
        self.assert_done(run("capture", "--raw", "--output", file))
        self.assertTrue(file.read_bytes().startswith(b"<root>"))
        self.assertTrue(file.read_bytes().endswith(b"</root>"))

    def test_output_that_cannot_be_written_is_told(self):
        self.assert_refused(run("capture", "--output", self.folder / "none" / "out.xml"), 1, "out.xml",
                            "cannot be written")

    def test_failed_capture_leaves_the_output_alone(self):
        file = self.folder / "out.xml"
        file.write_text("of an earlier capture")
        run("capture", "--volume", "unknown", "--output", file)
        self.assertEqual(file.read_text(), "of an earlier capture")


if __name__ == "__main__":
    unittest.main()
