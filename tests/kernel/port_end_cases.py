"""An adapter that is pulled."""
import errno

from adapter import SLOW
from harness.waiting import stays, wait_for
from port_world import Held

# More than the kernel and its driver keep for a line.
MORE_THAN_THE_DRIVER_TAKES = 100_000


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


CASES = (TellsOfAnAdapterThatIsPulledAsErrorRemovalAndClose, HearsOfAnAdapterThatIsPulledByHotPlugToo,
         HearsOfAnAdapterThatIsPulledWhileThePortIsClosed,
         LetsTheRequestTimeOutWhenTheAdapterIsPulledWhileItIsPending, EndsAWriteOfTheMainThreadWhenTheAdapterIsPulled,
         EndsAWriteOfAnotherThreadWhenTheAdapterIsPulled, TakesTheSamePortUpWhenTheAdapterComesBackUnderAnotherNode)
