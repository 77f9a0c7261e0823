"""A mocked NetworkManager with one Wi-Fi device."""
import contextlib

import dbus

from .mocked_service import mocked_service, system_bus

NAME, PATH = "org.freedesktop.NetworkManager", "/org/freedesktop/NetworkManager"
ACTIVATED = 100


class NetworkManager:
    def __init__(self, service):
        self.address = service.address
        self._mock = service.mock(PATH)
        self._device = self._mock.AddWiFiDevice("wlan0", "wlan0", dbus.UInt32(ACTIVATED))
        self._points = 0

    def add_access_point(self, ssid):
        self._points += 1
        self._mock.AddAccessPoint(self._device, "point%d" % self._points, ssid, "00:23:F8:7E:12:BB", dbus.UInt32(2),
                                  dbus.UInt32(2425), dbus.UInt32(5400), dbus.Byte(82), dbus.UInt32(0x400))


@contextlib.contextmanager
def network_manager(folder):
    with system_bus(folder) as address, mocked_service(address, NAME, "networkmanager") as service:
        yield NetworkManager(service)
