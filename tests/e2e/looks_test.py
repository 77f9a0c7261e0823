"""What a person can tell apart in the colours of their desktop."""
import subprocess

from harness.screens import open_utilities
from harness.tastes import CONTRAST, DARK, desktop_settings
from harness.waiting import wait_for
from harness.world import situation

# Of the way from black to white.
SEEN = 0.2
FRAME = 3


@situation(started=False)
def AFieldAndItsHintAreSeenInBlack(world):
    world.start(desktop_settings(world.folder, CONTRAST))
    open_utilities(world.program)

    x, y, width, height = world.program.field("Throttle").extents
    wait_for("the field's frame", lambda: contrast(world, x, y, FRAME, height) > SEEN)
    expect_hint(world, x, y, width, height)


@situation(started=False)
def AHintIsSeenInTheDark(world):
    world.start(desktop_settings(world.folder, DARK))
    open_utilities(world.program)

    expect_hint(world, *world.program.field("Throttle").extents)


def expect_hint(world, x, y, width, height):
    inner = (x + FRAME, y + FRAME, width - 2 * FRAME, height - 2 * FRAME)
    wait_for("the field's hint", lambda: contrast(world, *inner) > SEEN)


def contrast(world, x, y, width, height):
    """Between the darkest and the lightest point there."""
    picture = world.artefact("seen.png")
    world.display.screenshot(picture)
    said = subprocess.run(["convert", picture, "-crop", "%dx%d+%d+%d" % (width, height, x, y), "-colorspace", "gray",
                           "-format", "%[fx:maxima-minima]", "info:"], check=True, capture_output=True, text=True)
    return float(said.stdout)
