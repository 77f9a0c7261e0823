#!/usr/bin/python3
"""Whether docs/device.md lists each command of the device's language, and no other.

usage: device_language.py SOURCE_FOLDER
"""
import json
import pathlib
import re
import sys


def main():
    root = pathlib.Path(sys.argv[1])
    language = json.loads((root / "tests/support/device_language.json").read_text(encoding="utf-8"))
    commands = set()
    for command in language["commands"]:
        reply = command["reply"]
        if reply is None:
            rule = "each chunk by itself"
        elif not reply["shortest"]:
            rule = "at once"
        else:
            end = reply["end"].encode("unicode_escape").decode("ascii")
            rule = f"it has {reply['shortest']} bytes" + (f" and ends with `{end}`" if end else "")
        commands.add((command["code"], command["name"], command["argument"], rule))
    page = (root / "docs/device.md").read_text(encoding="utf-8")
    listed = set(re.findall(r"^\| `(.)` \| ([^|]+) \| ([^|]+) \| ([^|]+) \|", page, re.MULTILINE))
    for command in sorted(commands - listed):
        print("docs/device.md does not list %s" % (command,), file=sys.stderr)
    for command in sorted(listed - commands):
        print("docs/device.md lists %s, which is no command" % (command,), file=sys.stderr)
    return 1 if commands != listed else 0


sys.exit(main())
