"""What a port does to its line, and what comes over it."""
import termios

from adapter import SLOW
from harness.waiting import wait_for
from port_world import Held


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


CASES = (ShowsTheInputLinesAsTheyAreAndAsTheyChange, DrivesEachOutputLineAlone,
         DrivesTheOutputLinesToTheirValuesWhenItOpens, SetsRateParityAndStopBitsOfTheOpenLine, SetsThemWhenItOpens,
         PassesEveryByteInBothDirections, AnswersARequest, ClosesAndOpensWhenAFlowControlChanges,
         GivesTheLineItsSettingsBackWhenItCloses)
