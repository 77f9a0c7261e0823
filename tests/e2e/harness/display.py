"""A display of its own, with the accessibility bus."""
import contextlib
import os
import shutil
import subprocess
import tempfile

from gi.repository import Gio, GLib

from .waiting import wait_for
from .xlib import XLib

LAUNCHER = "/usr/libexec/at-spi-bus-launcher"


class Display:
    def __init__(self, width=1366, height=768):
        reading, writing = os.pipe()
        self._server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "%dx%dx24" % (width, height), "-nolisten", "tcp",
             "-noreset"], pass_fds=[writing], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as numbers:
            number = numbers.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.name = ":" + number
        os.environ["DISPLAY"] = self.name
        # The launcher names its socket after the display's number alone, which another display may have had just before.
        self._sockets = tempfile.mkdtemp(prefix="vorrano-bus-")
        self._launcher = subprocess.Popen([LAUNCHER, "--launch-immediately"], stdout=subprocess.DEVNULL,
                                          stderr=subprocess.DEVNULL,
                                          env=dict(os.environ, XDG_RUNTIME_DIR=self._sockets))
        session = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        wait_for("the accessibility bus", lambda: session.call_sync(
            "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "NameHasOwner",
            GLib.Variant("(s)", ("org.a11y.Bus",)), None, Gio.DBusCallFlags.NONE, 5000, None).unpack()[0])

    def screenshot(self, path):
        os.makedirs(os.path.dirname(path), exist_ok=True)
        subprocess.run(["import", "-display", self.name, "-window", "root", path], check=True)

    def colours(self):
        """How many there are to be seen; one while nothing is painted."""
        picture = subprocess.run(["import", "-display", self.name, "-window", "root", "png:-"], check=True,
                                 stdout=subprocess.PIPE).stdout
        return int(subprocess.run(["identify", "-format", "%k", "-"], input=picture, check=True,
                                  stdout=subprocess.PIPE).stdout)

    def keys(self, *keys):
        """Presses keys as a person at the keyboard does; each is a name of xdotool's ("Tab", "alt+s")."""
        subprocess.run(["xdotool", "key", "--clearmodifiers", *keys], check=True)

    def write(self, text):
        subprocess.run(["xdotool", "type", "--clearmodifiers", "--delay", "4", text], check=True)

    def click(self, x, y):
        subprocess.run(["xdotool", "mousemove", str(x), str(y), "click", "1"], check=True)

    def click_on(self, node):
        x, y, width, height = node.extents
        self.click(x + width // 2, y + height // 2)

    @contextlib.contextmanager
    def held(self, *keys):
        """Keeps keys down for a while; the display repeats the last of them quickly."""
        x = XLib(self.name)
        x.repeat_keys(after_ms=100, every_ms=20)
        x.close()
        subprocess.run(["xdotool", "keydown", *keys], check=True)
        try:
            yield
        finally:
            subprocess.run(["xdotool", "keyup", *reversed(keys)], check=True)

    def windows(self, pid):
        """The numbers of the program's windows that are on the screen."""
        search = ["xdotool", "search", "--onlyvisible", "--pid", str(pid)]
        return subprocess.run(search, check=False, capture_output=True, text=True).stdout.split()

    @staticmethod
    def _extents_of(window):
        geometry = ["xdotool", "getwindowgeometry", "--shell", window]
        said = subprocess.run(geometry, check=False, capture_output=True, text=True).stdout
        values = dict(line.split("=") for line in said.splitlines())
        return tuple(int(values.get(name, -1)) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def window_at(self, pid, extents):
        """The number of the program's window that is there, or None."""
        windows = self.windows(pid)
        return next((window for window in windows if self._extents_of(window) == tuple(extents)), None)

    def give_keyboard(self, node):
        """Gives the keyboard to the window of an accessible, as no window manager does it here, and waits until the
        program knows of it."""
        window = node.window

        def given():
            if window.has("active"):
                return True
            number = self.window_at(window.pid, window.extents)
            if number:
                # A window that is not on the screen yet refuses.
                subprocess.run(["xdotool", "windowfocus", number], check=False, stderr=subprocess.DEVNULL)
            return False
        wait_for("the keyboard", given)

    def close_window(self, pid):
        """What the window's close button does."""
        x = XLib(self.name)
        x.ask_to_close(int(wait_for("a window", lambda: self.windows(pid))[-1]))
        x.close()

    def stop(self):
        for process in (self._launcher, self._server):
            process.terminate()
            process.wait(10)
        shutil.rmtree(self._sockets, ignore_errors=True)
