"""What one case happens in: a display, a mocked computer with a Vorrano on its cable, and the program."""
import os
import shutil
import tempfile
import traceback

from .adapter import Computer
from .bus import Bus
from .display import Display
from .program import Program
from .simulator import Simulator

SERVICE_PORT = 47811
HIDDEN = ("WAYLAND_DISPLAY", "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE", "XDG_CURRENT_DESKTOP", "DESKTOP_SESSION",
          "KDE_FULL_SESSION", "GNOME_DESKTOP_SESSION_ID")


def situation(**options):
    """Says in what a case differs from the ordinary: program="...", plugged=False, started=False."""
    def mark(case):
        case.options = options
        return case
    return mark


class World:
    def __init__(self, case, build, program="vorrano-setup", plugged=True, started=True, screen=(1366, 768)):
        self.case, self.build = case, build
        self._program_name = program
        self.folder = tempfile.mkdtemp(prefix="vorrano-e2e-")
        self.program = self.adapter = None
        self.computer = Computer()
        self.display = Display(*screen)
        self.bus = Bus()
        self.vorrano = Simulator(os.path.join(build, "vorrano-simulator"), self.folder, SERVICE_PORT, plugged)
        if plugged:
            self.adapter = self.computer.plug(self.vorrano.node)
        if started:
            self.start()

    def environment(self):
        """That of the program, without anything of the person's own desktop."""
        environment = {name: value for name, value in os.environ.items() if name not in HIDDEN}
        environment.update(self.computer.environment(), QT_QPA_PLATFORM="xcb", HOME=self.folder,
                           XDG_RUNTIME_DIR=self.folder, XDG_CONFIG_HOME=self.folder,
                           DBUS_SYSTEM_BUS_ADDRESS="unix:path=%s/no-system-bus" % self.folder)
        return environment

    def start(self, extra=None, arguments=(), through=()):
        """Starts the program; extra goes into its environment, and the command `through`, if there is one, starts
        it."""
        environment = dict(self.environment(), QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        for name, value in (extra or {}).items():
            environment[name] = value + ":" + environment[name] if name == "LD_PRELOAD" else value
        self.program = Program(self.bus, self.display, os.path.join(self.build, self._program_name), environment,
                               self.artefact("log"), arguments=arguments, through=through)
        return self.program

    def artefact(self, suffix):
        path = os.path.join(self.build, "e2e", "%s.%s" % (self.case, suffix))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        return path

    def picture(self, name):
        self.display.screenshot(self.artefact(name + ".png"))

    def pull_the_cable(self):
        self.vorrano.do("unplug")
        self.adapter.unplug()
        self.adapter = None

    def plug_the_cable_in(self, minor=0):
        self.adapter = self.computer.plug(self.vorrano.do("plug")["node"], minor=minor)

    def report(self):
        """What there was to see when a case failed."""
        try:
            self.picture("failed")
            print(self.program.root.dump() if self.program else "the program was not started")
            print("device: %r" % self.vorrano.state)
        except Exception:  # the case's own failure is what matters
            traceback.print_exc()

    def close(self):
        status = 0
        try:
            if self.program:
                status = self.program.end()
        finally:
            self.vorrano.stop()
            self.display.stop()
            shutil.rmtree(self.folder, ignore_errors=True)
        assert status == 0, "the program ended with %d" % status
