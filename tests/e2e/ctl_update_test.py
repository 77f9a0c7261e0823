"""vorranoctl updates the firmware."""
import os
import pty
import re
import threading

from harness.firmware import wait_for_upload
from harness.logind import logind
from harness.tool import ToolWorld as WORLD  # noqa: F401
from harness.waiting import wait_for
from harness.world import situation

PATH, NODE = "/dev/cu.usbserial-V0", "/dev/ttyUSB0"
HELP = "\nTry 'vorranoctl --help'.\n"
NO_HEX = "The firmware image is no Intel HEX file: "
FORCE = ". --force sends it all the same."
DATA, END = b":0300300002337A1E\r\n", b":00000001FF\r\n"
SLEEP = ("sleep:idle:handle-lid-switch:shutdown", "block")
SURE = (b"An upload is under way. A Vorrano whose upload is cut off has no firmware. Press Ctrl-C again to cut it "
        b"off.\n")
# An image, what is wrong with it.
REFUSED = (
    (b"", NO_HEX + "its end record is missing" + FORCE),
    (DATA, NO_HEX + "its end record is missing" + FORCE),
    (DATA.replace(b"1E", b"1F") + END, NO_HEX + "line 1 has a wrong checksum" + FORCE),
    (DATA + b"hello\n" + END, NO_HEX + "line 2 is no record" + FORCE),
    (DATA + b":03003000\n" + END, NO_HEX + "line 2 is no record" + FORCE),
    (END + DATA, NO_HEX + "line 2 comes after the end record" + FORCE),
    (b"\xff\xfe", "The firmware image is no text file."),
)
PROGRESS = re.compile(re.escape(PATH) + r": line \d+ of 21")


def hex_image(lines):
    """An image of so many lines whose checksums are right; each line ends with a carriage return and a line feed."""
    text = ""
    for i in range(lines - 1):
        record = bytes([4, i // 256, i % 256, 0, 1, 2, 3, 4])
        text += ":" + (record + bytes([-sum(record) % 256])).hex().upper() + "\r\n"
    return text + END.decode()


def expect_image(vorrano, image):
    """The simulator may read what the tool wrote some time after that."""
    wait_for("the image", lambda: vorrano.simulator.do("image")["bytes"] == image.replace("\n", ""))


def file_of(world, text):
    return world.file("vorrano.hex", text.encode())


class Terminal:
    """A terminal that the tool's standard error is."""

    def __init__(self):
        self.ours, self.theirs = pty.openpty()
        self.seen = b""
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def _read(self):
        try:
            while True:
                self.seen += os.read(self.ours, 4096)
        except OSError:
            pass

    def close(self):
        os.close(self.theirs)
        self._reader.join(10)
        os.close(self.ours)


def SendsTheImage(world):
    image = hex_image(20)

    ended = world.run("update", file_of(world, image))

    assert (ended.returncode, ended.stdout) == (0, b"Finished Updating Firmware\n"), ended
    expect_image(world.vorranos[0], image)
    assert world.vorrano.received.startswith(b"7bu:"), world.vorrano.received[:10]


def SaysInJsonThatItIsFinished(world):
    records = world.records("update", file_of(world, hex_image(3)))

    assert records == [{"port": PATH, "node": NODE, "ok": True, "values": {"update": "Finished Updating Firmware"}}]


def ShowsItsProgressInPlainLines(world):
    ended = world.run("update", file_of(world, hex_image(20)))

    lines = ended.stderr.decode().splitlines()
    assert len(lines) == 10 and all(PROGRESS.fullmatch(line) for line in lines), lines
    assert lines[-1].endswith("line 21 of 21"), lines


def ShowsItsProgressInABarOnATerminal(world):
    terminal = Terminal()
    tool = world.start("update", file_of(world, hex_image(10)), stderr=terminal.theirs)

    tool.communicate(timeout=60)
    terminal.close()

    assert tool.returncode == 0
    assert b"\r\x1b[K[##" in terminal.seen and b"] 100 %, line 11 of 11, about 0 s left" in terminal.seen, terminal.seen
    assert terminal.seen.endswith(b"\r\x1b[K"), terminal.seen[-40:]


def RefusesWhatIsNoIntelHexFile(world):
    for image, reason in REFUSED:
        world.expect(["update", world.file("image", image)], "", 2, "vorranoctl: " + reason + HELP)
    for name in ("/nowhere", world.folder):
        world.expect(["update", name], "", 2, "vorranoctl: The firmware image can't be read." + HELP)

    assert world.vorrano.received == b"", world.vorrano.received


def SendsWhatIsNoIntelHexFileWhenForced(world):
    ended = world.run("update", "--force", world.file("image", b"hello\n"))

    assert ended.returncode == 0, ended
    wait_for("the image", lambda: world.vorrano.received == b"7buhello")


def EndsWithoutThePromptOfTheBootloader(world):
    world.vorrano.fault("answer", command=">", bytes="\r\n>")

    world.expect(["update", file_of(world, hex_image(3))], "", 1,
                 "vorranoctl: %s: Failed to enter bootloader mode\n" % PATH)

    assert world.vorrano.received == b"7b", world.vorrano.received


def EndsWhenTheBootloaderSaysNothing(world):
    world.vorrano.fault("silence", command=">")

    world.expect(["update", file_of(world, hex_image(3))], "", 1,
                 "vorranoctl: %s: Failed to enter bootloader mode\n" % PATH)


def EndsWithoutThePromptOfTheUpload(world):
    for kind, members in (("answer", {"bytes": "V"}), ("silence", {})):
        world.vorrano.do("clearFaults")
        world.vorrano.fault(kind, command="u", **members)

        world.expect(["update", file_of(world, hex_image(3))], "", 1,
                     "vorranoctl: %s: Failed to upload data\n" % PATH)


@situation(vorranos=2)
def UpdatesOneWhileTheOtherHasNoBootloader(world):
    world.vorrano.fault("silence", command=">")

    ended = world.run("update", "--all", file_of(world, hex_image(3)))

    assert (ended.returncode, ended.stdout) == (1, b"/dev/cu.usbserial-V1: Finished Updating Firmware\n"), ended
    assert ended.stderr.decode().endswith("vorranoctl: %s: Failed to enter bootloader mode\n" % PATH), ended
    expect_image(world.vorranos[1], hex_image(3))


def SaysThatTheCableWasPulledFromAnUpload(world):
    tool = world.start("update", file_of(world, hex_image(200)))
    wait_for_upload(world)

    world.vorranos[0].pull_the_cable()

    output, error = tool.communicate(timeout=30)
    assert (tool.returncode, output) == (1, b""), error
    assert error.decode().splitlines()[-1] == "vorranoctl: %s: The cable was pulled." % PATH, error


def AsksOnceMoreBeforeItCutsAnUploadOff(world):
    image = hex_image(30)
    tool = world.start("update", file_of(world, image))
    wait_for_upload(world)

    tool.send_signal(2)

    output, error = tool.communicate(timeout=60)
    assert (tool.returncode, output) == (0, b"Finished Updating Firmware\n"), error
    assert error.count(SURE) == 1, error
    expect_image(world.vorranos[0], image)


def CutsAnUploadOffWhenItIsAskedTwice(world):
    with open(os.path.join(world.folder, "errors"), "wb") as errors:
        tool = world.start("update", file_of(world, hex_image(2000)), stderr=errors)
        wait_for_upload(world)
        tool.send_signal(2)
        wait_for("the question", lambda: SURE in open(errors.name, "rb").read())

        tool.send_signal(2)

        tool.communicate(timeout=30)
    assert tool.returncode == 1
    with open(errors.name, "rb") as written:
        assert written.read().endswith(b"vorranoctl: %s: Interrupted.\n" % PATH.encode())


def EndsAnUploadWithoutAQuestionWhenItIsTerminated(world):
    tool = world.start("update", file_of(world, hex_image(2000)))
    wait_for_upload(world)

    tool.terminate()

    _, error = tool.communicate(timeout=30)
    assert tool.returncode == 1 and SURE not in error, error


def KeepsTheComputerAwakeDuringTheUpload(world):
    with logind(world.folder) as login:
        tool = world.start("update", file_of(world, hex_image(60)), extra={"DBUS_SYSTEM_BUS_ADDRESS": login.address})
        # A busy computer takes its time with the mocked login manager.
        wait_for("the image", lambda: world.vorrano.state["mode"] == "image", 60.0)

        wait_for("the inhibitor", lambda: SLEEP in login.inhibitors())
        tool.communicate(timeout=60)

        assert tool.returncode == 0
        wait_for("its end", lambda: SLEEP not in login.inhibitors())


@situation(vorranos=0)
def SaysThatThereIsNoVorranoToUpdate(world):
    world.expect(["update", file_of(world, hex_image(3))], "", 3,
                 "vorranoctl: No Vorrano is connected. Plug it in with its USB cable.\n")
