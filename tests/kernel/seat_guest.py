#!/usr/bin/python3
"""Runs in the guest: the real program as a person who is in no group, with udev, the login manager and the package's
rule; its adapter is driven by the kernel's own driver.

usage: seat_guest.py BUILD_FOLDER     (with usb_adapter.py's folder on PATH)
"""
import multiprocessing
import os
import pwd
import shutil
import subprocess
import sys
import tempfile
import traceback

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path[:0] = [HERE, os.path.join(HERE, "..", "e2e"), os.path.dirname(shutil.which("usb_adapter.py"))]

from adapter import SLOW                                              # noqa: E402
from cable import Cable                                               # noqa: E402
from harness.simulator import Simulator                               # noqa: E402
from program_world import ProgramWorld, run                           # noqa: E402
from seat import seat                                                 # noqa: E402
from seat_cases import CASES                                          # noqa: E402

PERSON = "person"
PACKAGING = os.path.join(HERE, "..", "..", "packaging")
RULE = "60-vorrano-setup.rules"
# The first is the package's; "cmake --install" may have used the other on this machine.
RULES = ("/usr/lib/udev/rules.d", "/usr/local/lib/udev/rules.d")


def install(mode, file, folder):
    subprocess.run(["install", "--mode", mode, "--target-directory", folder, file], check=True)


class Administrator:
    """Does what an ordinary person can't."""

    def __init__(self, build, the_seat):
        folder = tempfile.mkdtemp(prefix="vorrano-kernel-")
        self._seat = the_seat
        self._cable = Cable(Simulator(os.path.join(build, "vorrano-simulator"), folder, plugged=False))

    def plug(self):
        """Gives the adapter's node, once the person's rights to it have been set too."""
        node = self._cable.plug()
        subprocess.run(["udevadm", "settle"], check=True)
        return node

    def pull(self):
        self._cable.pull()

    def node(self):
        return self._cable.adapter.node(SLOW)

    def install_the_package(self):
        """What of it is about ports: its rule and its script."""
        install("644", os.path.join(PACKAGING, RULE), RULES[0])
        subprocess.run(["sh", os.path.join(PACKAGING, "debian", "vorrano-setup.postinst"), "configure"], check=True)

    def log_in(self):
        self._seat.log_in(PERSON)

    def log_out(self):
        self._seat.log_out()

    def serve(self, connection):
        """Until nobody asks any more."""
        while True:
            try:
                what = connection.recv()
            except EOFError:
                return
            connection.send(getattr(self, what)())


class Request:
    """How the person asks the administrator."""

    def __init__(self, connection):
        self._connection = connection

    def asks(self, what):
        self._connection.send(what)
        return self._connection.recv()


class World(ProgramWorld):
    def __init__(self, executable, folder, administrator):
        self.person, self.administrator = PERSON, administrator
        super().__init__(executable, folder)

    def report(self):
        for command in (["getfacl", "--absolute-names", "/dev/ttyUSB0"], ["udevadm", "info", "/dev/ttyUSB0"],
                        ["cat", "/run/systemd/seats/seat0"]):
            subprocess.run(command, check=False, stdout=sys.stderr)
        super().report()


def sit_down(executable, connection):
    """What the person's process does."""
    record = pwd.getpwnam(PERSON)
    os.setgroups([])
    os.setgid(record.pw_gid)
    os.setuid(record.pw_uid)
    folder = tempfile.mkdtemp(prefix="vorrano-person-")
    bus = subprocess.run(["dbus-daemon", "--session", "--fork", "--print-address"], check=True, stdout=subprocess.PIPE,
                         text=True)
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.strip()
    sys.exit(run(World(executable, folder, Request(connection)), CASES))


def prepare_the_computer(build):
    """A person, and a desktop without the package. Gives the program's path for them: they may not go into the build
    folder everywhere."""
    for folder in RULES:
        subprocess.run(["rm", "-f", os.path.join(folder, RULE)], check=True)
    subprocess.run(["udevadm", "control", "--reload"], check=True)
    subprocess.run(["useradd", "--create-home", PERSON], check=True)
    # Only root may make the folder of the displays' sockets.
    os.makedirs("/tmp/.X11-unix", exist_ok=True)
    os.chmod("/tmp/.X11-unix", 0o1777)
    install("755", os.path.join(build, "vorrano-setup"), "/usr/bin")
    return "/usr/bin/vorrano-setup"


def main():
    build = os.path.abspath(sys.argv[1])
    executable = prepare_the_computer(build)
    ours, theirs = multiprocessing.Pipe()
    person = multiprocessing.Process(target=sit_down, args=(executable, theirs))
    person.start()
    theirs.close()
    try:
        with seat() as the_seat:
            the_seat.log_in(PERSON)
            Administrator(build, the_seat).serve(ours)
    except BaseException:
        traceback.print_exc()
        return 1
    person.join()
    return person.exitcode


if __name__ == "__main__":
    code = main()
    sys.stdout.flush()
    os._exit(code)
