#!/usr/bin/python3
"""Runs in the guest, in a session bus of its own: the real program, its adapter driven by the kernel's own driver.

usage: guest.py BUILD_FOLDER     (with usb_adapter.py's folder on PATH)
"""
import os
import shutil
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path[:0] = [HERE, os.path.join(HERE, "..", "e2e"), os.path.dirname(shutil.which("usb_adapter.py"))]

from cable import Cable                                               # noqa: E402
from harness.logind import logind                                     # noqa: E402
from harness.simulator import Simulator                               # noqa: E402
from program_cases import CASES                                       # noqa: E402
from program_world import ProgramWorld, run                           # noqa: E402


class World(ProgramWorld):
    """A login manager, the program, and a Vorrano whose cable is not plugged in yet."""

    def __init__(self, build, folder, login_manager):
        self.folder, self.login_manager = folder, login_manager
        self.vorrano = Simulator(os.path.join(build, "vorrano-simulator"), folder, plugged=False)
        self.cable = Cable(self.vorrano)
        super().__init__(os.path.join(build, "vorrano-setup"), folder, DBUS_SYSTEM_BUS_ADDRESS=login_manager.address)

    def report(self):
        super().report()
        self.display.screenshot(os.path.join(os.environ.get("RIG_OUT", self.folder), "failed.png"))


def main():
    folder = tempfile.mkdtemp(prefix="vorrano-kernel-")
    with logind(folder) as login_manager:
        return run(World(os.path.abspath(sys.argv[1]), folder, login_manager), CASES)


if __name__ == "__main__":
    code = main()
    sys.stdout.flush()
    os._exit(code)
