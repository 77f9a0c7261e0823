"""A mocked login manager on a system bus of its own, which says when the computer sleeps and wakes."""
import contextlib
import os
import subprocess

import dbus
import dbus.bus

from .waiting import wait_for

NAME, PATH = "org.freedesktop.login1", "/org/freedesktop/login1"
MANAGER = "org.freedesktop.login1.Manager"


class Logind:
    def __init__(self, address):
        self.address = address
        self._bus = dbus.bus.BusConnection(address)
        # A busy computer takes its time to start an interpreter.
        wait_for("the login manager", lambda: self._bus.name_has_owner(NAME), 60.0)

        self._mock = dbus.Interface(self._bus.get_object(NAME, PATH), "org.freedesktop.DBus.Mock")
        # The mock writes down the calls of those methods only that were added to it.
        self._mock.AddMethod(MANAGER, "Inhibit", "ssss", "h",
                             "from dbusmock.templates import logind\nret = logind.Inhibit(self, *args)")

    def prepare_for_sleep(self, sleeps):
        """Says that the computer is about to sleep, or that it woke."""
        self._mock.EmitSignal(MANAGER, "PrepareForSleep", "b", [sleeps])

    def inhibitors(self):
        """What is inhibited, and how: ("sleep", "delay")."""
        listed = dbus.Interface(self._bus.get_object(NAME, PATH), MANAGER).ListInhibitors()
        return [(str(what), str(mode)) for what, _, _, mode, _, _ in listed]

    def requests(self):
        """The same of every inhibitor that was ever asked for."""
        return [(str(what), str(mode)) for _, (what, _, _, mode) in self._mock.GetMethodCalls("Inhibit")]


@contextlib.contextmanager
def logind(folder):
    address = "unix:path=" + os.path.join(folder, "system-bus")
    daemon = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address,
                               "--print-address"], stdout=subprocess.PIPE, text=True)
    try:
        # It says its address once it can be called; its socket is there before that.
        if not daemon.stdout.readline():
            raise RuntimeError("the system bus did not start")
        mock = subprocess.Popen(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"],
                                env=dict(os.environ, DBUS_SYSTEM_BUS_ADDRESS=address), stdout=subprocess.DEVNULL)
        try:
            yield Logind(address)
        finally:
            mock.kill()
            mock.wait()
    finally:
        daemon.kill()
        daemon.wait()
        daemon.stdout.close()
