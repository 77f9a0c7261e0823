"""The program's promises in seconds, on the real program with a simulated Vorrano. Each function whose name begins with
a capital is a measurement; it fails when a limit is passed. scripts/bench runs them, each with the computer to itself:

usage: PYTHONPATH=bench/window tests/e2e/run.py BUILD_FOLDER measure CASE
"""
import statistics
import threading
import time

from harness.firmware import FINISHED, begin, expect_image, image_of
from harness.screens import open_utilities, open_wifi_setup
from harness.stamps import WriteStamps
from harness.waiting import wait_for
from harness.world import situation
from firmware_test import LINE_PAUSE
from service_test import LOOPBACK, fill_in

TIME_OUT = 2.0


def judge(what, measured, limit):
    print("%s: %.4f, at most %.4f" % (what, measured, limit), flush=True)
    assert measured <= limit, what


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

    def judge(self, what):
        """Nobody notices a window that stands still for a quarter of a line's pause, or once for two and a half."""
        self._ended.set()
        self._thread.join()
        times = sorted(self.times)
        judge("%s, 99 of 100 answers of the window over a line's pause" % what,
              times[int(len(times) * 0.99)] / LINE_PAUSE, 0.5)
        judge("%s, the slowest answer of the window over a line's pause" % what, times[-1] / LINE_PAUSE, 2.5)


def TimeOut(world):
    open_wifi_setup(world.program)
    world.vorrano.fault("silence")
    world.program.type("Network name", "My Home Net")

    windows = len(world.program.root.children)
    world.program.press("Save network name")
    wait_for("the last byte", lambda: world.vorrano.received.endswith(b"\0"))
    wait_for("the alert's window", lambda: len(world.program.root.children) > windows, look=0.001)
    waited = time.monotonic() - world.vorrano.time_of("received", b"\0")

    world.program.expect_alert("ERROR", "Please try again")
    judge("a request that is not answered, over its time-out", waited / TIME_OUT, 1.2)


@situation(program=LOOPBACK)
def SlowService(world):
    world.vorrano.do("serviceFault", kind="slow", delay=5000)
    fill_in(world)
    heartbeat = Heartbeat(world.program.root)

    world.program.press("Sign In")
    world.program.find("page tab", "Utilities")

    heartbeat.judge("a slow service")


@situation(program=LOOPBACK)
def LongReply(world):
    rest = ",".join(["0"] * 2_000_000)
    world.vorrano.do("serviceFault", kind="answer", status=200, body='{"data":[{"Id":"7"}],"rest":[%s]}' % rest)
    fill_in(world)
    heartbeat = Heartbeat(world.program.root)

    world.program.press("Sign In")
    wait_for("the account to be signed in to", lambda: world.program.look_for("page tab", "Utilities"), deadline=60)

    heartbeat.judge("a long reply")


@situation(started=False)
def Upload(world):
    lines = 250
    image = image_of(lines)
    stamps = WriteStamps(world)
    world.start(stamps.environment)
    open_utilities(world.program)

    begin(world, image)
    wait_for("the upload", lambda: world.vorrano.state["mode"] == "image")
    heartbeat = Heartbeat(world.program.root)
    alert = world.program.alert(deadline=150)

    assert (alert.title, alert.text) == FINISHED, alert
    expect_image(world, image)
    heartbeat.judge("an upload")
    writes, pauses = stamps.of_image(image)
    judge("the pause after a line, median over its floor", statistics.median(pauses) / LINE_PAUSE, 1.005)
    # From the first byte to the last, which leaves out the two pauses at the end.
    total = writes[-1].returned - writes[0].begun
    judge("the upload of %d lines over its floor" % lines, total / (LINE_PAUSE * (lines - 1)), 1.02)
