#!/usr/bin/python3
"""How long from exec to the first window: the program against a bare Qt window with the login's controls.

usage: measure.py PROGRAM BARE_WINDOW [PAIRS] [LIMIT]

Runs both by turns in an X server of its own, PAIRS times (default 15), and compares the medians. Ends with 1 when the
program takes more than LIMIT (default 1.25) times as long.
"""
import ctypes
import os
import statistics
import subprocess
import sys
import time

MAP_NOTIFY = 19
SUBSTRUCTURE_NOTIFY_MASK = 1 << 19
DEADLINE = 30


class Display:
    """Watches the root window of an X server for windows that are mapped."""

    def __init__(self, name):
        self.xlib = ctypes.CDLL("libX11.so.6")
        self.xlib.XOpenDisplay.restype = ctypes.c_void_p
        for call in ("XDefaultRootWindow", "XSelectInput", "XPending", "XNextEvent", "XSync"):
            getattr(self.xlib, call).argtypes = None
        self.display = ctypes.c_void_p(self.xlib.XOpenDisplay(name.encode()))
        self.xlib.XDefaultRootWindow.restype = ctypes.c_ulong
        root = ctypes.c_ulong(self.xlib.XDefaultRootWindow(self.display))
        self.xlib.XSelectInput(self.display, root, ctypes.c_long(SUBSTRUCTURE_NOTIFY_MASK))
        self.xlib.XSync(self.display, 0)

    def forget(self):
        self.xlib.XSync(self.display, 1)

    def wait_for_a_window(self):
        event = (ctypes.c_long * 24)()
        end = time.monotonic() + DEADLINE
        while time.monotonic() < end:
            while self.xlib.XPending(self.display):
                self.xlib.XNextEvent(self.display, ctypes.byref(event))
                if ctypes.cast(event, ctypes.POINTER(ctypes.c_int))[0] == MAP_NOTIFY:
                    return
            time.sleep(0.0002)
        raise TimeoutError("no window within %d s" % DEADLINE)


def start_to_window(display, program):
    display.forget()
    begin = time.monotonic()
    process = subprocess.Popen([program], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        display.wait_for_a_window()
        return time.monotonic() - begin
    finally:
        process.terminate()
        process.wait()


def main():
    program, bare = sys.argv[1:3]
    pairs = int(sys.argv[3]) if len(sys.argv) > 3 else 15
    limit = float(sys.argv[4]) if len(sys.argv) > 4 else 1.25
    read, write = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1366x768x24", "-nolisten", "tcp"],
                              pass_fds=[write], stderr=subprocess.DEVNULL)
    try:
        os.environ["DISPLAY"] = ":" + os.read(read, 16).decode().strip()
        os.environ["QT_QPA_PLATFORM"] = "xcb"
        display = Display(os.environ["DISPLAY"])
        for warm_up in (program, bare):
            start_to_window(display, warm_up)
        ours, theirs = [], []
        for _ in range(pairs):
            ours.append(start_to_window(display, program))
            theirs.append(start_to_window(display, bare))
    finally:
        server.terminate()
        server.wait()
    ratio = statistics.median(ours) / statistics.median(theirs)
    print("exec to first window, median of %d: program %.1f ms, bare window %.1f ms, ratio %.3f (limit %.2f)"
          % (pairs, 1000 * statistics.median(ours), 1000 * statistics.median(theirs), ratio, limit))
    return 1 if ratio > limit else 0


if __name__ == "__main__":
    sys.exit(main())
