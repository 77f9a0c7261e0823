"""The buttons that send the device's commands, from the tests' own table."""
import json
import pathlib

TABLE = pathlib.Path(__file__).resolve().parents[2] / "support" / "device_language.json"


def buttons_of(screen):
    with open(TABLE, encoding="utf-8") as file:
        return [button for button in json.load(file)["buttons"] if button["screen"] == screen]


def fill(program, button):
    """Types and chooses what the button sends."""
    for field in button.get("fields", []):
        if "list" in field:
            program.choose(field["label"], field["value"])
        else:
            program.type(field["label"], field["value"])
