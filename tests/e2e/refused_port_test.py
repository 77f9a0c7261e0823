"""The port of the Vorrano may not be used, or another program uses it."""
import contextlib
import os
import subprocess
import sys

from harness.announcements import Announcements
from harness.screens import NO_VORRANO, open_utilities, open_wifi_setup
from harness.waiting import stays, wait_for
from harness.world import situation

NOT_ALLOWED = "You are not allowed to use the Vorrano's port. Install the package of Vorrano Setup."
IN_USE = "Another program is using the Vorrano's port. Close it to go on here."
# What lets an administrator pass permissions and exclusive use.
AS_A_PERSON = ("setpriv", "--bounding-set", "-dac_override,-dac_read_search,-sys_admin")


TAKE_THE_PORT = """
import fcntl, os, sys, termios
descriptor = os.open(sys.argv[1], os.O_RDWR | os.O_NOCTTY)
fcntl.ioctl(descriptor, termios.TIOCEXCL)
print("taken", flush=True)
sys.stdin.read()
fcntl.ioctl(descriptor, termios.TIOCNXCL)
"""


@contextlib.contextmanager
def taken(node):
    """Another program has the port for itself."""
    command = [sys.executable, "-c", TAKE_THE_PORT, node]
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as program:
        assert program.stdout.readline() == "taken\n"
        yield
        program.stdin.close()
        assert program.wait(10) == 0


def wait_for_the_port(world, notice):
    wait_for("the notice to go", lambda: not world.program.shows(notice))
    wait_for("the line", lambda: world.vorrano.node in world.program.open_files())


def expect_that_it_is_used(world, notice):
    wait_for_the_port(world, notice)
    world.program.press("Check network name")
    world.program.expect_alert("Not set\n\n\r", "Success")


@situation(started=False)
def APortThatMayNotBeUsedIsReportedAndUsedOnceItMay(world):
    os.chmod(world.vorrano.node, 0)
    world.start(through=AS_A_PERSON)

    open_wifi_setup(world.program)
    wait_for("the notice", lambda: world.program.shows(NOT_ALLOWED))
    world.picture("not_allowed")
    stays("the notice", lambda: world.program.shows(NOT_ALLOWED) and not world.program.alerts())
    os.chmod(world.vorrano.node, 0o600)

    expect_that_it_is_used(world, NOT_ALLOWED)


@situation(started=False)
def APortThatAnotherProgramUsesIsReportedAndUsedOnceItIsFree(world):
    with taken(world.vorrano.node):
        world.start(through=AS_A_PERSON)
        open_wifi_setup(world.program)
        wait_for("the notice", lambda: world.program.shows(IN_USE))
        world.picture("in_use")
        stays("the notice", lambda: world.program.shows(IN_USE) and not world.program.alerts())

    expect_that_it_is_used(world, IN_USE)


@situation(started=False)
def ARefusedPortIsReportedOnEachTabThatIsChosen(world):
    os.chmod(world.vorrano.node, 0)
    world.start(through=AS_A_PERSON)
    open_utilities(world.program)
    wait_for("the notice", lambda: world.program.shows(NOT_ALLOWED))
    world.picture("utilities")

    # The registration last: its question to the Vorrano would run out of time on the tab after it.
    for tab in ("Wifi Setup", "Register Vorrano"):
        world.program.choose_tab(tab)
        wait_for("the tab", lambda tab=tab: world.program.selected_tab() == tab)
        wait_for("the notice", lambda: world.program.shows(NOT_ALLOWED))
    os.chmod(world.vorrano.node, 0o600)

    wait_for_the_port(world, NOT_ALLOWED)


@situation(started=False)
def WhatIsWrongIsReadOutWhenItAppearsAndWhenItChanges(world):
    announcements = Announcements(world.bus)
    os.chmod(world.vorrano.node, 0)
    world.start(through=AS_A_PERSON)

    open_wifi_setup(world.program)
    wait_for("the first announcement", lambda: announcements.texts == [NOT_ALLOWED])
    world.pull_the_cable()

    wait_for("the second announcement", lambda: announcements.texts == [NOT_ALLOWED, NO_VORRANO])
