#!/usr/bin/python3
"""Runs in the guest, in a session bus of its own: the real program, its adapter driven by the kernel's own driver.

usage: guest.py BUILD_FOLDER     (with usb_adapter.py's folder on PATH)
"""
import os
import shutil
import sys
import tempfile
import traceback

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path[:0] = [HERE, os.path.join(HERE, "..", "e2e"), os.path.dirname(shutil.which("usb_adapter.py"))]

from adapter import SLOW                                              # noqa: E402
from cable import Cable                                               # noqa: E402
from harness.bus import Bus                                           # noqa: E402
from harness.display import Display                                   # noqa: E402
from harness.program import Program                                   # noqa: E402
from harness.screens import NO_VORRANO, open_wifi_setup               # noqa: E402
from harness.simulator import Simulator                               # noqa: E402
from harness.waiting import wait_for                                  # noqa: E402


class World:
    def __init__(self, build):
        self.folder = tempfile.mkdtemp(prefix="vorrano-kernel-")
        self.display, self.bus = Display(), Bus()
        self.vorrano = Simulator(os.path.join(build, "vorrano-simulator"), self.folder, plugged=False)
        self.cable = Cable(self.vorrano)
        environment = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_QPA_PLATFORM="xcb", HOME=self.folder,
                           XDG_RUNTIME_DIR=self.folder)
        self.program = Program(self.bus, self.display, os.path.join(build, "vorrano-setup"), environment,
                               os.path.join(self.folder, "log"))


def shows_no_vorrano(world, wanted):
    wait_for("the line about the missing Vorrano: %s" % wanted,
             lambda: world.program.shows(NO_VORRANO) == wanted, SLOW)


def check_the_network_name(world, name):
    world.program.press("Check network name")
    world.program.expect_alert(name + "\n\n\r", "Success", deadline=SLOW)


def lets_go(world):
    """Whether the missing Vorrano is told of. In a slow guest the request's time-out may come first, and its alert holds
    back what follows."""
    for alert in world.program.alerts():
        assert (alert.title, alert.text) == ("ERROR", "Please try again"), alert
        world.program.dismiss(alert)
    return world.program.shows(NO_VORRANO)


def TakesUpAnAdapterThatIsPluggedIn(world):
    open_wifi_setup(world.program)
    shows_no_vorrano(world, True)

    node = world.cable.plug()

    shows_no_vorrano(world, False)
    wait_for("the program to open %s" % node, lambda: node in world.program.open_files(), SLOW)


def SetsTheLineTo9600Baud8N1WithItsOutputsLow(world):
    adapter = world.cable.adapter
    wait_for("the rate", lambda: abs(adapter.baud - 9600) < 20, SLOW)
    wait_for("DTR and RTS to be low", lambda: not adapter.dtr and not adapter.rts, SLOW)

    assert adapter.frame == "8N1", adapter.frame
    assert ("DTR", True) in world.cable.events and ("RTS", True) in world.cable.events, world.cable.events


def GivesTheVorranoItsNetwork(world):
    world.program.type("Network name", "My Home Net")

    world.program.press("Save network name")

    world.program.expect_alert("OK\n\r", "Success", deadline=SLOW)
    assert world.vorrano.received == b"8My$Home$Net\0", world.vorrano.received
    check_the_network_name(world, "My Home Net")


def LetsGoOfAnAdapterThatIsPulledAndTakesItUpAgain(world):
    world.cable.pull()
    shows_no_vorrano(world, True)
    wait_for("the descriptor to be closed",
             lambda: not any("ttyUSB" in name for name in world.program.open_files()), SLOW)

    node = world.cable.plug()

    shows_no_vorrano(world, False)
    wait_for("the program to open %s" % node, lambda: node in world.program.open_files(), SLOW)
    check_the_network_name(world, "My Home Net")


def LetsGoOfAnAdapterThatIsPulledWhileARequestIsPending(world):
    world.vorrano.fault("silence", times=1)
    world.program.press("Check network name")
    wait_for("the request at the device", lambda: world.vorrano.received.endswith(b"c"), SLOW)

    world.cable.pull()
    wait_for("the line about the missing Vorrano", lambda: lets_go(world), SLOW)
    world.vorrano.do("clearFaults")
    world.cable.plug()

    shows_no_vorrano(world, False)
    check_the_network_name(world, "My Home Net")


CASES = (TakesUpAnAdapterThatIsPluggedIn, SetsTheLineTo9600Baud8N1WithItsOutputsLow, GivesTheVorranoItsNetwork,
         LetsGoOfAnAdapterThatIsPulledAndTakesItUpAgain, LetsGoOfAnAdapterThatIsPulledWhileARequestIsPending)


def main():
    world = World(os.path.abspath(sys.argv[1]))
    try:
        for case in CASES:
            case(world)
            print("ok    " + case.__name__, flush=True)
    except BaseException:
        traceback.print_exc()
        print(world.program.root.dump(), file=sys.stderr)
        with open(os.path.join(world.folder, "log"), encoding="utf-8") as log:
            print(log.read(), file=sys.stderr)
        world.display.screenshot(os.path.join(os.environ.get("RIG_OUT", world.folder), "failed.png"))
        return 1
    finally:
        status = world.program.end(deadline=SLOW)
    print("ok    EndsWithStatus0" if status == 0 else "FAIL  ended with %d" % status, flush=True)
    return status


if __name__ == "__main__":
    code = main()
    sys.stdout.flush()
    os._exit(code)
