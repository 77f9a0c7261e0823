#!/usr/bin/python3
"""Whether each test that docs/serial.md and docs/security.md name as holding a promise exists, and each suite of the
serial layer is named.

A name is that of a suite of C++ tests, file.Case of an end-to-end test, or a test's own name in CTest.

usage: named_tests.py SOURCE_FOLDER
"""
import pathlib
import re
import sys

# Suites about a part of the layer's own that nobody outside relies on.
INNER = {"ObserverListOfText", "WrittenOptionsWithoutParity", "Request", "PortManagerCallbacks",
         "PortManagerWithoutRemovals", "RequestWithALongLimit"}


def suites(folder):
    found = set()
    for source in folder.rglob("*.cpp"):
        found.update(re.findall(r"^TEST(?:_F|_P)?\((\w+),", source.read_text(encoding="utf-8"), re.MULTILINE))
    return found


def cases(folder):
    """The cases of the end-to-end tests, as file.Case."""
    return {"%s.%s" % (file.stem, name) for file in folder.glob("*_test.py")
            for name in re.findall(r"^def ([A-Z]\w*)", file.read_text(encoding="utf-8"), re.MULTILINE)}


def ctest_names(root):
    """The tests that have a name of their own in a build file, and the corpora of the fuzzers."""
    names = {"corpus." + file.stem for file in (root / "fuzz").glob("*_*.cpp")}
    for file in (root / "tests").rglob("CMakeLists.txt"):
        names.update(re.findall(r"NAME ([\w.]+)", file.read_text(encoding="utf-8")))
    return names


def named_in(document):
    """The names in the last column of its tables of three."""
    named = set()
    for line in document.read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.split("|")]
        if len(cells) == 5 and cells[3].startswith("`"):
            named.update(re.findall(r"`([\w.]+)`", cells[3]))
    return named


def main():
    root = pathlib.Path(sys.argv[1])
    serial = named_in(root / "docs" / "serial.md")
    security = named_in(root / "docs" / "security.md")
    known = suites(root / "tests") | cases(root / "tests" / "e2e") | ctest_names(root)
    unnamed = suites(root / "tests" / "unit" / "serial") | suites(root / "tests" / "serial_pty")
    complaints = ["%s is named, which is no test" % name for name in sorted((serial | security | INNER) - known)]
    complaints += ["docs/serial.md does not name %s" % suite for suite in sorted(unnamed - serial - INNER)]
    complaints += ["%s names no test at all" % name
                   for name, named in (("docs/serial.md", serial), ("docs/security.md", security)) if not named]
    for complaint in complaints:
        print(complaint, file=sys.stderr)
    return 1 if complaints else 0


sys.exit(main())
