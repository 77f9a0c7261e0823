"""A seat to sit down at: the real login manager, and real logins.

systemd works as process 1 only, which it is not in the guest. Where logind asks it to start and to stop the units of a
session, a mock answers that this is done. The rest is logind's own: the session, whose the seat is, and what udev and
logind give that person.
"""
import contextlib
import os
import subprocess

import dbus
import dbus.bus

import system_bus
from adapter import SLOW
from harness.mocked_service import mocked_service
from harness.waiting import wait_for

LOGIND, LOGIND_PATH = "org.freedesktop.login1", "/org/freedesktop/login1"
SYSTEMD, SYSTEMD_PATH = "org.freedesktop.systemd1", "/org/freedesktop/systemd1"
# Only a kernel with virtual terminals has it. There a session at the seat is on one of them.
ACTIVE_TERMINAL = "/sys/class/tty/tty0/active"


class Systemd:
    """What logind takes for systemd."""

    def __init__(self, service):
        self._service, self._mock = service, service.mock(SYSTEMD_PATH)
        # The template itself starts only units that it was told of, and can't be told of user@1000.service.
        for method in ("StartUnit", "StopUnit"):
            self._mock.AddMethod(SYSTEMD + ".Manager", method, "ss", "o",
                                 "from dbusmock.templates import systemd\n"
                                 "ret = systemd.StartTransientUnit(self, *args, [], [])")

    def add_scope(self, name):
        """The scope of a session, in which no process is left once the person has logged out."""
        path = self._path(name)
        self._mock.AddObject(path, SYSTEMD + ".Scope", {}, [("Abandon", "", "", "")])
        self._service.mock(path).AddProperty(SYSTEMD + ".Unit", "ActiveState", "inactive")

    def remove_scope(self, name):
        """Says that its last process has ended."""
        self._mock.EmitSignal(SYSTEMD + ".Manager", "UnitRemoved", "so", [name, self._path(name)])

    @staticmethod
    def _path(name):
        return "%s/unit/%s" % (SYSTEMD_PATH, name.replace("-", "_2d").replace(".", "_2e"))


class Seat:
    """Nobody's at first."""

    def __init__(self, systemd):
        self._systemd, self._login, self._scope = systemd, None, None
        self._bus = dbus.bus.BusConnection(system_bus.ADDRESS)
        wait_for("logind on the system bus", lambda: self._bus.name_has_owner(LOGIND), SLOW)

    def log_in(self, person):
        """From now on the seat is theirs."""
        # What a display manager tells pam_systemd.
        environment = dict(os.environ, XDG_SEAT="seat0", XDG_SESSION_TYPE="x11", XDG_SESSION_CLASS="user")
        if os.path.exists(ACTIVE_TERMINAL):
            with open(ACTIVE_TERMINAL, encoding="ascii") as terminal:
                environment["XDG_VTNR"] = terminal.read().strip().removeprefix("tty")
        self._login = subprocess.Popen(["runuser", "--login", person, "--command", "echo logged in; cat"],
                                       env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        assert self._login.stdout.readline() == "logged in\n", "%s could not log in" % person
        name, session = self._get(LOGIND_PATH + "/seat/seat0", "Seat", "ActiveSession")
        assert name, "%s has logged in, but logind has no active session at the seat" % person
        owner = self._get(session, "Session", "Name")
        assert owner == person, "%s has logged in, but logind says that %s is at the seat" % (person, owner)
        self._scope = self._get(session, "Session", "Scope")
        self._systemd.add_scope(self._scope)

    def log_out(self):
        """Gives the seat back."""
        self._login.communicate()
        self._systemd.remove_scope(self._scope)

    def _get(self, path, interface, name):
        properties = dbus.Interface(self._bus.get_object(LOGIND, path), dbus.PROPERTIES_IFACE)
        return properties.Get("%s.%s" % (LOGIND, interface), name)


@contextlib.contextmanager
def seat():
    """Needs to be root, in a guest whose system bus does not run yet."""
    system_bus.start()
    os.makedirs("/run/systemd", exist_ok=True)
    with mocked_service(system_bus.ADDRESS, SYSTEMD, "systemd") as systemd:
        mocked = Systemd(systemd)
        logind = subprocess.Popen(["/lib/systemd/systemd-logind"])
        try:
            yield Seat(mocked)
        finally:
            logind.terminate()
            logind.wait()
