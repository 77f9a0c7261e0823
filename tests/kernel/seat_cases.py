"""What an ordinary person meets, who is in no group: without the program's package and with it, at the seat and away
from it. Each case begins as the one before it ends; the first with the person at the seat and no adapter."""
import os
import re
import subprocess

from adapter import SLOW
from harness.screens import open_wifi_setup
from harness.waiting import wait_for
from program_cases import check_the_network_name, opens, opens_none, shows_no_vorrano

NOT_ALLOWED = ("You are not allowed to use the Vorrano's port. Install the package of Vorrano Setup, or become a "
               "member of the group “dialout” and log in again.")


def people_who_may_use(node):
    """Those that the node's permissions name."""
    listed = subprocess.run(["getfacl", "--omit-header", "--absolute-names", node], check=True, capture_output=True,
                            text=True)
    return re.findall(r"^user:(\w+):rw", listed.stdout, re.MULTILINE)


def is_given_to(node, people):
    wait_for("the permissions of %s that name %r" % (node, people), lambda: people_who_may_use(node) == people, SLOW,
             look=0.2)


def is_refused(world, node):
    wait_for("the line about the refused port", lambda: world.program.shows(NOT_ALLOWED), SLOW)
    opens_none(world)
    assert people_who_may_use(node) == [], "%s may use %s" % (people_who_may_use(node), node)


def uses(world, node):
    is_given_to(node, [world.person])
    opens(world, node)
    wait_for("the line about the refused port to go", lambda: not world.program.shows(NOT_ALLOWED), SLOW)
    check_the_network_name(world, "Not set")


def SaysThatThePersonMayNotUseThePort(world):
    open_wifi_setup(world.program)

    node = world.administrator.asks("plug")

    is_refused(world, node)


def UsesThePortOnceThePackageIsInstalled(world):
    node = world.administrator.asks("node")

    world.administrator.asks("install_the_package")

    uses(world, node)


def UsesAnAdapterThatIsPluggedInAgain(world):
    world.administrator.asks("pull")
    shows_no_vorrano(world, True)
    opens_none(world)

    node = world.administrator.asks("plug")

    uses(world, node)


def expect_mark(device, name):
    """In what udev has written down about a device."""
    said = subprocess.run(["udevadm", "info", "--query=property", "--property=" + name, "--value", device], check=True,
                          capture_output=True, text=True).stdout.strip()
    assert said == "1", "udev's database has %s=%r for %s" % (name, said, device)


def KeepsModemManagersAway(world):
    node = world.administrator.asks("node")
    port = os.path.realpath("/sys/class/tty/%s/device" % os.path.basename(node))

    expect_mark(os.path.realpath(os.path.join(port, "..", "..")), "ID_MM_DEVICE_IGNORE")
    expect_mark(node, "ID_MM_PORT_IGNORE")


def LosesThePortWithTheSeatAndGetsItBackWithIt(world):
    world.administrator.asks("log_out")
    is_given_to(world.administrator.asks("node"), [])
    world.administrator.asks("pull")
    shows_no_vorrano(world, True)
    node = world.administrator.asks("plug")
    is_refused(world, node)

    world.administrator.asks("log_in")

    uses(world, node)


CASES = (SaysThatThePersonMayNotUseThePort, UsesThePortOnceThePackageIsInstalled,
         UsesAnAdapterThatIsPluggedInAgain, KeepsModemManagersAway,
         LosesThePortWithTheSeatAndGetsItBackWithIt)
