"""A USB serial adapter of a real kernel that writes down what arrives at it."""
import struct
import subprocess

from usb_adapter import FtdiAdapter

# A control call that is under way when the plug is pulled takes the kernel 5 s; the guest is slow besides.
SLOW = 60.0

VENDORS_OWN, SET_FLOW_CONTROL = 0x40, 2
FLOW_CONTROLS = {0: "none", 1: "RTS/CTS"}
BYTES_FOR_THE_LINE = 2


def node_of(adapter):
    """Its node, once udev has initialised it, which is a little after the node is there."""
    node = adapter.node(SLOW)
    subprocess.run(["udevadm", "wait", "--timeout=%d" % SLOW, node], check=True)
    return node


class Adapter(FtdiAdapter):
    def __init__(self, serial="A1B2"):
        super().__init__(serial=serial, on_bytes=self._take, on_event=self._note)
        self.events = []
        self.received = b""
        self.flow_control = None
        self._takes, self.refused = True, 0

    @property
    def callout_path(self):
        return "/dev/cu.usbserial-" + self.strings[3]

    def takes_no_more(self):
        """From now on bytes for the line stay with the driver, for good: such an adapter can only be unplugged."""
        self._takes = False

    def submit(self, seq, endpoint, to_host, length, setup, payload):
        if endpoint == BYTES_FOR_THE_LINE and not to_host and not self._takes:
            self.refused += 1
            return
        super().submit(seq, endpoint, to_host, length, setup, payload)

    def control(self, setup):
        kind, request, _, index, _ = struct.unpack("<BBHHH", setup)
        if (kind, request) == (VENDORS_OWN, SET_FLOW_CONTROL):
            self.flow_control = FLOW_CONTROLS.get(index >> 8)
        return super().control(setup)

    def _note(self, name, value):
        self.events.append((name, value))

    def _take(self, data):
        self.received += data
