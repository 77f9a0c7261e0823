#!/usr/bin/env python3
"""Checks that each file uses the names that it takes from other namespaces. The lint can't: it reads files together.

usage: usings.py PROJECT_FOLDER      prints each unused name and ends with 1 when there is one
       usings.py --self-test         shows that an unused name is found
"""
import pathlib
import re
import sys

TAKEN = re.compile(r"^[ \t]*(?:using (?:[\w:]+::)(\w+);|namespace (\w+) = [\w:]+;)[^\n]*$", re.MULTILINE)


def unused_names(text):
    taken = [first or second for first, second in TAKEN.findall(text)]
    rest = re.sub(r"//.*|\"(?:[^\"\\\n]|\\.)*\"", "", TAKEN.sub("", text))
    return [name for name in taken if not re.search(r"\b%s\b" % name, rest)]


def check(project):
    folders = ("src", "simulator", "tests", "bench", "fuzz")
    files = [file for folder in folders for file in project.glob(folder + "/**/*.cpp")]
    if not files:
        raise SystemExit("%s has nothing to look at" % project)
    found = ["%s: %s" % (file, name) for file in files for name in unused_names(file.read_text(encoding="utf-8"))]
    print("\n".join(found))
    return 1 if found else 0


def self_test():
    assert unused_names("using std::move;\nusing a::b::C;\n  using x::Y;\nC c; // move\n\"Y\"\n") == ["move", "Y"]
    assert unused_names("namespace fs = std::filesystem;\nint i = 0;\n") == ["fs"]
    assert not unused_names("using std::move;\nnamespace fs = std::filesystem;\nmove(fs::path());\n")
    return 0


if __name__ == "__main__":
    sys.exit(self_test() if sys.argv[1] == "--self-test" else check(pathlib.Path(sys.argv[1])))
