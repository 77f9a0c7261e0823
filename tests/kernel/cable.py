"""A USB serial adapter of a real kernel, with a simulated Vorrano at the other end of its line."""
import os
import subprocess
import threading
import tty

from adapter import SLOW, node_of
from harness.waiting import wait_for
from usb_adapter import FtdiAdapter


class Cable:
    """Plugs and pulls the adapter; the simulator hangs its own end up with it."""

    def __init__(self, vorrano, serial="A1B2"):
        self._vorrano, self._serial = vorrano, serial
        self.adapter = self._node = self._line = self._left = self._taken = None
        self.events = []

    def plug(self):
        """Plugs it in; gives its node once udev has initialised it."""
        if self._node:
            # A pull takes the kernel and udev a while.
            wait_for("%s to go" % self._node, lambda: not os.path.exists(self._node), SLOW)
            subprocess.run(["udevadm", "settle"], check=True)
        self.push_in()
        self._node = node_of(self.adapter)
        return self._node

    def push_in(self):
        node = self._vorrano.do("plug")["node"]
        self._left = None
        self._line = os.open(node, os.O_RDWR | os.O_NOCTTY)
        tty.setraw(self._line)
        self.adapter = FtdiAdapter(serial=self._serial, on_bytes=self._towards_the_device, on_event=self._note)
        threading.Thread(target=self._towards_the_host, args=(self._line, self.adapter), daemon=True).start()
        self.adapter.plug()

    def takes_only(self, count):
        """After so many bytes nothing more reaches the device. Gives what is set once they have come."""
        self._left, taken = count, threading.Event()
        self._taken = taken
        return taken

    def pull(self):
        self.adapter.unplug()
        self._vorrano.do("unplug")
        os.close(self._line)

    def _note(self, name, value):
        self.events.append((name, value))

    def _towards_the_device(self, data):
        if self._left is not None:
            data, self._left = data[:self._left], self._left - len(data[:self._left])
            if self._left == 0:
                self._taken.set()
        try:
            os.write(self._line, data)
        except OSError:
            pass  # pulled

    @staticmethod
    def _towards_the_host(line, adapter):
        while True:
            try:
                data = os.read(line, 4096)
            except OSError:
                return
            if not data:
                return
            adapter.send(data)
