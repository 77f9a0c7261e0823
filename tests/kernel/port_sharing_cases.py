"""Other programs and other people at the same line."""
import errno
import os
import pwd
import subprocess
import sys

# Somebody else who opens the line; ends with the errno.
OPEN = """
import os, sys
try:
    os.open(sys.argv[1], os.O_RDWR | os.O_NOCTTY | os.O_NONBLOCK)
except OSError as error:
    sys.exit(error.errno)
"""


def opens_it(node):
    """What somebody else hears who may use serial ports and is not root: 0, or the errno."""
    return subprocess.run([sys.executable, "-c", OPEN, node], user="nobody", group="dialout").returncode


def KeepsOthersOutWhileItIsOpen(world):
    assert opens_it(world.node) == 0
    world.open()

    assert opens_it(world.node) == errno.EBUSY
    world.probe.asks("close", answer="close 1")
    assert opens_it(world.node) == 0


def IsRefusedALineThatThePersonMayNotUseUntilTheyMay(world):
    with world.another_program(user="nobody", group="nogroup", extra_groups=[]) as probe:
        probe.do("open")
        probe.hears("error %d" % errno.EACCES)
        assert "opened" not in probe.heard, probe.heard

        os.chown(world.node, pwd.getpwnam("nobody").pw_uid, -1)

        probe.asks("open", answer="opened")
        probe.asks("send", b"mine".hex(), answer="sent 1")
        world.arrives("bytes", lambda: world.adapter.received == b"mine")


def LeavesALineAloneThatAnotherProgramHolds(world):
    """Root could not be kept out: the kernel raises DTR and RTS before the lock is asked for."""
    world.probe.do("baud", 57600)
    world.open()
    world.arrives("its rate", lambda: abs(world.adapter.baud - 57600) < 100)
    world.arrives("DTR and RTS low", lambda: not world.adapter.dtr and not world.adapter.rts)
    before = list(world.adapter.events)
    with world.another_program(user="nobody", group="dialout", extra_groups=[]) as other:
        other.do("open")

        other.hears("error %d" % errno.EBUSY)
        assert world.adapter.events == before, world.adapter.events
        world.probe.asks("close", answer="close 1")
        other.asks("open", answer="opened")
        world.arrives("the other's rate", lambda: world.adapter.baud == 19200)


CASES = (KeepsOthersOutWhileItIsOpen, IsRefusedALineThatThePersonMayNotUseUntilTheyMay,
         LeavesALineAloneThatAnotherProgramHolds)
