#!/usr/bin/python3
"""What the real programs answer on their command line, without a display.

usage: command_line.py BUILD_FOLDER MANUAL_FOLDER VERSION [unittest's arguments]
"""
import os
import re
import socket
import subprocess
import sys
import tempfile
import unittest

BUILD = MANUAL = VERSION = ""
PROGRAMS = ("vorrano-setup", "vorrano-demo", "vorrano-simulator")
DISPLAYS = ("DISPLAY", "WAYLAND_DISPLAY", "WAYLAND_SOCKET", "QT_QPA_PLATFORM")
DEADLINE = 30
WITH_VALUE = ("platform", "platformpluginpath", "platformtheme", "plugin", "qwindowgeometry", "geometry", "title",
              "qwindowtitle", "icon", "qwindowicon", "session", "style", "display", "stylesheet", "name", "visual")
WITHOUT_VALUE = ("reverse", "widgetcount", "style=fusion", "stylesheet=none.css", "qmljsdebugger=port:1")


def run(program, *arguments, place=None):
    environment = {name: value for name, value in os.environ.items() if name not in DISPLAYS}
    return subprocess.run([os.path.join(BUILD, program), *arguments], env=environment, cwd=place,
                          stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=DEADLINE)


def each_program(*arguments):
    return [(program, run(program, *arguments)) for program in PROGRAMS]


class CommandLine(unittest.TestCase):
    def assert_refused(self, program, ended, *parts):
        self.assertEqual((ended.returncode, ended.stdout), (2, ""), ended)
        self.assertTrue(ended.stderr.startswith(program + ": "), ended)
        self.assertTrue(ended.stderr.endswith("\nTry '%s --help'.\n" % program), ended)
        for part in parts:
            self.assertIn(part, ended.stderr)

    def test_shows_help(self):
        for option in ("--help", "-h", "-help"):
            for program, ended in each_program(option):
                self.assertEqual((ended.returncode, ended.stderr), (0, ""), ended)
                for part in ("Usage: ", program, "--help", "--version", "-platform"):
                    self.assertIn(part, ended.stdout)

    def test_names_its_options_in_its_help(self):
        for option in ("--control", "--serial", "--http-port", "--unplugged", "--until-stdin-ends", "--account",
                       "--window"):
            self.assertIn(option + " ", run("vorrano-simulator", "--help").stdout)

    def test_has_each_option_in_its_manual(self):
        for program, ended in each_program("--help"):
            with open(os.path.join(MANUAL, program + ".1"), encoding="utf-8") as page:
                manual = page.read().replace("\\-", "-")
            options = re.findall(r"--[a-z-]+", ended.stdout)
            self.assertIn("--version", options)
            for option in options:
                self.assertRegex(manual, option + r"(?![a-z-])")

    def test_shows_its_version(self):
        for option in ("--version", "-v", "-version"):
            for program, ended in each_program(option):
                self.assertEqual((ended.returncode, ended.stdout, ended.stderr),
                                 (0, "%s %s\n" % (program, VERSION), ""), ended)

    def test_says_that_its_answer_did_not_go_out(self):
        for option in ("--help", "--version"):
            for program in PROGRAMS + ("vorranoctl",):
                with open("/dev/full", "wb") as full:
                    ended = subprocess.run([os.path.join(BUILD, program), option], stdout=full, stderr=subprocess.PIPE,
                                           text=True, timeout=DEADLINE)
                self.assertEqual((ended.returncode, ended.stderr),
                                 (1, program + ": write error: No space left on device\n"), ended)

    def test_refuses_an_option_that_it_does_not_know(self):
        for option in ("--colour", "-colour", "-c", "--help-me", "--platforms"):
            for program, ended in each_program(option):
                self.assert_refused(program, ended, "Unknown option '%s'" % option.lstrip("-"))

    def test_refuses_an_argument_that_is_no_option(self):
        for argument in ("vorrano.hex", "-", "G\u00f6del"):
            for program, ended in each_program(argument):
                self.assert_refused(program, ended, "Unexpected argument '%s'" % argument)

    def test_refuses_a_value_that_an_option_does_not_take(self):
        for program, ended in each_program("--version=2"):
            self.assert_refused(program, ended, "version")

    def test_refuses_an_option_beside_one_that_it_knows(self):
        for program, ended in each_program("--version", "--colour"):
            self.assert_refused(program, ended, "colour")

    def test_leaves_options_to_qt(self):
        for dashes in ("-", "--"):
            for name in WITH_VALUE:
                for _, ended in each_program(dashes + name, "value", "--version"):
                    self.assertEqual(ended.returncode, 0, ended)
            for name in WITHOUT_VALUE:
                for _, ended in each_program(dashes + name, "--version"):
                    self.assertEqual(ended.returncode, 0, ended)

    def test_takes_the_argument_after_an_option_of_qt_as_its_value(self):
        for program, ended in each_program("-title", "--version", "--help"):
            self.assertEqual(ended.returncode, 0, ended)
            self.assertIn("Usage: ", ended.stdout)

    def test_refuses_an_option_of_qt_that_lacks_its_value(self):
        for program, ended in each_program("-platform"):
            self.assert_refused(program, ended, "platform")


class SimulatorsCommandLine(unittest.TestCase):
    def assert_refused(self, part, *arguments):
        ended = run("vorrano-simulator", *arguments)
        self.assertEqual((ended.returncode, ended.stdout), (2, ""), ended)
        self.assertIn(part, ended.stderr)

    def test_refuses_to_start_without_a_control_socket(self):
        self.assert_refused("--control")

    def test_refuses_an_option_without_its_value(self):
        self.assert_refused("control", "--control")

    def test_refuses_what_is_no_port(self):
        for port in ("abc", "65536", "-1", ""):
            self.assert_refused("http-port", "--control", "/nonexistent/control", "--http-port", port)

    def test_leaves_a_file_alone_that_is_no_socket(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "control")
            with open(path, "w", encoding="ascii") as file:
                file.write("mine")
            for named, place in ((path, None), ("control", folder)):
                ended = run("vorrano-simulator", "--control", named, "--until-stdin-ends", place=place)
                self.assertEqual((ended.returncode, ended.stdout), (1, ""), ended)
                self.assertIn("control socket: %s is there already" % path, ended.stderr)
            with open(path, encoding="ascii") as file:
                self.assertEqual(file.read(), "mine")

    def test_replaces_the_socket_of_an_earlier_simulator(self):
        with tempfile.TemporaryDirectory() as folder:
            with socket.socket(socket.AF_UNIX) as earlier:
                earlier.bind(os.path.join(folder, "control"))
            ended = run("vorrano-simulator", "--control", "control", "--until-stdin-ends", place=folder)
            self.assertEqual(ended.returncode, 0, ended)

    def test_refuses_an_unknown_option_before_it_looks_for_a_display(self):
        self.assert_refused("Unknown option 'colour'", "--control", "/nonexistent/control", "--window", "--colour")


class ToolsCommandLine(unittest.TestCase):
    VERBS = ("list", "get", "set", "wifi", "reset", "update")

    def test_shows_help_of_the_program_and_of_each_verb(self):
        for arguments in ((), *((verb,) for verb in self.VERBS)):
            for option in ("--help", "-h"):
                ended = run("vorranoctl", *arguments, option)
                self.assertEqual((ended.returncode, ended.stderr), (0, ""), ended)
                self.assertTrue(ended.stdout.startswith(" ".join(("Usage: vorranoctl", *arguments))), ended)

    def test_has_each_option_and_verb_in_its_manual(self):
        with open(os.path.join(MANUAL, "vorranoctl.1"), encoding="utf-8") as page:
            manual = page.read().replace("\\-", "-")
        for verb in self.VERBS:
            self.assertRegex(manual, r"\n\.B[IR]? (vorranoctl )?" + verb)
            for option in re.findall(r"--[a-z-]+", run("vorranoctl", verb, "--help").stdout):
                self.assertRegex(manual, option + r"(?![a-z-])")

    def test_shows_its_version(self):
        for option in ("--version", "-v"):
            ended = run("vorranoctl", option)
            self.assertEqual((ended.returncode, ended.stdout, ended.stderr), (0, "vorranoctl %s\n" % VERSION, ""))

    def test_refuses_what_it_does_not_understand(self):
        for arguments in ((), ("paint",), ("get",), ("get", "mac", "--colour"), ("list", "--platform", "xcb")):
            ended = run("vorranoctl", *arguments)
            self.assertEqual((ended.returncode, ended.stdout), (2, ""), ended)
            self.assertTrue(ended.stderr.startswith("vorranoctl: "), ended)
            self.assertTrue(ended.stderr.endswith("\nTry 'vorranoctl --help'.\n"), ended)


if __name__ == "__main__":
    BUILD, MANUAL, VERSION = (sys.argv.pop(1) for _ in range(3))
    unittest.main()
