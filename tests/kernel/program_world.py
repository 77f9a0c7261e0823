"""The real program on a display of its own, in a guest: what its cases happen in, and how they run."""
import os
import sys
import time
import traceback

from adapter import SLOW
from harness.bus import Bus
from harness.display import Display
from harness.program import Program


class ProgramWorld:
    """A display and the program. Needs a session bus."""

    def __init__(self, executable, folder, **environment):
        self.display, self.bus = Display(), Bus()
        self._log = os.path.join(folder, "log")
        everywhere = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_QPA_PLATFORM="xcb", HOME=folder,
                          XDG_RUNTIME_DIR=folder, XDG_CONFIG_HOME=folder)
        self.program = Program(self.bus, self.display, executable, dict(everywhere, **environment), self._log)

    def report(self):
        """What there is to see when a case has failed."""
        print(self.program.root.dump(), file=sys.stderr)
        with open(self._log, encoding="utf-8") as log:
            print(log.read(), file=sys.stderr)


def run(world, cases):
    """Each case begins with what the one before it leaves; the first that fails is the last. Gives an exit status."""
    try:
        for case in cases:
            begun = time.monotonic()
            case(world)
            print("ok    %s (%.1f s)" % (case.__name__, time.monotonic() - begun), flush=True)
    except BaseException:
        traceback.print_exc()
        world.report()
        return 1
    finally:
        status = world.program.end(deadline=SLOW)
    print("ok    EndsWithStatus0" if status == 0 else "FAIL  ended with %d" % status, flush=True)
    return status
