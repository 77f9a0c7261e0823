"""What one case of the serial layer happens in: an adapter, and a port on it that is closed as yet."""
import contextlib
import os
import subprocess

from adapter import SLOW, Adapter, node_of
from harness.waiting import wait_for
from probe import Probe


class World:
    """An adapter that is plugged in, and a port on it that is closed as yet."""

    def __init__(self, build):
        self._executable = os.path.join(build, "tests", "port_probe")
        self.adapter = Adapter()
        self.node = self._plug()
        self.probe = self._probe()

    def _probe(self, **rights):
        probe = Probe(self._executable, **rights)
        probe.asks("port", self.adapter.callout_path, answer="port 1")
        return probe

    @contextlib.contextmanager
    def another_program(self, **rights):
        """A second program with a port of its own on the same adapter."""
        probe = self._probe(**rights)
        yield probe
        assert probe.end() == 0

    def _plug(self):
        self.adapter.plug()
        return node_of(self.adapter)

    def plug_again(self):
        self.adapter = Adapter()
        self.node = self._plug()

    def open(self):
        self.probe.asks("open", answer="opened")

    def arrives(self, what, condition):
        wait_for(what + " at the adapter", condition, SLOW)

    def close(self):
        status = self.probe.end()
        self.adapter.unplug()
        wait_for("%s to go" % self.node, lambda: not os.path.exists(self.node), SLOW)
        # udev still knows the adapter then; the next one has the same node.
        subprocess.run(["udevadm", "settle"], check=True)
        assert status == 0, "the probe ended with %d" % status


class Held:
    """The node of a line, held open by somebody else."""

    def __init__(self, node):
        self._descriptor = os.open(node, os.O_RDWR | os.O_NOCTTY | os.O_NONBLOCK)

    def __enter__(self):
        return self._descriptor

    def __exit__(self, *_):
        os.close(self._descriptor)
