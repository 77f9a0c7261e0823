"""What is promised in seconds. Each case has the computer to itself."""
import statistics
import threading
import time

from harness.firmware import FINISHED, begin, expect_image, image_of
from harness.screens import open_utilities, open_wifi_setup
from harness.stamps import WriteStamps
from harness.waiting import wait_for
from harness.world import situation

LINE_PAUSE = 0.10000000149011612


class Heartbeat:
    """Asks the program's main loop for something small again and again, and keeps how long each answer took."""

    def __init__(self, root):
        self._root = root
        self._ended = threading.Event()
        self._thread = threading.Thread(target=self._beat, daemon=True)
        self.times = []
        self._thread.start()

    def _beat(self):
        while not self._ended.wait(0.005):
            begun = time.monotonic()
            self._root.call("org.a11y.atspi.Accessible", "GetRoleName")
            self.times.append(time.monotonic() - begun)

    def end(self):
        self._ended.set()
        self._thread.join()
        return sorted(self.times)


def ASilentVorranoIsGivenUpAfterTwoSeconds(world):
    open_wifi_setup(world.program)
    world.vorrano.fault("silence")
    world.program.type("Network name", "My Home Net")

    windows = len(world.program.root.children)
    world.program.press("Save network name")
    wait_for("the last byte", lambda: world.vorrano.received.endswith(b"\0"))
    wait_for("the alert's window", lambda: len(world.program.root.children) > windows, look=0.001)
    waited = time.monotonic() - world.vorrano.time_of("received", b"\0")

    world.program.expect_alert("ERROR", "Please try again")
    assert 2.0 <= waited <= 2.4, waited


@situation(program="vorrano-demo", plugged=False, started=False)
def TheDemoIsOnTheScreenWithinThreeSeconds(world):
    begun = time.monotonic()
    world.start()
    world.program.button("Sign In")
    wait_for("the Vorrano", lambda: [root for root in world.bus.applications("vorrano-simulator")
                                     if root.find_all("label", "PC Connected...")])

    waited = time.monotonic() - begun
    assert waited < 3.0, waited


@situation(program="vorrano-setup-loopback")
def TheWindowStaysAliveWhileTheServiceIsSlow(world):
    world.vorrano.do("serviceFault", kind="slow", delay=5000)
    world.program.type("Account ID or email", "ada")
    world.program.type("Password", "secret1")
    heartbeat = Heartbeat(world.program.root)

    world.program.press("Sign In")
    world.program.expect_alert("Invalid AccountID/Password", "Please try again")

    times = heartbeat.end()
    assert len(times) > 300, len(times)
    assert times[int(len(times) * 0.99)] < 0.050 and times[-1] < 0.250, times[-10:]


@situation(program="vorrano-setup-loopback")
def ALongReplyIsReadBesideTheWindow(world):
    rest = ",".join(["0"] * 2_000_000)
    world.vorrano.do("serviceFault", kind="answer", status=200, body='{"data":[{"Id":"7"}],"rest":[%s]}' % rest)
    world.program.type("Account ID or email", "ada")
    world.program.type("Password", "secret1")
    heartbeat = Heartbeat(world.program.root)

    world.program.press("Sign In")
    wait_for("the account to be signed in to", lambda: world.program.look_for("page tab", "Utilities"), deadline=60)

    times = heartbeat.end()
    assert times[int(len(times) * 0.99)] < 0.050 and times[-1] < 0.250, times[-10:]


@situation(started=False)
def AnUploadKeepsItsPaceAndTheWindowAlive(world):
    lines = 500
    image = image_of(lines)
    stamps = WriteStamps(world)
    world.start(stamps.environment)
    open_utilities(world.program)

    begin(world, image)
    wait_for("the upload", lambda: world.vorrano.state["mode"] == "image")
    heartbeat = Heartbeat(world.program.root)
    alert = world.program.alert(deadline=150)

    times = heartbeat.end()
    assert (alert.title, alert.text) == FINISHED, alert
    expect_image(world, image)
    sent = image.replace("\n", "").encode()
    writes = stamps.of(sent)
    ends = [place for place, byte in enumerate(sent) if byte == ord("\r")][:-1]
    pauses = [writes[place + 1].begun - writes[place].returned for place in ends]
    assert len(pauses) == lines - 1
    assert min(pauses) >= LINE_PAUSE, min(pauses)
    assert statistics.median(pauses) - LINE_PAUSE <= 0.0005, statistics.median(pauses)
    # From the first byte to the last, which leaves out the two pauses at the end.
    total = writes[-1].returned - writes[0].begun
    assert total <= LINE_PAUSE * (lines - 1) * 1.02, total
    assert times[-1] < 0.250, times[-10:]
