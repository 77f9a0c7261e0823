#!/usr/bin/python3
"""What bash and zsh complete of a command line of vorranoctl.

usage: completion.py BUILD_FOLDER COMPLETIONS_FOLDER [unittest's arguments]
"""
import os
import pty
import select
import signal
import subprocess
import sys
import tempfile
import time
import unittest

BUILD = COMPLETIONS = COMPLETION = ""
DEADLINE = 60
PROMPT = "ready> "
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


class InBash(unittest.TestCase):
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
        self.assertEqual(completed("wifi", "--security", "WPA"), ["WPA1", "WPA\\ mixed", "WPA2"])

    def test_completes_no_secret(self):
        self.assertEqual(completed("set", "password", "x"), [""])


class Shell:
    """A shell at a terminal of its own. Its vorranoctl lists a port and writes down what else it is called with."""

    STARTS = {
        "bash": ("bash", "--norc", "--noprofile", "-i"),
        "zsh": ("zsh", "-f", "-i"),
    }
    BEGINNINGS = {
        "bash": "PS1='{prompt}'; source '{completions}/vorranoctl.bash'",
        "zsh": "PS1='{prompt}'; fpath=('{completions}' $fpath); autoload -U compinit; compinit -u -D",
    }

    def __init__(self, name, folder, port):
        self._heard = os.path.join(folder, "heard")
        tool = os.path.join(folder, "vorranoctl")
        with open(tool, "w", encoding="ascii") as file:
            file.write("#!/bin/sh\nif [ \"$1\" = list ]; then echo PORT NODE; echo '%s /dev/ttyUSB0'; exit; fi\n"
                       "printf '%%s\\n' \"$@\" >'%s'.part && mv '%s'.part '%s'\n" % ((port,) + 3 * (self._heard,)))
        os.chmod(tool, 0o755)
        environment = dict(os.environ, PATH=folder + ":" + os.environ["PATH"], TERM="dumb", HOME=folder, LC_ALL="C.UTF-8")
        self._process, self._terminal = pty.fork()
        if self._process == 0:
            os.execvpe(self.STARTS[name][0], self.STARTS[name], environment)
        # The echo of what is typed must not look like the prompt.
        self._type("%s\n" % self.BEGINNINGS[name].format(prompt=PROMPT.replace("r", "'r'", 1),
                                                                completions=COMPLETIONS))
        self._wait_for(PROMPT)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.kill(self._process, signal.SIGKILL)
        os.waitpid(self._process, 0)
        os.close(self._terminal)

    def _type(self, text):
        os.write(self._terminal, text.encode())

    def _wait_for(self, text):
        shown, end = "", time.monotonic() + DEADLINE
        while text not in shown:
            if not select.select([self._terminal], [], [], max(0, end - time.monotonic()))[0]:
                raise TimeoutError("the shell shows %r" % shown)
            shown += os.read(self._terminal, 4096).decode(errors="replace")

    def completed(self, line):
        """The arguments that the tool gets when TAB and Return follow the line."""
        self._type(line + "\t\n")
        self._wait_for(PROMPT)
        with open(self._heard, encoding="utf-8") as file:
            heard = file.read().splitlines()
        os.unlink(self._heard)
        return heard


class AtATerminal(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        with open(os.path.join(self.folder, "an image.hex"), "w", encoding="ascii"):
            pass

    def expect(self, line, *arguments, port="/dev/cu.usbserial-A1B2"):
        for name in Shell.STARTS:
            with self.subTest(name), Shell(name, self.folder, port) as shell:
                self.assertEqual(shell.completed("vorranoctl " + line), list(arguments))

    def test_a_value_with_a_blank_is_one_argument(self):
        self.expect("wifi --security WPA\\ ", "wifi", "--security", "WPA mixed")

    def test_each_security_type_is_a_value_of_its_own(self):
        self.expect("wifi --security WEP-1", "wifi", "--security", "WEP-128")

    def test_a_value_after_an_option(self):
        self.expect("set --json unit F", "set", "--json", "unit", "Fahrenheit")

    def test_an_item_after_a_value_with_an_equals_sign(self):
        self.expect("get --port=/dev/ttyUSB0 ma", "get", "--port=/dev/ttyUSB0", "mac")

    def test_a_port(self):
        self.expect("get --port /dev/cu", "get", "--port", "/dev/cu.usbserial-A1B2")

    def test_a_port_s_name_is_not_executed(self):
        trap = os.path.join(self.folder, "trap")
        name = "/dev/cu.usbserial-$(>%s)" % trap
        self.expect("get --port /dev/cu", "get", "--port", name, port=name)
        self.assertFalse(os.path.exists(trap))

    def test_a_file_s_name_with_a_blank(self):
        image = os.path.join(self.folder, "an image.hex")
        self.expect("update " + image[:-len(" image.hex")], "update", image)
        self.expect("set password --password-file " + image[:-len(" image.hex")], "set", "password", "--password-file",
                    image)


if __name__ == "__main__":
    BUILD, COMPLETIONS = (sys.argv.pop(1) for _ in range(2))
    COMPLETION = os.path.join(COMPLETIONS, "vorranoctl.bash")
    unittest.main()
