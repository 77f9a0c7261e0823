"""A mocked login manager on a system bus of its own, which says when the computer sleeps and wakes."""
import contextlib

import dbus

from .mocked_service import MockedService, mocked_service, system_bus

NAME, PATH = "org.freedesktop.login1", "/org/freedesktop/login1"
MANAGER = "org.freedesktop.login1.Manager"


class Logind(MockedService):
    def __init__(self, address):
        super().__init__(address, NAME)
        self._mock = self.mock(PATH)
        # The mock writes down the calls of those methods only that were added to it.
        self._mock.AddMethod(MANAGER, "Inhibit", "ssss", "h",
                             "from dbusmock.templates import logind\nret = logind.Inhibit(self, *args)")

    def prepare_for_sleep(self, sleeps):
        """Says that the computer is about to sleep, or that it woke."""
        self._mock.EmitSignal(MANAGER, "PrepareForSleep", "b", [sleeps])

    def inhibitors(self):
        """What is inhibited, and how: ("sleep", "delay")."""
        listed = dbus.Interface(self.object(PATH), MANAGER).ListInhibitors()
        return [(str(what), str(mode)) for what, _, _, mode, _, _ in listed]

    def requests(self):
        """The same of every inhibitor that was ever asked for."""
        return [(str(what), str(mode)) for _, (what, _, _, mode) in self._mock.GetMethodCalls("Inhibit")]


@contextlib.contextmanager
def logind(folder):
    with system_bus(folder) as address, mocked_service(address, NAME, "logind"):
        yield Logind(address)
