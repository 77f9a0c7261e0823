"""Waiting for conditions, always with a deadline."""
import time

# What no busy computer needs; a test that fails waits it out once.
DEADLINE = 60.0
LOOK = 0.01


class Late(AssertionError):
    """What was waited for did not come in time."""


def wait_for(what, condition, deadline=DEADLINE, look=LOOK):
    """Gives the first true value of condition(); what names it when the deadline passes."""
    end = time.monotonic() + deadline
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise Late("%s: not within %.1f s" % (what, deadline))
        time.sleep(look)


def stays(what, condition, duration=0.4, look=LOOK):
    """Fails as soon as condition() is not true any more within the duration."""
    end = time.monotonic() + duration
    while time.monotonic() < end:
        if not condition():
            raise AssertionError("%s: did not stay so" % what)
        time.sleep(look)
