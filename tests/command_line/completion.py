#!/usr/bin/python3
"""What bash completes of a command line of vorranoctl.

usage: completion.py BUILD_FOLDER COMPLETION [unittest's arguments]
"""
import os
import subprocess
import sys
import unittest

BUILD = COMPLETION = ""
SCRIPT = """
source "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
_vorranoctl
printf '%s\\n' "${COMPREPLY[@]}"
"""


def completed(*words):
    """What the last word may become, the words before it given."""
    environment = dict(os.environ, PATH=BUILD + ":" + os.environ["PATH"])
    ended = subprocess.run(["bash", "--norc", "-c", SCRIPT, "bash", COMPLETION, "vorranoctl", *words], env=environment,
                           capture_output=True, text=True, timeout=30, check=True)
    return ended.stdout.split("\n")[:-1]


class Completion(unittest.TestCase):
    def test_completes_the_verb(self):
        self.assertEqual(completed("u"), ["update"])
        self.assertEqual(completed(""), ["list", "get", "set", "wifi", "reset", "update", "--help", "--version"])

    def test_completes_what_each_verb_takes(self):
        self.assertEqual(completed("get", "wifi"), ["wifi-firmware"])
        self.assertEqual(completed("--json", "set", "w"), ["wep-key"])
        self.assertEqual(completed("reset", "--port", "/dev/ttyUSB0", "m"), ["modem"])
        self.assertEqual(completed("wifi", "--s"), ["--ssid", "--security"])
        self.assertEqual(completed("update", "vorrano.hex", "--f"), ["--force"])

    def test_completes_a_value(self):
        self.assertEqual(completed("set", "unit", "C"), ["Celsius"])
        self.assertEqual(completed("set", "security", "WEP"), ["WEP-128", "WEP-64"])
        self.assertEqual(completed("wifi", "--security", "WPA2"), ["WPA2"])

    def test_completes_files(self):
        self.assertIn(COMPLETION, completed("update", COMPLETION[:-1]))
        self.assertIn(COMPLETION, completed("set", "password", "--password-file", COMPLETION[:-1]))

    def test_completes_no_secret(self):
        self.assertEqual(completed("set", "password", "x"), [""])


if __name__ == "__main__":
    BUILD, COMPLETION = (sys.argv.pop(1) for _ in range(2))
    unittest.main()
