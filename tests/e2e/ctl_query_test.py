"""vorranoctl lists the ports and asks the Vorranos for their values."""
import json
import os

from harness.tool import ToolWorld as WORLD  # noqa: F401
from harness.waiting import wait_for
from harness.world import situation

# Item, answer as text, answer in JSON.
ANSWERS = (
    ("power", "USB power", "USB power"),
    ("adc", "ADC V1.4", "ADC V1.4"),
    ("connection", "Not connected 0", "Not connected 0"),
    ("mac", "00:1E:5C:0A:1B:2C", "00:1E:5C:0A:1B:2C"),
    ("firmware", "9.50", "9.50"),
    ("wifi-firmware", "Wifi 2.36.1", "Wifi 2.36.1"),
    ("ssid", "Not set", "Not set"),
    ("password", "none", "none"),
    ("throttle", "60", 60),
    ("unit", "Fahrenheit", "Fahrenheit"),
)
PATH, NODE = "/dev/cu.usbserial-V0", "/dev/ttyUSB0"
# Root opens any file by these rights.
WITHOUT_ROOTS_RIGHTS = ("setpriv", "--bounding-set", "-dac_override,-dac_read_search")
TRY_AGAIN = "vorranoctl: %s: The device did not answer. Please try again\n" % PATH


def AnswersEachQuestion(world):
    for item, text, _ in ANSWERS:
        world.expect(["get", item], text + "\n")


def AnswersEachQuestionInJson(world):
    for item, _, value in ANSWERS:
        assert world.records("get", item) == [{"port": PATH, "node": NODE, "ok": True, "values": {item: value}}]


def PutsTogetherAnAnswerThatComesInPieces(world):
    for item, text, _ in ANSWERS:
        world.vorrano.do("clearFaults")
        world.vorrano.fault("split", at=[4] if item in ("power", "throttle") else [1, 5, 9])

        world.expect(["get", item], text + "\n")


def KeepsAnAnswerOnItsLine(world):
    world.vorrano.fault("answer", command="0", bytes="a\n\x1b[2Jb\n\r")

    world.expect(["get", "power"], "a\\n\\x1b[2Jb\n")


@situation(vorranos=2)
def ListsEachPort(world):
    lines = world.expect(["list"]).splitlines()

    assert [line.split() for line in lines] == [
        ["PORT", "NODE", "VORRANO", "ADAPTER", "SERIAL", "ALLOWED", "USED", "BY"],
        [PATH, NODE, "yes", "FT232R", "USB", "UART", "V0", "yes", "-"],
        ["/dev/cu.usbserial-V1", "/dev/ttyUSB1", "yes", "FT232R", "USB", "UART", "V1", "yes", "-"]], lines


def ListsEachPortInJson(world):
    listed = world.records("list")
    assert listed == [{"port": PATH, "node": NODE, "vorrano": True, "adapter": "FT232R USB UART",
                       "serial": "V0", "allowed": True, "usedBy": None}], listed


@situation(vorranos=0)
def ListsNothingWhereThereIsNoPort(world):
    assert world.records("list") == []


@situation(vorranos=3)
def AsksThePortsThatAreNamedByPathByNodeAndByALink(world):
    link = os.path.join(world.folder, "my-vorrano")
    # The tool resolves the link in its own view of the devices.
    os.symlink(os.path.join(world.computer.root, "dev", "ttyUSB2"), link)

    ended = world.run("get", "mac", "--port", PATH, "-p", "/dev/ttyUSB0", "--port", link)

    assert ended.returncode == 0, ended
    assert sorted(ended.stdout.decode().splitlines()) == [
        "/dev/cu.usbserial-V0: 00:1E:5C:0A:1B:2C", "/dev/cu.usbserial-V2: 00:1E:5C:0A:1B:2C"], ended


@situation(vorranos=2)
def AsksAllVorranos(world):
    world.vorranos[1].simulator.do("set", macAddress="AA:BB:CC:DD:EE:FF")

    lines = world.expect(["get", "mac", "--all"]).splitlines()

    assert sorted(lines) == ["/dev/cu.usbserial-V0: 00:1E:5C:0A:1B:2C", "/dev/cu.usbserial-V1: AA:BB:CC:DD:EE:FF"]


@situation(vorranos=2)
def WillNotGuessWhichVorranoIsMeant(world):
    world.expect(["get", "mac"], "", 2,
                 "vorranoctl: Several Vorranos are connected. Choose with --port, or take --all.\n")

    assert all(vorrano.simulator.received == b"" for vorrano in world.vorranos)


@situation(vorranos=0)
def SaysThatThereIsNoVorrano(world):
    for arguments in (["get", "mac"], ["get", "mac", "--all"]):
        world.expect(arguments, "", 3,
                     "vorranoctl: No Vorrano is connected. Plug it in with its USB cable.\n")


def SaysThatThereIsNoSuchPort(world):
    world.expect(["get", "mac", "--port", PATH, "--port", "/dev/ttyUSB7"], "", 3,
                 "vorranoctl: There is no serial port '/dev/ttyUSB7'.\n")

    assert world.vorrano.received == b""


def SaysThatTheDeviceDidNotAnswer(world):
    world.vorrano.fault("silence")

    world.expect(["get", "mac"], "", 1, TRY_AGAIN)


def SaysInJsonThatTheDeviceDidNotAnswer(world):
    world.vorrano.fault("silence")

    assert world.records("get", "unit", status=1) == [
        {"port": PATH, "node": NODE, "ok": False, "values": {},
         "error": "The device did not answer. Please try again"}]


def SaysThatAnAnswerBrokeOff(world):
    world.vorrano.fault("cut", count=2)

    world.expect(["get", "mac"], "", 1,
                 "vorranoctl: %s: The device's answer broke off. Please try again\n" % PATH)


def SaysThatAnAnswerIsNone(world):
    world.vorrano.fault("answer", command="h", bytes="7\n\r")

    world.expect(["get", "unit"], "", 1, "vorranoctl: %s: The device gave an answer that is none.\n" % PATH)


@situation(vorranos=2)
def TellsOfTheDeviceThatFailedBesideOneThatAnswered(world):
    world.vorrano.fault("silence")

    world.expect(["get", "mac", "--all"], "/dev/cu.usbserial-V1: 00:1E:5C:0A:1B:2C\n", 1, TRY_AGAIN)


def SaysThatTheCableWasPulled(world):
    world.vorrano.fault("silence")
    tool = world.start("get", "mac")
    wait_for("the question", lambda: world.vorrano.received == b"3")

    world.vorranos[0].pull_the_cable()

    output, error = tool.communicate(timeout=30)
    assert (tool.returncode, output) == (1, b""), error
    assert error.decode() == "vorranoctl: %s: The cable was pulled.\n" % PATH, error


def EndsInterrupted(world):
    world.vorrano.fault("silence")
    tool = world.start("get", "mac")
    wait_for("the question", lambda: world.vorrano.received == b"3")

    tool.send_signal(2)

    output, error = tool.communicate(timeout=30)
    assert (tool.returncode, output) == (1, b""), error
    assert error.decode() == "vorranoctl: %s: Interrupted.\n" % PATH, error


def LeavesThePortThatAnotherProgramHas(world):
    world.vorrano.fault("silence")
    first = world.start("get", "mac")
    wait_for("the question", lambda: world.vorrano.received == b"3")

    world.expect(["get", "mac"], "", 1, "vorranoctl: %s: The port is in use by another program.\n" % PATH)

    first.communicate(timeout=30)


@situation(vorranos=16)
def AsksAllSixteenBeforeTheFirstAnswers(world):
    for vorrano in world.vorranos:
        vorrano.simulator.fault("silence")
    tool = world.start("get", "mac", "--all", "--json")

    wait_for("each question", lambda: all(vorrano.simulator.received == b"3" for vorrano in world.vorranos))
    for vorrano in world.vorranos:
        vorrano.simulator.do("say", bytes="00:1E:5C:0A:1B:2C\n\r")

    output, error = tool.communicate(timeout=30)
    assert (tool.returncode, error) == (0, b""), error
    records = [json.loads(line) for line in output.decode().splitlines()]
    assert {record["port"] for record in records} == {vorrano.path for vorrano in world.vorranos}


def SaysThatItIsNotAllowedToOpenThePort(world):
    os.chmod(world.vorrano.node, 0)

    tool = world.run("get", "mac", before=WITHOUT_ROOTS_RIGHTS)

    assert (tool.returncode, tool.stdout) == (4, b""), tool
    assert b"You are not allowed to open the port." in tool.stderr, tool


def SaysThatItsOutputDidNotGoOut(world):
    with open("/dev/full", "wb") as full:
        tool = world.start("get", "mac", stdout=full)

        _, error = tool.communicate(timeout=30)

    assert (tool.returncode, error) == (1, b"vorranoctl: write error: No space left on device\n"), (tool, error)
