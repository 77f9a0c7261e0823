"""The USB serial adapters of a mocked computer, each with a simulator behind its device node."""
import os

import gi

gi.require_version("UMockdev", "1.0")
from gi.repository import UMockdev  # noqa: E402

HUB = "/devices/pci0000:00/0000:00:14.0/usb1"
DESCRIPTION = """\
P: {port}
E: SUBSYSTEM=usb
E: DEVTYPE=usb_device
A: idVendor={vendor}
A: idProduct={product}
A: serial={serial}

P: {port}/1-{number}:1.0
E: SUBSYSTEM=usb
E: DEVTYPE=usb_interface
E: DRIVER=ftdi_sio
A: bInterfaceNumber=00

P: {port}/1-{number}:1.0/{name}
E: SUBSYSTEM=usb-serial
E: DRIVER=ftdi_sio
L: driver=../../../../../../../../bus/usb-serial/drivers/ftdi_sio

P: {port}/1-{number}:1.0/{name}/tty/{name}
E: DEVNAME=/dev/{name}
E: SUBSYSTEM=tty
E: MAJOR=188
E: MINOR={minor}
E: ID_BUS=usb
E: ID_MODEL=FT232R_USB_UART
E: ID_PATH=pci-0000:00:14.0-usb-0:{number}:1.0
E: ID_SERIAL=FTDI_FT232R_USB_UART_{serial}
E: ID_SERIAL_SHORT={serial}
E: ID_TYPE=generic
E: ID_USB_DRIVER=ftdi_sio
E: ID_USB_INTERFACES=:ffffff:
E: ID_USB_INTERFACE_NUM=00
E: ID_VENDOR=FTDI
A: dev=188:{minor}
L: device=../../../{name}
"""


class Computer:
    """Its device folders; programs see them through PRELOAD."""

    PRELOAD = "libumockdev-preload.so.0"

    def __init__(self):
        self._testbed = UMockdev.Testbed.new()
        self.root = self._testbed.get_root_dir()
        os.makedirs(os.path.join(self.root, "dev"), exist_ok=True)

    def environment(self):
        return {"LD_PRELOAD": self.PRELOAD, "UMOCKDEV_DIR": self.root}

    def plug(self, node, serial="A1B2", number=1, minor=0, chip=("0403", "6001")):
        """An adapter appears as /dev/ttyUSBminor, with the pseudo-terminal `node` behind it; chip is the numbers of its
        vendor and product."""
        name = "ttyUSB%d" % minor
        os.symlink(node, os.path.join(self.root, "dev", name))
        port = "%s/1-%d" % (HUB, number)
        self._testbed.add_from_string(DESCRIPTION.format(port=port, number=number, name=name, minor=minor,
                                                         serial=serial, vendor=chip[0], product=chip[1]))
        return Adapter(self._testbed, self.root, port, number, name)


class Adapter:
    def __init__(self, testbed, root, port, number, name):
        self._testbed, self._root, self._name = testbed, root, name
        # The port first, the adapter last.
        self.paths = ["/sys%s/1-%d:1.0/%s/tty/%s" % (port, number, name, name),
                      "/sys%s/1-%d:1.0/%s" % (port, number, name), "/sys%s/1-%d:1.0" % (port, number), "/sys" + port]

    def unplug(self):
        """The kernel's events of a pulled cable; hanging the line up is the simulator's part."""
        os.unlink(os.path.join(self._root, "dev", self._name))
        for path in self.paths:
            self._testbed.uevent(path, "remove")
            self._testbed.remove_device(path)
