#!/usr/bin/env -S python3 -B
"""Arguments, help and version of orvane.exe."""

import shutil
import unittest

from host import HostTest, PROGRAM, VERSION, run

MACHINE_OPTIONS = ["--machine", "--log", "--verbose"]
OPTIONS = {
    "capture": ["--format", "--volume", "--output", "--force", "--raw", *MACHINE_OPTIONS],
    "dump": ["wmi", "disks", "volumes", "firmware", "--output", "--force", *MACHINE_OPTIONS],
    "check": ["--volume", "--json", *MACHINE_OPTIONS],
}


class Arguments(HostTest):
    def test_help_lists_commands_and_exit_codes(self):
        result = run("--help")
        self.assert_done(result)
        for word in (b"capture", b"dump", b"check", b"version", b"Exit codes", b"--machine"):
            self.assertIn(word, result.out)

    def test_help_of_a_command_lists_every_option(self):
        for command, options in OPTIONS.items():
            with self.subTest(command=command):
                result = run(command, "--help")
                self.assert_done(result)
                for option in options:
                    self.assertIn(option.encode(), result.out)

    def test_version_option_tells_the_version_of_the_program(self):
        result = run("--version")
        self.assert_done(result)
        self.assertEqual(result.out, f"orvane {VERSION}\n".encode())

    def test_version_tells_library_and_interface(self):
        result = run("version")
        self.assert_done(result)
        self.assertEqual(result.out, f"Orvane.dll {VERSION}.0, interface version 4\n".encode())

    def test_bad_usage_is_refused(self):
        for arguments in ([], ["frobnicate"], ["capture", "--frobnicate"], ["capture", "--format", "two"],
                          ["capture", "extra"], ["capture", "--volume"], ["dump"],
                          ["dump", "frobnicate"], ["check", "--volume", ""]):
            with self.subTest(arguments=arguments):
                result = run(*arguments)
                self.assertEqual((result.code, result.out), (2, b""))
                self.assertTrue(result.errors[0].startswith("orvane: "), result.errors)

    def test_missing_library_is_named(self):
        lonely = self.folder / PROGRAM.name
        shutil.copy(PROGRAM, lonely)
        for command in ("version", "capture"):
            with self.subTest(command=command):
                self.assert_refused(run(command, program=lonely), 1, "Orvane.dll", "cannot be loaded")


if __name__ == "__main__":
    unittest.main()
