#!/usr/bin/python3
"""Makes a tour of the demo by itself, as a screen reader's user would, and leaves pictures with a page of them.

usage: dbus-run-session -- tour.py BUILD_FOLDER PICTURE_FOLDER
It exits with another status than 0, and writes no page, when a step does not end as expected.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent.parent / "tests" / "e2e"))
from harness.bus import Bus  # noqa: E402
from harness.display import Display  # noqa: E402
from harness.firmware import FINISHED, PC_CONNECTED, expect_proceed_question, image_of  # noqa: E402
from harness.program import Program  # noqa: E402
from harness.simulator import Control  # noqa: E402
from harness.waiting import wait_for  # noqa: E402
from pictures import Album, picture, still_picture, windows  # noqa: E402

NEW_ACCOUNT = {"Account ID": "ada", "Password": "copper kettle", "Confirm password": "copper kettle",
               "Guest password": "tin teapot", "Confirm guest password": "tin teapot", "Email": "ada@vorrano.example",
               "Name": "Ada Byron", "Address": "12 Garden Lane", "City": "Springfield", "State or province": "Ohio",
               "Zip or postal code": "45501", "Country": "USA"}
SAVED = ("Success!", "Account Information Saved Successfully. Proceed to Register Vorrano")
REGISTERED = ("Success", "Device Successfully Registered. Proceed to WiFi Setup.")
STORED = ("OK\n\r", "Success")
SECRETS = ("password", "wepKey")
WIDE, NARROW = (18, 48), (180, 190)


class Tour:
    def __init__(self, build, folder, display, album):
        self._bus, self._album = Bus(), album
        self._folder = tempfile.mkdtemp(prefix="tour-")
        home = pathlib.Path(self._folder, "ada")
        environment = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_QPA_PLATFORM="xcb", HOME=str(home))
        log = pathlib.Path(self._folder, "log")
        self._downloads = home / "Downloads"
        self._downloads.mkdir(parents=True)
        self.program = Program(self._bus, display, os.path.join(build, "vorrano-demo"), environment, log,
                               self._downloads)
        said = wait_for("the simulator's address", lambda: re.search("controlled at (.*)", log.read_text()))
        self.vorrano = Control(said.group(1))

    # Seeing

    def picture(self, name, caption):
        self._arrange()
        self._album.add(name, caption, still_picture)

    def passing_picture(self, name, caption):
        """Of what has moved on when the screen is still."""
        self._album.add(name, caption, picture)

    def _arrange(self):
        """The program's windows go to the left, so that the Vorrano is seen beside them."""
        for window in windows():
            place = WIDE if window.width > 800 else NARROW
            if window.title == "Vorrano Setup" and window.width > 500 and (window.x, window.y) != place:
                subprocess.run(["xdotool", "windowmove", "--sync", str(window.number), *map(str, place)], check=True)

    def alert(self, title, text, *picture):
        alert = self.program.alert()
        if (alert.title, alert.text) != (title, text):
            raise AssertionError("%r instead of %r, %r" % (alert, title, text))
        if picture:
            self.picture(*picture)
        self.program.dismiss(alert)

    def face(self, text):
        """Whether the Vorrano's screen shows the text."""
        return any(node.find_all("label", text) for node in self._bus.applications("vorrano-simulator"))

    # The steps

    def sign_in(self):
        self.program.button("Sign In")
        self.picture("sign-in", "The program starts with the sign-in. The simulated Vorrano stands beside it, its cable in.")
        self.program.type("Account ID or email", "demo")
        self.program.type("Password", "vorrano")
        self.program.press("Sign In")
        wait_for("the account", lambda: self.program.field("Email").text == "demo@vorrano.example")
        self.picture("signed-in", "Signed in: the account comes from the service, its passwords masked.")

    def create_account(self):
        self.program.button("Sign In")
        self._arrange()
        self.program.press("Create Account")
        self.program.find("push button", "Accept")
        self.picture("agreement", "A new account begins with the licence agreement.")
        self.program.press("Accept")
        self.program.button("Save account")
        self._arrange()
        for name, text in NEW_ACCOUNT.items():
            self.program.type(name, text)
        self.picture("account", "The account is filled in.")
        self.program.press("Save account")
        self.alert(*SAVED, "account-saved", "The service has taken the new account.")

    def register(self):
        self.program.choose_tab("Register Vorrano")
        wait_for("the MAC address", lambda: b"3" in self.vorrano.received)
        self.program.type("Name of your Vorrano", "Kitchen")
        self.picture("register", "The Vorrano on the cable gets a name.")
        self.program.press("Register")
        self.alert(*REGISTERED, "registered", "It is registered to the account.")

    def wifi(self):
        program = self.program
        program.choose_tab("Wifi Setup")
        program.press("Use this network")
        program.choose("Security type", "WPA2")
        program.type("Network name", "My Home Net")
        program.type("Wi-Fi password", "seven green bottles")
        self.picture("wifi", "The Wi-Fi: the networks in range are listed, the one at home is chosen.")
        program.press("Save network name")
        self.alert(*STORED, "wifi-saved", "The Vorrano has stored the network's name.")
        program.press("Save security type")
        self.alert(*STORED)
        program.press("Save password")
        self.alert(*STORED)
        program.press("Check network name")
        self.alert("My Home Net\n\n\r", "Success", "wifi-checked", "Asked, it says which network it has.")
        program.press("Reset Vorrano")
        self.alert("Finished Resetting Device", "Success")
        wait_for("the network", lambda: self.face("On My Home Net"))
        self.picture("wifi-joined", "After a reset it is on the network.")

    def utilities(self):
        program = self.program
        program.choose_tab("Utilities")
        program.choose("Temperature unit", "Celsius")
        self.picture("utilities", "The utilities: everything that the Vorrano can be asked or told.")
        program.press("Set temperature unit")
        self.alert("OK\n\r", "", "celsius", "Its screen shows Celsius now.")
        program.press("Firmware Version")
        self.alert("9.50\n\r", "Device Firmware Version", "version", "It runs firmware 9.50.")

    def cable(self):
        self.vorrano.do("unplug")
        wait_for("the line", lambda: self.program.shows("No Vorrano is connected. Plug it in with its USB cable."))
        self.picture("cable-pulled", "The cable is pulled: the program says so, and waits for it to come back.")
        self.vorrano.do("plug")
        wait_for("the line to go", lambda: not self.program.shows(
            "No Vorrano is connected. Plug it in with its USB cable."))

    def firmware(self):
        program = self.program
        image = self._downloads / "vorrano.hex"
        image.write_text(image_of(24), newline="")
        program.press("Update Firmware")
        alert = program.alert()
        assert alert.title == PC_CONNECTED, alert
        self.picture("firmware-question", "A firmware update asks what the Vorrano's screen shows.")
        program.dismiss(alert, "Yes")
        wait_for("the next question", lambda: any(alert.title.startswith("You must") for alert in program.alerts()))
        self.picture("firmware-download", "There is newer firmware. Its file has to be downloaded before.")
        expect_proceed_question(program, "Yes")
        program.press("List View")
        program.type("File name", image.name)
        self.picture("firmware-file", "The file is chosen.")
        program.press("Open")
        wait_for("half of the image", lambda: self.vorrano.state["imageSize"] > 500)
        self.passing_picture("firmware-upload",
                             "The new firmware is on its way; the program and the Vorrano show how much has come.")
        self.alert(*FINISHED, "firmware-finished", "The update has finished.")
        wait_for("the new firmware", lambda: self.vorrano.state["mode"] == "normal" and
                 self.vorrano.device["firmwareVersion"] == "9.60")
        program.press("Firmware Version")
        self.alert("9.60\n\r", "Device Firmware Version", "new-version", "It runs firmware 9.60.")

    # The end

    def print_device(self):
        print("\nThe simulated Vorrano now holds:")
        for name, value in sorted(self.vorrano.device.items()):
            print("  %-20s %s" % (name, "••••" if value and name in SECRETS else value))

    def close(self):
        self.vorrano.close()
        status = self.program.end()
        shutil.rmtree(self._folder, ignore_errors=True)
        if status != 0:
            raise AssertionError("the program ended with %d" % status)


def walk(tour, steps):
    try:
        for step in steps:
            getattr(tour, step)()
    except Exception:
        print("\nThe tour ends here: %s went wrong." % step.replace("_", " "), flush=True)
        raise
    finally:
        tour.close()


def main():
    build, folder = sys.argv[1:]
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    # Wide enough for the setup window and the simulated Vorrano beside each other.
    display, album = Display(1440, 810), Album(folder)
    try:
        walk(Tour(build, folder, display, album), ["sign_in"])
        walk(Tour(build, folder, display, album),
             ["create_account", "register", "wifi", "utilities", "cable", "firmware", "print_device"])
    finally:
        display.stop()
    print("\nPictures: %s" % os.path.abspath(album.write_page()))


if __name__ == "__main__":
    main()
