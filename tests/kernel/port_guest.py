#!/usr/bin/python3
"""Runs in the guest: the serial layer on its own, over an adapter that the kernel's own driver drives.

usage: port_guest.py BUILD_FOLDER [CASE...]     (with usb_adapter.py's folder on PATH)
"""
import errno
import os
import shutil
import subprocess
import sys
import termios
import traceback

HERE = os.path.dirname(os.path.abspath(__file__))
sys.dont_write_bytecode = True
sys.path[:0] = [HERE, os.path.join(HERE, "..", "e2e"), os.path.dirname(shutil.which("usb_adapter.py"))]

from adapter import SLOW, Adapter                                     # noqa: E402
from harness.waiting import stays, wait_for                           # noqa: E402
from probe import Probe                                               # noqa: E402

# Somebody else who opens the line; ends with the errno.
OPEN = """
import os, sys
try:
    os.open(sys.argv[1], os.O_RDWR | os.O_NOCTTY | os.O_NONBLOCK)
except OSError as error:
    sys.exit(error.errno)
"""

# More than the kernel and its driver keep for a line.
MORE_THAN_THE_DRIVER_TAKES = 100_000


class World:
    """An adapter that is plugged in, and a port on it that is closed as yet."""

    def __init__(self, build):
        self.adapter = Adapter()
        self.node = self._plug()
        self.probe = Probe(os.path.join(build, "tests", "port_probe"))
        self.probe.asks("port", self.adapter.callout_path, answer="port 1")

    def _plug(self):
        self.adapter.plug()
        return self.adapter.node()

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
        assert status == 0, "the probe ended with %d" % status


class Held:
    """The node of a line, held open by somebody else."""

    def __init__(self, node):
        self._descriptor = os.open(node, os.O_RDWR | os.O_NOCTTY | os.O_NONBLOCK)

    def __enter__(self):
        return self._descriptor

    def __exit__(self, *_):
        os.close(self._descriptor)


def settings_of(node):
    with Held(node) as line:
        return termios.tcgetattr(line)


def give_odd_settings(node):
    """Settings that nothing here has by itself."""
    with Held(node) as line:
        odd = termios.tcgetattr(line)
        odd[0] = termios.IXON | termios.INPCK | termios.ICRNL
        odd[1] = termios.OPOST | termios.ONLCR
        odd[2] = (termios.CS7 | termios.PARENB | termios.PARODD | termios.CSTOPB | termios.CRTSCTS | termios.CREAD |
                  termios.HUPCL)
        odd[3] = termios.ICANON | termios.ECHO | termios.ECHOE | termios.ISIG
        odd[4] = odd[5] = termios.B4800
        odd[6][termios.VINTR] = b"\x18"
        odd[6][termios.VTIME] = b"\x07"
        termios.tcsetattr(line, termios.TCSANOW, odd)


def is_odd(adapter):
    """Whether they have arrived, but for the flow control, which the driver takes out when it closes the line."""
    return (adapter.baud, adapter.frame) == (4800, "7O2")


def ShowsTheInputLinesAsTheyAreAndAsTheyChange(world):
    world.open()
    for line in ("CTS", "DSR", "DCD"):
        world.probe.hears(line + " 1")
    before = len(world.probe.heard)

    for name, line in (("CTS", "CTS"), ("CD", "DCD"), ("DSR", "DSR")):
        world.adapter.set_lines(**{name: False})
        world.probe.hears(line + " 0")
    world.adapter.set_lines(RI=True)
    world.adapter.set_lines(CD=True)
    world.probe.hears("DCD 1", 2)

    assert world.probe.heard[before:] == ["CTS 0", "DCD 0", "DSR 0", "DCD 1"], world.probe.heard


def DrivesEachOutputLineAlone(world):
    adapter = world.adapter
    world.open()
    world.arrives("DTR and RTS low", lambda: not adapter.dtr and not adapter.rts)
    del adapter.events[:]

    for line, on in (("rts", 1), ("dtr", 1), ("rts", 0), ("dtr", 0)):
        before = len(adapter.events)
        world.probe.do(line, on)
        world.arrives("%s %d" % (line, on), lambda: len(adapter.events) > before)

    assert adapter.events == [("RTS", True), ("DTR", True), ("RTS", False), ("DTR", False)], adapter.events


def DrivesTheOutputLinesToTheirValuesWhenItOpens(world):
    world.probe.do("rts", 1)

    world.open()

    world.arrives("RTS high, DTR low", lambda: world.adapter.rts and not world.adapter.dtr)
    world.probe.asks("close", answer="close 1")
    world.arrives("RTS low", lambda: not world.adapter.rts)


def SetsRateParityAndStopBitsOfTheOpenLine(world):
    adapter = world.adapter
    world.open()
    world.arrives("19200 8N1", lambda: (adapter.baud, adapter.frame) == (19200, "8N1"))

    for setting, value, rate, frame in (("parity", "even", 19200, "8E1"), ("parity", "odd", 19200, "8O1"),
                                        ("stopbits", 2, 19200, "8O2"), ("baud", 57600, 57600, "8O2"),
                                        ("parity", "none", 57600, "8N2"), ("baud", 12345, 12345, "8N2"),
                                        ("stopbits", 1, 12345, "8N1"), ("baud", 9600, 9600, "8N1")):
        world.probe.do(setting, value)
        # The adapter divides 3 MHz: a rate is not met to the bit.
        world.arrives("%d %s" % (rate, frame),
                      lambda: abs(adapter.baud - rate) < rate / 500 and adapter.frame == frame)


def SetsThemWhenItOpens(world):
    for setting, value in (("baud", 9600), ("parity", "even"), ("stopbits", 2)):
        world.probe.do(setting, value)
    assert world.adapter.events == [("plugged", "A1B2")], world.adapter.events

    world.open()

    world.arrives("9600 8E2", lambda: (world.adapter.baud, world.adapter.frame) == (9600, "8E2"))


def PassesEveryByteInBothDirections(world):
    every = bytes(range(256))
    world.open()

    world.probe.asks("send", every.hex(), answer="sent 1")
    world.adapter.send(every)

    world.arrives("every byte", lambda: len(world.adapter.received) >= len(every))
    wait_for("every byte at the port", lambda: len(world.probe.received) >= len(every), SLOW)
    assert world.adapter.received == every, world.adapter.received
    assert world.probe.received == every, world.probe.received


def AnswersARequest(world):
    world.open()
    world.probe.do("request", b"v".hex(), 30, 5)
    world.arrives("the request", lambda: world.adapter.received == b"v")

    world.adapter.send(b"1.")
    world.adapter.send(b"0\n\r")

    world.probe.hears("response " + b"1.0\n\r".hex())
    assert "timeout" not in world.probe.heard, world.probe.heard


def ClosesAndOpensWhenAFlowControlChanges(world):
    world.open()
    world.arrives("no flow control", lambda: world.adapter.flow_control == "none")

    opens = 1
    for flag, on, flow_control in (("rtscts", 1, "RTS/CTS"), ("rtscts", 0, "none"), ("dtrdsr", 1, "none"),
                                   ("dcdout", 1, "none"), ("rtscts", 1, "RTS/CTS")):
        opens += 1
        world.probe.do(flag, on)
        world.probe.hears("opened", opens)
        world.arrives("flow control: " + flow_control, lambda: world.adapter.flow_control == flow_control)

    told = [line for line in world.probe.heard if line in ("opened", "closed")]
    assert told == ["opened"] + ["closed", "opened"] * 5, told
    assert world.probe.errors() == [], world.probe.heard
    world.probe.asks("send", b"alive".hex(), answer="sent 1")
    world.arrives("bytes", lambda: world.adapter.received == b"alive")


def GivesTheLineItsSettingsBackWhenItCloses(world):
    give_odd_settings(world.node)
    before = settings_of(world.node)
    assert is_odd(world.adapter), world.adapter.events
    world.open()
    world.arrives("its own settings", lambda: (world.adapter.baud, world.adapter.frame) == (19200, "8N1"))
    assert settings_of(world.node) != before

    world.probe.asks("close", answer="close 1")

    # The adapter first: to look at the node is to open it, and the driver then sets the adapter up anew.
    assert is_odd(world.adapter), world.adapter.events
    after = settings_of(world.node)
    assert after == before, (after, before)


def opens_it(node):
    """What somebody else hears who may use serial ports and is not root: 0, or the errno."""
    return subprocess.run([sys.executable, "-c", OPEN, node], user="nobody", group="dialout").returncode


def KeepsOthersOutWhileItIsOpen(world):
    assert opens_it(world.node) == 0
    world.open()

    assert opens_it(world.node) == errno.EBUSY
    world.probe.asks("close", answer="close 1")
    assert opens_it(world.node) == 0


def told_of_the_end(world):
    """What the port's delegate has been told of the end of the line."""
    return [line for line in world.probe.heard if line in ("removed", "closed") or line.startswith("error ")]


def TellsOfAnAdapterThatIsPulledAsErrorRemovalAndClose(world):
    world.open()

    world.adapter.unplug()

    world.probe.hears("closed")
    assert told_of_the_end(world) == ["error %d" % errno.ENXIO, "removed", "closed"], world.probe.heard
    world.probe.asks("close", answer="close 1")


def lets_go(world):
    """The poll of the modem lines and hot-plug both find out, in any order; the port closes once, and for good."""
    world.probe.hears("closed")
    world.probe.hears("disconnected " + world.adapter.callout_path)
    told = told_of_the_end(world)
    assert told.count("closed") == 1 and told.index("removed") < told.index("closed"), told


def HearsOfAnAdapterThatIsPulledByHotPlugToo(world):
    world.probe.asks("watch", answer="watching")
    world.open()

    world.adapter.unplug()

    lets_go(world)
    assert set(world.probe.errors()) <= {errno.ENXIO}, world.probe.heard


def HearsOfAnAdapterThatIsPulledWhileThePortIsClosed(world):
    world.probe.asks("watch", answer="watching")

    world.adapter.unplug()

    world.probe.hears("disconnected " + world.adapter.callout_path)
    world.probe.hears("removed")
    assert told_of_the_end(world) == ["removed"], world.probe.heard


def LetsTheRequestTimeOutWhenTheAdapterIsPulledWhileItIsPending(world):
    world.probe.asks("watch", answer="watching")
    world.open()
    world.probe.do("request", b"v".hex(), 15, 5)
    world.arrives("the request", lambda: world.adapter.received == b"v")
    world.probe.do("request", b"w".hex(), 1, 5)

    world.adapter.unplug()

    lets_go(world)
    # The second can't be written any more, which takes its limit too.
    world.probe.hears("timeout", 2)
    assert world.probe.heard.index("removed") < world.probe.heard.index("timeout"), world.probe.heard
    assert not any(line.startswith("response") for line in world.probe.heard), world.probe.heard


def blocks_in_a_write(world, how):
    world.probe.asks("watch", answer="watching")
    world.open()
    world.adapter.takes_no_more()
    world.probe.do(how, MORE_THAN_THE_DRIVER_TAKES)
    world.arrives("bytes that it does not take", lambda: world.adapter.refused > 0)
    stays("the write under way", lambda: not any(line.startswith("sent") for line in world.probe.heard))


def EndsAWriteOfTheMainThreadWhenTheAdapterIsPulled(world):
    blocks_in_a_write(world, "fill")

    world.adapter.unplug()

    world.probe.hears("sent 0")
    lets_go(world)
    # ENODEV where the driver is asked before the line has been hung up.
    assert world.probe.errors()[0] in (errno.EIO, errno.ENODEV), world.probe.heard


def EndsAWriteOfAnotherThreadWhenTheAdapterIsPulled(world):
    blocks_in_a_write(world, "fillAside")

    world.adapter.unplug()

    world.probe.hears("sent 0")
    lets_go(world)


def TakesTheSamePortUpWhenTheAdapterComesBackUnderAnotherNode(world):
    world.probe.asks("watch", answer="watching")
    world.probe.do("parity", "even")
    world.open()
    with Held(world.node):
        former = world.node
        world.adapter.unplug()
        lets_go(world)

        world.plug_again()
        assert world.node != former, world.node
        world.probe.hears("connected %s same" % world.adapter.callout_path)
        world.probe.do("open")

        world.probe.hears("opened", 2)
    world.arrives("its settings", lambda: (world.adapter.baud, world.adapter.frame) == (19200, "8E1"))
    world.adapter.send(b"back")
    wait_for("bytes", lambda: world.probe.received == b"back", SLOW)


CASES = (ShowsTheInputLinesAsTheyAreAndAsTheyChange, DrivesEachOutputLineAlone,
         DrivesTheOutputLinesToTheirValuesWhenItOpens, SetsRateParityAndStopBitsOfTheOpenLine, SetsThemWhenItOpens,
         PassesEveryByteInBothDirections, AnswersARequest, ClosesAndOpensWhenAFlowControlChanges,
         GivesTheLineItsSettingsBackWhenItCloses, KeepsOthersOutWhileItIsOpen,
         TellsOfAnAdapterThatIsPulledAsErrorRemovalAndClose, HearsOfAnAdapterThatIsPulledByHotPlugToo,
         HearsOfAnAdapterThatIsPulledWhileThePortIsClosed,
         LetsTheRequestTimeOutWhenTheAdapterIsPulledWhileItIsPending, EndsAWriteOfTheMainThreadWhenTheAdapterIsPulled,
         EndsAWriteOfAnotherThreadWhenTheAdapterIsPulled, TakesTheSamePortUpWhenTheAdapterComesBackUnderAnotherNode)


def passes(case, build):
    world = World(build)
    try:
        try:
            case(world)
        finally:
            world.close()
    except BaseException:
        traceback.print_exc()
        print("FAIL  %s" % case.__name__, flush=True)
        print("heard: %r\narrived: %r" % (world.probe.heard, world.adapter.events), file=sys.stderr)
        return False
    print("ok    " + case.__name__, flush=True)
    return True


def main():
    build, wanted = os.path.abspath(sys.argv[1]), sys.argv[2:]
    return 0 if all([passes(case, build) for case in CASES if not wanted or case.__name__ in wanted]) else 1


if __name__ == "__main__":
    code = main()
    sys.stdout.flush()
    os._exit(code)
