#!/usr/bin/python3
"""Runs in the guest, in a session bus of its own: the real program and NetworkManager, on the kernel's simulated radios.

usage: wifi_guest.py BUILD_FOLDER
"""
import os
import subprocess
import sys
import tempfile
import traceback

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path[:0] = [HERE, os.path.join(HERE, "..", "e2e")]

import system_bus                                                     # noqa: E402
from harness.bus import Bus                                           # noqa: E402
from harness.display import Display                                   # noqa: E402
from harness.program import Program                                   # noqa: E402
from harness.screens import open_wifi_setup                           # noqa: E402
from harness.waiting import wait_for                                  # noqa: E402

SLOW = 90.0
SSID = "My Home Net"

ACCESS_POINT = """interface=wlan0
driver=nl80211
ssid=%s
hw_mode=g
channel=6
""" % SSID

# No DHCP, no policy daemon: there are none in the guest. The radio of the access point is not NetworkManager's.
NETWORK_MANAGER = """[main]
plugins=keyfile
auth-polkit=false
dhcp=internal
[keyfile]
unmanaged-devices=interface-name:wlan0
[device]
wifi.scan-rand-mac-address=no
"""


def write(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="ascii") as file:
        file.write(text)


def start_access_point(folder):
    path = os.path.join(folder, "access-point.conf")
    write(path, ACCESS_POINT)
    subprocess.run(["hostapd", "-B", path], check=True, stdout=subprocess.DEVNULL)


def start_network_manager():
    write("/etc/NetworkManager/conf.d/guest.conf", NETWORK_MANAGER)
    system_bus.start()
    subprocess.run(["wpa_supplicant", "-B", "-u", "-s"], check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["NetworkManager"], check=True)


def sees_the_access_point():
    listed = subprocess.run(["nmcli", "-t", "-f", "SSID", "device", "wifi", "list"], check=False, capture_output=True,
                            text=True)
    return SSID in listed.stdout.splitlines()


def offers_the_network(program):
    """Whether the tab offers it. It looks when it is chosen, and what it offers is what NetworkManager has by then."""
    program.choose_tab("Wifi Setup")
    return program.items("Networks in range") == [SSID]


def OffersTheNetworkOfASimulatedAccessPoint(build, folder):
    start_access_point(folder)
    start_network_manager()
    wait_for("the access point at NetworkManager", sees_the_access_point, SLOW, look=0.5)
    display, bus = Display(), Bus()
    environment = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_QPA_PLATFORM="xcb", HOME=folder,
                       XDG_RUNTIME_DIR=folder, XDG_CONFIG_HOME=folder)
    program = Program(bus, display, os.path.join(build, "vorrano-setup"), environment, os.path.join(folder, "log"))
    open_wifi_setup(program)

    wait_for("the network in the list", lambda: offers_the_network(program), SLOW, look=0.5)

    assert program.field("Network name").text == SSID, program.field("Network name").text
    assert program.end(deadline=SLOW) == 0


def main():
    try:
        OffersTheNetworkOfASimulatedAccessPoint(os.path.abspath(sys.argv[1]), tempfile.mkdtemp(prefix="vorrano-kernel-"))
    except BaseException:
        traceback.print_exc()
        return 1
    print("ok    OffersTheNetworkOfASimulatedAccessPoint", flush=True)
    return 0


if __name__ == "__main__":
    code = main()
    sys.stdout.flush()
    os._exit(code)
