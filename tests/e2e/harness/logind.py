"""A mocked login manager on a system bus of its own, which says when the computer sleeps and wakes."""
import contextlib
import os
import subprocess

import dbus
import dbus.bus

from .waiting import wait_for

NAME, PATH = "org.freedesktop.login1", "/org/freedesktop/login1"


class Logind:
    def __init__(self, address):
        self.address = address
        self._bus = dbus.bus.BusConnection(address)
        wait_for("the login manager", lambda: self._bus.name_has_owner(NAME))

    def prepare_for_sleep(self, sleeps):
        """Says that the computer is about to sleep, or that it woke."""
        mock = dbus.Interface(self._bus.get_object(NAME, PATH), "org.freedesktop.DBus.Mock")
        mock.EmitSignal("org.freedesktop.login1.Manager", "PrepareForSleep", "b", [sleeps])


@contextlib.contextmanager
def logind(folder):
    address = "unix:path=" + os.path.join(folder, "system-bus")
    daemon = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address])
    try:
        wait_for("the system bus", lambda: os.path.exists(os.path.join(folder, "system-bus")))
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
