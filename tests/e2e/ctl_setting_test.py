"""vorranoctl stores values, sets up the Wi-Fi network and resets."""
import os
import pty

from harness.tool import ToolWorld as WORLD  # noqa: F401
from harness.waiting import wait_for
from harness.world import situation

PATH, NODE = "/dev/cu.usbserial-V0", "/dev/ttyUSB0"
HELP = "\nTry 'vorranoctl --help'.\n"
WIFI = ["wifi", "--ssid", "My Home Net", "--security"]
IN_ARGUMENT = ("A secret is never taken from an argument, as others can read it there. Use --password-file, or let the "
               "terminal ask.")
DOLLAR = ("SSID cannot have a '$' sign. You will need to change your routers Wifi SSID to not include the '$' sign")
WIFI_DOLLAR = ("Wifi Password cannot have a '$' sign. You will need to change your routers Wifi Password to not include "
               "the '$' sign")
TYPES = "Please select a Security Type: Open, WEP-128, WPA1, WPA mixed, WPA2, WEP-64"
THROTTLE = "Invalid Throttle Value: Throttle should be between 20 and 90"

# Item, value, bytes that the device gets.
SETTINGS = (
    ("ssid", "My Home Net", b"8My$Home$Net\0"),
    ("ssid", "x" * 32, b"8" + b"x" * 32 + b"\0"),
    ("security", "WPA mixed", b"a\x03"),
    ("security", "wep-64", b"a\x08"),
    ("throttle", "21", b"e\x0e"),
    ("throttle", "90", b"e\x3c"),
    ("unit", "Celsius", b"g\x01"),
    ("unit", "fahrenheit", b"g\x00"),
)
# Arguments, standard input, reason.
REFUSED = (
    (["set", "ssid", ""], b"", "Please enter a valid SSID"),
    (["set", "ssid", "x" * 33], b"", "Network SSID cannot be greater than 32 characters"),
    (["set", "ssid", "a$b"], b"", DOLLAR),
    (["set", "ssid", os.fsdecode(b"\xff")], b"", "The network name is no UTF-8 text."),
    (["set", "ssid"], b"", "'set ssid' needs a value."),
    (["set", "security", "WPA3"], b"", TYPES),
    (["set", "throttle", "20"], b"", THROTTLE),
    (["set", "throttle", "91"], b"", THROTTLE),
    (["set", "unit", "Kelvin"], b"", "Please select a temperature unit: Fahrenheit, Celsius"),
    (["set", "colour", "red"], b"", "There is no 'colour' to set."),
    (["set", "password", "hunter2"], b"", IN_ARGUMENT),
    (["set", "wep-key", "hunter2"], b"", IN_ARGUMENT),
    (["set", "ssid", "a", "--password-file", "-"], b"", "--password-file goes with 'password' and 'wep-key' only."),
    (["set", "password", "--password-file", "-"], b"x" * 65, "Passwod cannot be greater than 64 characters"),
    (["set", "password", "--password-file", "-"], b"a\nb\n", "The secret has more than one line."),
    (["set", "password", "--password-file", "-"], b"a\xffb", "The secret is no UTF-8 text."),
    (["set", "password", "--password-file", "-"], b"a\0b", "The secret is no UTF-8 text."),
    (["set", "password", "--password-file", "-"], b"x" * 5000, "The secret is too long."),
    (["set", "password", "--password-file", "/nowhere"], b"", "The password file can't be read, or is empty."),
    (["set", "password", "--password-file", "/"], b"", "The password file can't be read, or is empty."),
    (["set", "wep-key", "--password-file", "-"], b"\n", "Please Enter WEP Key"),
    (["wifi", "--ssid", "a"], b"", "'wifi' needs --ssid and --security."),
    ([*WIFI, "WPA3"], b"", TYPES),
    (["wifi", "--ssid", "a$b", "--security", "WPA2"], b"", DOLLAR),
    ([*WIFI, "WPA2", "--password-file", "-"], b"a$b", WIFI_DOLLAR),
    ([*WIFI, "WPA2", "--password-file", "-"], b"x" * 65, "Password cannot be greater than 64 characters"),
    ([*WIFI, "Open", "--password-file", "-"], b"a", "An open network has no password."),
    (["reset", "everything"], b"", "There is no 'everything' to reset."),
    (["get", "colour"], b"", "There is no 'colour' to get."),
)


def StoresEachValue(world):
    for item, value, sent in SETTINGS:
        world.vorrano.forget()

        world.expect(["set", item, value], "OK\n")

        assert world.vorrano.received == sent, (item, world.vorrano.received)


def StoresEachValueInJson(world):
    for item, value, _ in SETTINGS:
        assert world.records("set", item, value) == [{"port": PATH, "node": NODE, "ok": True, "values": {item: "OK"}}]


def StoresASecretFromAFileOrFromStandardInput(world):
    file = world.file("secret", b"pass word\r\n")
    for arguments, given, sent in ((["password", "--password-file", file], b"", b"9pass word\0"),
                                   (["password", "--password-file", "-"], b"a$\xc3\xa4", b"9a$\xc3\xa4\0"),
                                   (["wep-key", "--password-file", "-"], b"0123456789\n", b"b0123456789\0")):
        world.vorrano.forget()

        world.expect(["set", *arguments], "OK\n", given=given)

        assert world.vorrano.received == sent, world.vorrano.received


class Person:
    """A person at a terminal in which the tool runs."""

    def __init__(self, world, *arguments):
        self.pid, self._terminal = pty.fork()
        if self.pid == 0:
            os.execve(world.command(arguments)[0], world.command(arguments), world.environment())
        self.seen = b""

    def read(self):
        try:
            self.seen += os.read(self._terminal, 4096)
        except OSError:
            return False
        return True

    def sees(self, text):
        while text not in self.seen and self.read():
            pass
        return text in self.seen

    def types(self, text):
        os.write(self._terminal, text)

    def status(self):
        while self.read():
            pass
        os.close(self._terminal)
        return os.waitstatus_to_exitcode(os.waitpid(self.pid, 0)[1])


def AsksThePersonForASecretWithoutShowingIt(world):
    person = Person(world, "set", "password")
    assert person.sees(b"Network password: "), person.seen

    person.types(b"hunter2\n")

    assert person.status() == 0, person.seen
    assert b"hunter2" not in person.seen, person.seen
    assert world.vorrano.received == b"9hunter2\0", world.vorrano.received


def RefusesToAskWhereThereIsNoTerminal(world):
    ended = world.run("set", "password", before=("setsid",))

    assert (ended.returncode, ended.stdout) == (2, b""), ended
    assert ended.stderr.decode() == ("vorranoctl: There is no terminal to ask for the secret. Use --password-file." +
                                     HELP), ended


def RefusesWhatTheTabsRefuse(world):
    for arguments, given, reason in REFUSED:
        world.expect(arguments, "", 2, "vorranoctl: " + reason + HELP, given=given)

    assert world.vorrano.received == b"", world.vorrano.received


def GivesTheVorranoItsNetwork(world):
    for security, given, rest, line in (
            ("WPA2", b"secret", b"a\x049secret\0", "ssid: OK, security: OK, password: OK\n"),
            ("WEP-128", b"0123", b"a\x01b0123\0", "ssid: OK, security: OK, wep-key: OK\n"),
            ("Open", None, b"a\x00", "ssid: OK, security: OK\n")):
        world.vorrano.forget()
        secret = [] if given is None else ["--password-file", "-"]

        world.expect([*WIFI, security, *secret], line, given=given)

        assert world.vorrano.received == b"8My$Home$Net\0" + rest, world.vorrano.received


def EndsTheNetworksSettingsWithTheFirstThatFails(world):
    world.vorrano.fault("silence", command="a")
    file = world.file("secret", b"secret")

    records = world.records(*WIFI, "WPA2", "--password-file", file, status=1)

    assert records == [{"port": PATH, "node": NODE, "ok": False, "values": {"ssid": "OK"},
                        "error": "The device did not answer. Please try again"}], records
    assert world.vorrano.received == b"8My$Home$Net\0a\x04", world.vorrano.received


@situation(vorranos=3)
def StoresAValueInAllVorranos(world):
    lines = world.expect(["set", "unit", "Celsius", "--all"]).splitlines()

    assert sorted(lines) == [vorrano.path + ": OK" for vorrano in world.vorranos], lines
    assert [vorrano.simulator.device["unit"] for vorrano in world.vorranos] == [1, 1, 1]


def SaysThatTheDeviceDidNotAcknowledge(world):
    world.vorrano.fault("silence")
    world.expect(["set", "throttle", "30"], "", 1,
                 "vorranoctl: %s: The device did not answer. Please try again\n" % PATH)


def SaysThatTheUnitWasNotAcknowledged(world):
    world.vorrano.fault("answer", command="g", bytes="NO\n\r")
    world.expect(["set", "unit", "Celsius"], "", 1, "vorranoctl: %s: The device gave an answer that is none.\n" % PATH)


def SaysThatTheCableWasPulledFromASetting(world):
    world.vorrano.fault("silence")
    tool = world.start(*WIFI, "Open")
    wait_for("the name", lambda: world.vorrano.received == b"8My$Home$Net\0")

    world.vorranos[0].pull_the_cable()

    output, error = tool.communicate(timeout=30)
    assert (tool.returncode, output) == (1, b""), error
    assert error.decode() == "vorranoctl: %s: The cable was pulled.\n" % PATH, error


def ResetsTheDeviceAndTheModem(world):
    for item, sent, line in (("device", b"7", "Finished Resetting Device\n"),
                             ("modem", b"6", "Finished Resetting Modem\n")):
        world.vorrano.forget()

        world.expect(["reset", item], line)

        wait_for("the command", lambda: world.vorrano.received == sent)
        wait_for("the device", lambda: world.vorrano.state["mode"] == "normal")


def ResetsInJson(world):
    assert world.records("reset", "modem") == [
        {"port": PATH, "node": NODE, "ok": True, "values": {"modem": "Finished Resetting Modem"}}]


@situation(vorranos=0)
def SaysThatThereIsNoVorranoToSet(world):
    for arguments in (["set", "throttle", "30"], [*WIFI, "Open"], ["reset", "device"]):
        world.expect(arguments, "", 3, "vorranoctl: No Vorrano is connected. Plug it in with its USB cable.\n")
