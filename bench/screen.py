"""An X server of one's own, and what is to be seen on it, with times of the monotonic clock."""
import contextlib
import ctypes
import os
import subprocess
import time

MAP_NOTIFY = 19
SUBSTRUCTURE_NOTIFY_MASK = 1 << 19
RAW_RECTANGLES = 0
DEADLINE = 30
LOOK = 0.0002


class Screen:
    """Watches the root window of an X server: windows that are mapped, and whatever is drawn."""

    def __init__(self, name):
        self._x = ctypes.CDLL("libX11.so.6")
        self._x.XOpenDisplay.restype = ctypes.c_void_p
        self._x.XDefaultRootWindow.restype = ctypes.c_ulong
        for call in ("XDefaultRootWindow", "XSelectInput", "XPending", "XNextEvent", "XSync"):
            getattr(self._x, call).argtypes = None
        self._display = ctypes.c_void_p(self._x.XOpenDisplay(name.encode()))
        self._drawn = None
        self._root = ctypes.c_ulong(self._x.XDefaultRootWindow(self._display))
        self._x.XSelectInput(self._display, self._root, ctypes.c_long(SUBSTRUCTURE_NOTIFY_MASK))
        self._x.XSync(self._display, 0)

    def follow_drawing(self):
        damage = ctypes.CDLL("libXdamage.so.1")
        first, error = ctypes.c_int(), ctypes.c_int()
        if not damage.XDamageQueryExtension(self._display, ctypes.byref(first), ctypes.byref(error)):
            raise RuntimeError("the X server does not tell what is drawn")
        self._drawn = first.value
        damage.XDamageCreate(self._display, self._root, RAW_RECTANGLES)
        self._x.XSync(self._display, 0)

    def forget(self):
        self._x.XSync(self._display, 1)

    def _next_event(self, limit):
        """The kind of the next event; None when there is none within the limit."""
        event = (ctypes.c_long * 24)()
        end = time.monotonic() + limit
        while time.monotonic() < end:
            if self._x.XPending(self._display):
                self._x.XNextEvent(self._display, ctypes.byref(event))
                return ctypes.cast(event, ctypes.POINTER(ctypes.c_int))[0]
            time.sleep(LOOK)
        return None

    def wait_for_a_window(self, deadline=DEADLINE):
        """When a window was mapped."""
        end = time.monotonic() + deadline
        while time.monotonic() < end:
            if self._next_event(deadline) == MAP_NOTIFY:
                return time.monotonic()
        raise TimeoutError("no window within %d s" % deadline)

    def wait_until_drawn(self, quiet=0.1):
        """When the last of what is drawn now was drawn: nothing follows within `quiet` seconds."""
        last = None
        end = time.monotonic() + DEADLINE
        while time.monotonic() < end:
            kind = self._next_event(DEADLINE if last is None else quiet)
            if kind == self._drawn:
                last = time.monotonic()
            elif kind is None:
                break
        if last is None:
            raise TimeoutError("nothing is drawn within %d s" % DEADLINE)
        return last

    def move_pointer(self, x, y):
        self._test().XTestFakeMotionEvent(self._display, -1, x, y, ctypes.c_ulong(0))
        self._x.XSync(self._display, 0)

    def click(self):
        """Clicks where the pointer is; when the button went down."""
        begun = time.monotonic()
        for down in (1, 0):
            self._test().XTestFakeButtonEvent(self._display, 1, down, ctypes.c_ulong(0))
        self._x.XFlush(self._display)
        return begun

    @staticmethod
    def _test():
        return ctypes.CDLL("libXtst.so.6")


@contextlib.contextmanager
def own_screen():
    reading, writing = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-screen", "0", "1366x768x24", "-nolisten", "tcp"],
                              pass_fds=[writing], stderr=subprocess.DEVNULL)
    try:
        os.environ["DISPLAY"] = ":" + os.read(reading, 16).decode().strip()
        yield Screen(os.environ["DISPLAY"])
    finally:
        server.terminate()
        server.wait()
