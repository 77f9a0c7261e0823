#!/usr/bin/python3
"""Whether each test suite that docs/serial.md names as holding a promise exists, and each suite of the layer is named.

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


def main():
    root = pathlib.Path(sys.argv[1])
    named = set()
    for line in (root / "docs" / "serial.md").read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.split("|")]
        if len(cells) == 5 and cells[3].startswith("`"):
            named.update(re.findall(r"`(\w+)`", cells[3]))
    unknown = (named | INNER) - suites(root / "tests")
    unnamed = suites(root / "tests" / "unit" / "serial") | suites(root / "tests" / "serial_pty")
    unnamed -= named | INNER
    for suite in sorted(unknown):
        print(f"{suite} is named, which is no suite of tests", file=sys.stderr)
    for suite in sorted(unnamed):
        print(f"docs/serial.md does not name {suite}", file=sys.stderr)
    if not named:
        print("docs/serial.md names no suite at all", file=sys.stderr)
    return 1 if unknown or unnamed or not named else 0


sys.exit(main())
