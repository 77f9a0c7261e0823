#!/usr/bin/env python3
"""Checks that each folder of src/ includes only what the picture in docs/architecture.md lets it.

usage: layering.py SOURCE_FOLDER     prints each wrong include and ends with 1 when there is one
       layering.py --self-test       shows that wrong includes of every kind are found
"""
import pathlib
import re
import sys
import tempfile

# The folders from the ground up, each with the folders below it that it may include, besides itself. A folder names only
# folders that stand above it in this list, so no arrow runs back up.
GROUND = ["platform", "session", "text"]
ALLOWED = {
    "text": [],
    "session": [],
    "platform": [],
    "serial": ["platform"],
    "web": ["platform", "text"],
    "device": GROUND + ["serial", "web"],
    "cloud": GROUND + ["serial", "web", "device"],
    "app/shell": GROUND + ["serial", "web", "device", "cloud"],
    "platform/posix": ["platform", "text"],
    "platform/linux": ["platform"],
    "platform/curl": ["platform"],
    "platform/asio": ["platform"],
    "platform/qtcore": ["platform"],
    "platform/qt": ["platform", "platform/qtcore"],
    "ctl": GROUND + ["serial", "device"],
    "app": None,  # the programs: they compose everything
    "ctl/program": None,
}
# What the adapters are made of; nobody else may know it.
FOREIGN = re.compile(r"^(Q[A-Z]\w*|Qt\w*/.*|asio(/|\.hpp).*|curl/.*|fontconfig/.*|libudev\.h|libmnl/.*|linux/.*|"
                     r"dbus/.*)$")
# The folders of the logic that know a library.
JSON_FOLDERS = ("web", "ctl")
PROGRAMS = ("app", "ctl/program")
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]')


def folder_of(path):
    """The longest folder of ALLOWED that the path lies in."""
    parts = path.split("/")[:-1]
    while parts and "/".join(parts) not in ALLOWED:
        parts.pop()
    return "/".join(parts)


def arrows_back_up():
    below = set()
    for folder, allowed in ALLOWED.items():
        for other in allowed or []:
            if other not in below:
                yield "%s may include %s, which does not stand below it" % (folder, other)
        below.add(folder)


def wrong_includes(root):
    root = pathlib.Path(root)
    for file in sorted(root.rglob("*")):
        if file.suffix not in (".h", ".cpp"):
            continue
        name = file.relative_to(root).as_posix()
        folder = folder_of(name)
        if not folder:
            yield "%s: a folder that the picture does not show" % name
            continue
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
            found = INCLUDE.match(line)
            if found:
                complaint = judge(folder, found.group(1), found.group(2))
                if complaint:
                    yield "%s:%d: %s includes %s: %s" % (name, number, folder, found.group(2), complaint)


def judge(folder, quote, target):
    allowed = ALLOWED[folder]
    if quote == '"' and "/" in target:
        other = folder_of(target)
        if not other:
            return "not a folder of the project"
        if allowed is not None and other != folder and other not in allowed:
            return "may not be called from there"
    elif quote == "<":
        adapter = folder in PROGRAMS or folder.startswith("platform/")
        if FOREIGN.match(target) and not adapter:
            return "a library of the adapters"
        if target.startswith("nlohmann/") and folder not in JSON_FOLDERS:
            return "only %s know JSON" % " and ".join(JSON_FOLDERS)
    return None


def self_test():
    cases = {
        "serial/A.cpp": ['#include "device/X.h"', '#include "platform/posix/LinuxTerminal.h"', "#include <QString>",
                         "#include <asio.hpp>", "#include <nlohmann/json.hpp>", "#include <libudev.h>"],
        "platform/A.h": ["#include <QtWidgets/QWidget>", "#include <curl/curl.h>", "#include <fontconfig/fontconfig.h>",
                         '#include "serial/SerialPort.h"'],
        "cloud/A.cpp": ['#include "app/shell/SetupMenuViewController.h"'],
        "session/A.cpp": ['#include "platform/MainQueue.h"'],
        "web/A.cpp": ['#include "cloud/AccountForm.h"'],
        "platform/qt/A.cpp": ['#include "platform/asio/AsioBackgroundQueue.h"'],
        "elsewhere/A.cpp": ["#include <vector>"],
    }
    good = {
        "serial/B.cpp": ['#include "serial/SerialPort.h"', '#include "platform/Terminal.h"', "#include <vector>"],
        "web/B.cpp": ["#include <nlohmann/json.hpp>"],
        "platform/qt/B.cpp": ["#include <QWidget>", '#include "platform/Layouts.h"', '#include "ui_Layout.h"'],
        "app/main.cpp": ['#include "platform/qt/QtMainLoop.h"', '#include "app/shell/VorranoAppDelegate.h"'],
    }
    with tempfile.TemporaryDirectory() as folder:
        for files in (cases, good):
            for name, lines in files.items():
                path = pathlib.Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text("\n".join(lines) + "\n")
        found = list(wrong_includes(folder))
    wanted = sum(len(lines) for lines in cases.values())
    if len(found) != wanted or any("/B.cpp" in line or "main.cpp" in line for line in found):
        print("\n".join(found))
        print("found %d of %d wrong includes" % (len(found), wanted))
        return 1
    return 0


def main():
    if sys.argv[1:] == ["--self-test"]:
        return self_test()
    found = list(arrows_back_up()) + list(wrong_includes(sys.argv[1]))
    print("\n".join(found) if found else "every include is allowed")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
