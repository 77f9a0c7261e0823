"""The whole job, from signing in to new firmware, in the two ways of a person who cannot use a pointer."""
import os

from harness.firmware import FINISHED, PC_CONNECTED, begin, expect_image, image_of
from harness.screens import TABS
from harness.waiting import wait_for
from harness.world import situation
from service_test import ADA, FIELDS, LOOPBACK, ROOT, wait_for_fields

REGISTERED = ("Success", "Device Successfully Registered. Proceed to WiFi Setup.")
STORED = ("OK\n\r", "Success")
VERSION = ("9.50\n\r", "Device Firmware Version")


@situation(program=LOOPBACK)
def OverTheAccessibilityBusAlone(world):
    # No key reaches the program: no window of it is ever given the keyboard.
    program = world.program
    world.vorrano.do("addAccount", values=ADA)
    program.type("Account ID or email", "ada")
    program.type("Password", "secret1")
    program.press("Sign In")
    wait_for_fields(world, FIELDS)

    program.choose_tab("Register Vorrano")
    wait_for_mac_address(world)
    program.type("Name of your Vorrano", "Kitchen")
    program.press("Register")
    program.expect_alert(*REGISTERED)

    program.choose_tab("Wifi Setup")
    choose_over_the_bus(program, "Security type", "WPA2")
    program.type("Network name", "My Home Net")
    program.type("Wi-Fi password", "seven green bottles")
    for button in ("Save network name", "Save security type", "Save password"):
        program.press(button)
        program.expect_alert(*STORED)

    program.choose_tab("Utilities")
    program.press("Firmware Version")
    program.expect_alert(*VERSION)
    image = image_of(5)
    begin(world, image)
    program.expect_alert(*FINISHED)

    expect_done(world, image)


def choose_over_the_bus(program, name, title):
    combo, entries = program.combo(name), program.items(name)
    for entry in entries[1:entries.index(title) + 1]:
        combo.act("Increase")
        wait_for("%r to be chosen" % entry, lambda: combo.name == entry)


@situation(program=LOOPBACK)
def ByTheKeyboardAlone(world):
    hands = Hands(world)
    world.vorrano.do("addAccount", values=ADA)
    hands.at("Sign In")
    hands.write_into("Account ID or email", "alt+a", "ada")
    hands.write_into("Password", "Tab", "secret1")
    hands.press("Return")
    wait_for_fields(world, FIELDS)

    hands.at("Save account")
    hands.go_to_tab("Register Vorrano", "ctrl+Tab")
    wait_for_mac_address(world)
    hands.write_into("Name of your Vorrano", "alt+n", "Kitchen")
    hands.press("alt+r")
    hands.answer(*REGISTERED)

    hands.go_to_tab("Wifi Setup", "ctrl+Tab")
    hands.write_into("Network name", "alt+n", "My Home Net")
    hands.press("alt+m")
    hands.answer(*STORED)
    hands.press("alt+t", *["Down"] * 5)
    wait_for("WPA2", lambda: world.program.combo("Security type").name == "WPA2")
    hands.press("alt+y")
    hands.answer(*STORED)
    hands.write_into("Wi-Fi password", "alt+p", "seven green bottles")
    hands.press("alt+w")
    hands.answer(*STORED)

    hands.go_to_tab("Utilities", "ctrl+Tab")
    hands.press("alt+v")
    hands.answer(*VERSION)
    image = image_of(5)
    path = os.path.join(world.folder, "vorrano.hex")
    with open(path, "w", encoding="utf-8", newline="") as file:
        file.write(image)
    hands.press("alt+f")
    hands.refuse(PC_CONNECTED)
    hands.accept_proceeding()
    hands.write_into("File name", None, path)
    hands.press("Return")
    hands.answer(*FINISHED)

    expect_done(world, image)


class Hands:
    """A person at the keyboard, who looks at the screen and touches nothing else."""

    def __init__(self, world):
        self._world, self._program = world, world.program

    def at(self, button):
        """Waits for the window with this button, and for the keyboard to be with it."""
        node = self._program.button(button)
        wait_for("that window alone", lambda: len(self._program.windows()) == 1)
        self._world.display.give_keyboard(node)

    def press(self, *keys):
        self._world.display.keys(*keys)

    def write_into(self, name, way, text):
        """Goes to a field by a key, if it needs one, and types."""
        field = self._program.field(name) if way != "Tab" else None
        if way:
            self.press(way)
        field = field or self._program.field(name)
        wait_for("the focus of %r" % name, lambda: field.has("focused"))
        self._world.display.write(text)
        if not field.masked:
            wait_for("%r in %r" % (text, name), lambda: field.text == text)

    def go_to_tab(self, name, key):
        self.press(key)
        wait_for("the tab %r" % name, lambda: self._program.selected_tab() == name)
        assert name in TABS

    def answer(self, title, text):
        """Takes notice of an alert with Return."""
        alert = self._alert()
        assert (alert.title, alert.text) == (title, text), alert
        self._go_on(alert, "Return")

    def refuse(self, title):
        alert = self._alert()
        assert alert.title == title, alert
        self._go_on(alert, "Tab", "Return")

    def accept_proceeding(self):
        alert = self._alert()
        assert alert.title.startswith("You must have downloaded"), alert
        self._go_on(alert, "Return")
        field = self._program.field("File name")
        self._world.display.give_keyboard(field)

    def _alert(self):
        alert = self._program.alert()
        self._world.display.give_keyboard(alert.node)
        return alert

    def _go_on(self, alert, *keys):
        self.press(*keys)
        wait_for("%r to go" % alert, lambda: alert.node not in self._program.root.children)
        windows = self._program.windows()
        if windows and not self._program.alerts():
            self._world.display.give_keyboard(windows[-1])


def wait_for_mac_address(world):
    wait_for("the MAC query", lambda: world.vorrano.received == b"3")
    wait_for("its answer", lambda: any(event.get("event") == "sent" for event in world.vorrano.events))


def expect_done(world, image):
    assert world.vorrano.requests[-1] == ROOT + "insertAccountVorranos/1234/00:1E:5C:0A:1B:2C/Kitchen"
    device = world.vorrano.device
    assert (device["ssid"], device["securityType"], device["password"]) == ("My$Home$Net", 4, "seven green bottles")
    expect_image(world, image)
    wait_for("the new firmware", lambda: world.vorrano.device["firmwareVersion"] == "9.60")
