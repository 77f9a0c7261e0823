"""What a case of the command-line tool happens in: a mocked computer with Vorranos on its cables, and the tool."""
import json
import os
import shutil
import subprocess
import tempfile
import traceback

from .adapter import Computer
from .simulator import Simulator

DEADLINE = 60


class Vorrano:
    """A simulated Vorrano and the adapter on its cable."""

    def __init__(self, world, number):
        self._computer, self._number = world.computer, number
        folder = os.path.join(world.folder, "vorrano%d" % number)
        os.mkdir(folder)
        self.simulator = Simulator(os.path.join(world.build, "vorrano-simulator"), folder)
        self.serial = "V%d" % number
        self.path, self.node = "/dev/cu.usbserial-" + self.serial, "/dev/ttyUSB%d" % number
        self._adapter = self._computer.plug(self.simulator.node, self.serial, number + 1, number)

    def pull_the_cable(self):
        self.simulator.do("unplug")
        self._adapter.unplug()


class ToolWorld:
    def __init__(self, case, build, vorranos=1):
        self.case, self.build = case, build
        self.folder = tempfile.mkdtemp(prefix="vorrano-e2e-")
        self.computer = Computer()
        self.vorranos = [Vorrano(self, number) for number in range(vorranos)]

    @property
    def vorrano(self):
        return self.vorranos[0].simulator

    def environment(self, extra=None):
        environment = dict(os.environ, HOME=self.folder,
                           DBUS_SYSTEM_BUS_ADDRESS="unix:path=%s/no-system-bus" % self.folder)
        environment.update(self.computer.environment())
        environment.update(extra or {})
        return environment

    def command(self, arguments):
        return [os.path.join(self.build, "vorranoctl"), *arguments]

    def start(self, *arguments, extra=None, **streams):
        """The tool, running."""
        streams = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **streams}
        return subprocess.Popen(self.command(arguments), env=self.environment(extra), **streams)

    def run(self, *arguments, given=None, extra=None, before=()):
        """The tool, when it has ended; `given` is its standard input, `before` a command that runs it."""
        return subprocess.run([*before, *self.command(arguments)], input=given or b"", env=self.environment(extra),
                              capture_output=True, timeout=DEADLINE, check=False)

    def expect(self, arguments, output=None, status=0, error="", given=None):
        """Runs the tool, and gives its output."""
        ended = self.run(*arguments, given=given)
        assert ended.returncode == status, ended
        assert ended.stderr.decode() == error, ended
        assert output is None or ended.stdout.decode() == output, ended
        return ended.stdout.decode()

    def records(self, *arguments, status=0):
        """The JSON objects of the tool's output."""
        ended = self.run(*arguments, "--json")
        assert ended.returncode == status, ended
        return [json.loads(line) for line in ended.stdout.decode().splitlines()]

    def file(self, name, content):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def report(self):
        """What there was to see when a case failed."""
        for vorrano in self.vorranos:
            try:
                print("%s: %r" % (vorrano.path, vorrano.simulator.state))
            except Exception:  # the case's own failure is what matters
                traceback.print_exc()

    def close(self):
        for vorrano in self.vorranos:
            vorrano.simulator.stop()
        shutil.rmtree(self.folder, ignore_errors=True)
