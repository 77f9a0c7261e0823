"""A mocked service on a system bus of its own."""
import contextlib
import os
import subprocess

import dbus
import dbus.bus

from .waiting import wait_for

# A busy computer takes its time to start an interpreter.
START = 60.0


@contextlib.contextmanager
def system_bus(folder):
    """Gives the address of a new system bus."""
    address = "unix:path=" + os.path.join(folder, "system-bus")
    daemon = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address,
                               "--print-address"], stdout=subprocess.PIPE, text=True)
    try:
        # It prints its address once it takes connections; its socket is there before that.
        if not daemon.stdout.readline():
            raise RuntimeError("the system bus did not start")
        yield address
    finally:
        daemon.kill()
        daemon.wait()
        daemon.stdout.close()


class MockedService:
    def __init__(self, address, name):
        self.address, self._name = address, name
        self._bus = dbus.bus.BusConnection(address)
        wait_for(name, lambda: self._bus.name_has_owner(name), START)

    def object(self, path):
        return self._bus.get_object(self._name, path)

    def mock(self, path):
        """The mock's own methods of an object."""
        return dbus.Interface(self.object(path), "org.freedesktop.DBus.Mock")


@contextlib.contextmanager
def mocked_service(address, name, template):
    process = subprocess.Popen(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", template],
                               env=dict(os.environ, DBUS_SYSTEM_BUS_ADDRESS=address), stdout=subprocess.DEVNULL)
    try:
        yield MockedService(address, name)
    finally:
        process.kill()
        process.wait()
