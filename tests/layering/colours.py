#!/usr/bin/env python3
"""Checks that the screens take every colour from the person's palette, so that dark and high contrast ones hold.

usage: colours.py PROJECT_FOLDER     prints each fixed colour and ends with 1 when there is one
       colours.py --self-test        shows that fixed colours of every kind are found
"""
import pathlib
import re
import sys

IN_CODE = re.compile(r"QColor\s*[({]|QColorConstants|\bqRgba?\b|setStyleSheet|"
                     r"Qt::(white|black|(dark|light)?[Gg]r[ae]y|(dark)?([Rr]ed|[Gg]reen|[Bb]lue|[Cc]yan|[Mm]agenta|[Yy]ellow))\b")
IN_LAYOUT = re.compile(r"styleSheet|<palette|<color|bgcolor|color\s*[=:]|#[0-9a-fA-F]{3,8}\b")


def fixed_colours(text, pattern):
    return [line for line in text.splitlines() if pattern.search(line)]


def check(project):
    found = []
    for pattern, files in ((IN_CODE, [*project.glob("src/**/*.cpp"), *project.glob("src/**/*.h")]),
                           (IN_LAYOUT, [*project.glob("layouts/*.ui")])):
        if not files:
            raise SystemExit("%s has nothing to look at" % project)
        for file in files:
            found += ["%s: %s" % (file, line.strip())
                      for line in fixed_colours(file.read_text(encoding="utf-8"), pattern)]
    print("\n".join(found))
    return 1 if found else 0


def self_test():
    code = ["QColor(10, 20, 30)", "QColor{1}", "setStyleSheet(sheet)", "pen(Qt::darkGray)", "qRgb(1, 2, 3)", "Qt::red"]
    layout = ['<property name="styleSheet">', "<color alpha='255'>", "color: red", "#ff0000", "<palette>"]
    allowed = ["QColor colour = palette().color(QPalette::Window);", "Qt::ReadOnly"]
    assert all(fixed_colours(line, IN_CODE) for line in code)
    assert all(fixed_colours(line, IN_LAYOUT) for line in layout)
    assert not any(fixed_colours(line, IN_CODE) for line in allowed)
    return 0


if __name__ == "__main__":
    sys.exit(self_test() if sys.argv[1] == "--self-test" else check(pathlib.Path(sys.argv[1])))
