"""What scripts/bench --all measures of the real program with a simulated Vorrano. Each function whose name begins with a
capital prints the figures of its rows:

usage: PYTHONPATH=bench:bench/window tests/e2e/run.py BUILD_FOLDER full CASE
"""
import contextlib
import os
import subprocess
import time

from harness.firmware import FINISHED, begin, expect_image, image_of
from harness.screens import TABS, create_account, open_utilities
from harness.stamps import WriteStamps
from harness.waiting import wait_for
from harness.world import situation
from figures import figure
from firmware_test import LINE_PAUSE
from screen import Screen
from startup.measure import SETTLED, memory

ALERTS = 15
ROUNDS_OF_TABS = 5
IDLE = 30
LINES = 2000


def visit(program, tab):
    program.choose_tab(tab)
    wait_for("the tab", lambda: program.selected_tab() == tab)


class Places:
    """Where the controls are on the screen, as the accessibility bus tells."""

    def __init__(self, world):
        self._places = {}
        program = world.program
        for name in ("Create Account", "Accept"):
            self.find(program, "push button", name)
            program.press(name)
        for tab in TABS:
            self.find(program, "page tab", tab)
        visit(program, "Utilities")
        self.find(program, "push button", "MAC Address")
        program.press("MAC Address")
        self.find(program, "push button", "OK")
        program.dismiss(program.alert())

    def find(self, program, role, name):
        x, y, width, height = program.find(role, name).extents
        self._places[name] = x + width // 2, y + height // 2

    def __getitem__(self, name):
        return self._places[name]


@contextlib.contextmanager
def at_the_pointer(world):
    """The program as a person without a screen reader has it: nothing listens on the accessibility bus. Gives a function
    that clicks on a control, waits until what comes of it has been drawn, and gives both times."""
    places = Places(world)
    executable = world.program.executable
    world.program.end()
    world.program = None
    screen = Screen(world.display.name)
    screen.follow_drawing()
    screen.forget()
    program = subprocess.Popen([executable], env=world.environment(), stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def click(name):
        screen.move_pointer(*places[name])
        time.sleep(SETTLED / 4)
        screen.forget()
        return screen.click(), screen.wait_until_drawn()
    try:
        screen.wait_for_a_window()
        screen.wait_until_drawn()
        click("Create Account")
        click("Accept")
        yield click
    finally:
        program.terminate()
        assert program.wait(10) == 0


def AlertShown(world):
    """From the last byte of a reply to the alert that shows it, drawn."""
    waits = []
    with at_the_pointer(world) as click:
        click("Utilities")
        for _ in range(ALERTS):
            _, drawn = click("MAC Address")
            waits.append(drawn - world.vorrano.time_of("sent", b"\r"))
            click("OK")
    figure("last byte to the alert on the screen", "vorrano", "ms", [1000 * wait for wait in waits])


def TabDrawn(world):
    waits = []
    with at_the_pointer(world) as click:
        for _ in range(ROUNDS_OF_TABS):
            for tab in TABS[1:] + TABS[:1]:
                begun, drawn = click(tab)
                waits.append(drawn - begun)
    figure("choosing a tab, click to drawn", "vorrano", "ms", [1000 * wait for wait in waits])


def wake_ups(pid):
    """How often each of the process's threads began to run again."""
    counts = {}
    for thread in os.listdir("/proc/%d/task" % pid):
        with open("/proc/%d/task/%s/status" % (pid, thread), encoding="ascii") as file:
            counts[thread] = sum(int(line.split()[1]) for line in file if line.startswith("voluntary_ctxt_switches"))
    return counts


@situation(plugged=False)
def IdleWithoutPort(world):
    """No window has the keyboard here, so no caret blinks. Nobody asks over the accessibility bus meanwhile."""
    create_account(world.program)
    visit(world.program, "Utilities")
    # By then the threads that have nothing to do have left.
    time.sleep(IDLE + 5)
    before = wake_ups(world.program.pid)
    time.sleep(IDLE)
    after = wake_ups(world.program.pid)
    print({thread: after[thread] - before.get(thread, 0) for thread in after})
    figure("idle without a port, wake-ups in %d s" % IDLE, "vorrano", "",
           [sum(count - before.get(thread, 0) for thread, count in after.items())])


def Memory(world):
    world.program.find("push button", "Sign In")
    time.sleep(SETTLED)
    figure("memory at the sign-in", "vorrano", "MB", [memory(world.program.pid)])
    create_account(world.program)
    for tab in TABS:
        visit(world.program, tab)
    time.sleep(SETTLED)
    figure("memory with all tabs visited", "vorrano", "MB", [memory(world.program.pid)])


@situation(program="bench/startup/bench_bare_window")
def MemoryOfABareWindow(world):
    world.program.find("push button", "Sign In")
    time.sleep(SETTLED)
    figure("memory at the sign-in", "bare Qt window", "MB", [memory(world.program.pid)])
    # It knows no signal, and so ends by it.
    world.program.end()
    world.program = None


@situation(started=False)
def LongUpload(world):
    image = image_of(LINES)
    stamps = WriteStamps(world)
    world.start(stamps.environment)
    open_utilities(world.program)

    begin(world, image)
    wait_for("the upload", lambda: world.vorrano.state["mode"] == "image")
    alert = world.program.alert(deadline=300)

    assert (alert.title, alert.text) == FINISHED, alert
    expect_image(world, image)
    writes, _ = stamps.of_image(image)
    # From the first byte to the last, and the two pauses after it.
    total = writes[-1].returned - writes[0].begun + 2 * LINE_PAUSE
    figure("an upload of %d lines" % LINES, "vorrano", "s", [total])
    figure("an upload of %d lines" % LINES, "its floor", "s", [LINE_PAUSE * (LINES + 1)])
