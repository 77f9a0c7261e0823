#!/usr/bin/python3
"""Runs in the guest, in a session bus of its own: the real program, its adapter driven by the kernel's own driver.

usage: guest.py BUILD_FOLDER     (with usb_adapter.py's folder on PATH)
"""
import os
import shutil
import sys
import tempfile
import time
import traceback

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path[:0] = [HERE, os.path.join(HERE, "..", "e2e"), os.path.dirname(shutil.which("usb_adapter.py"))]

from adapter import SLOW                                              # noqa: E402
from cable import Cable                                               # noqa: E402
from harness.bus import Bus                                           # noqa: E402
from harness.display import Display                                   # noqa: E402
from harness.logind import logind                                     # noqa: E402
from harness.program import Program                                   # noqa: E402
from harness.simulator import Simulator                               # noqa: E402
from program_cases import CASES                                       # noqa: E402


class World:
    """A display, a login manager, the program, and a Vorrano whose cable is not plugged in yet."""

    def __init__(self, build, folder, login_manager):
        self.folder, self.login_manager = folder, login_manager
        self.display, self.bus = Display(), Bus()
        self.vorrano = Simulator(os.path.join(build, "vorrano-simulator"), folder, plugged=False)
        self.cable = Cable(self.vorrano)
        environment = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_QPA_PLATFORM="xcb", HOME=folder,
                           XDG_RUNTIME_DIR=folder, XDG_CONFIG_HOME=folder,
                           DBUS_SYSTEM_BUS_ADDRESS=login_manager.address)
        self.program = Program(self.bus, self.display, os.path.join(build, "vorrano-setup"), environment,
                               os.path.join(folder, "log"))

    def report(self):
        """What there is to see when a case has failed."""
        print(self.program.root.dump(), file=sys.stderr)
        with open(os.path.join(self.folder, "log"), encoding="utf-8") as log:
            print(log.read(), file=sys.stderr)
        self.display.screenshot(os.path.join(os.environ.get("RIG_OUT", self.folder), "failed.png"))


def run(world):
    try:
        for case in CASES:
            begun = time.monotonic()
            case(world)
            print("ok    %s (%.1f s)" % (case.__name__, time.monotonic() - begun), flush=True)
    except BaseException:
        traceback.print_exc()
        world.report()
        return 1
    finally:
        status = world.program.end(deadline=SLOW)
    print("ok    EndsWithStatus0" if status == 0 else "FAIL  ended with %d" % status, flush=True)
    return status


def main():
    folder = tempfile.mkdtemp(prefix="vorrano-kernel-")
    with logind(folder) as login_manager:
        return run(World(os.path.abspath(sys.argv[1]), folder, login_manager))


if __name__ == "__main__":
    code = main()
    sys.stdout.flush()
    os._exit(code)
