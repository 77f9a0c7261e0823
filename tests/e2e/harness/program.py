"""The setup program as a person at a screen reader knows it: by what its controls are called."""
import os
import signal
import subprocess

from .bus import Gone, plain
from .waiting import DEADLINE, wait_for


class Alert:
    """A message over the program's windows."""

    def __init__(self, node):
        self.node = node
        self.title, self.text = self._texts()

    def _texts(self):
        # There is no second label when the informative text is empty.
        labels = self.node.find_all("label")
        return labels[0].name, labels[1].name if len(labels) > 1 else ""

    @property
    def buttons(self):
        return [plain(button.name) for button in self.node.find_all("push button")]

    def __repr__(self):
        return "<alert %r %r>" % (self.title, self.text)


class Program:
    def __init__(self, bus, display, executable, environment, log, folder=None, arguments=(), through=()):
        self._bus = bus
        self._display = display
        self._log = open(log, "w", encoding="utf-8")
        self.executable = os.path.abspath(executable)
        self._process = subprocess.Popen([*through, self.executable, *arguments], env=environment,
                                         stdin=subprocess.DEVNULL, stdout=self._log, stderr=self._log, cwd=folder)
        self.pid = self._process.pid
        self.root = wait_for("the program on the accessibility bus", self._find_root)

    def _find_root(self):
        if self._process.poll() is not None:
            raise AssertionError("the program ended with %d" % self._process.returncode)
        return self._bus.application(self.pid)

    # Looking

    def windows(self):
        return [window for window in self.root.children if window.has("showing")]

    def look_for(self, role, name):
        """The control of that role and name that is on the screen, or None."""
        roles = (role,) if isinstance(role, str) else role
        try:
            for node in self.root.find_all():
                if node.role in roles and self._is_called(node, name):
                    return node
        except Gone:
            pass
        return None

    @staticmethod
    def _is_called(node, name):
        if name is None or plain(node.name) == name:
            return True
        return name in map(plain, node.labels)

    def find(self, role, name, deadline=DEADLINE):
        return wait_for("%s %r" % (role, name), lambda: self.look_for(role, name), deadline)

    def button(self, name):
        return self.find("push button", name)

    def field(self, name):
        return self.find("text", name)

    def combo(self, name):
        return self.find("combo box", name)

    def shows(self, text):
        """Whether a label, or a line that is read out when it appears, has this text on the screen."""
        return self.look_for(("label", "notification"), text) is not None

    # Acting

    def press(self, name):
        self.button(name).act("Press")

    def type(self, name, text):
        field = self.field(name)
        field.set_text(text)
        if not field.masked:
            wait_for("%r in %r" % (text, name), lambda: field.text == text)

    def type_now(self, name, text):
        """The same for a field that may not take it."""
        self.field(name).set_text(text)

    def choose_tab(self, name):
        self.find("page tab", name).act("Press")

    def selected_tab(self):
        return wait_for("a selected tab", lambda: [tab for tab in self.root.find_all("page tab")
                                                   if tab.has("selected")])[0].name

    def items(self, name):
        """The entries of a pick list."""
        return [node.name for _, node in self.combo(name).tree() if node.role == "list item"]

    def open_list(self, name):
        combo = self.combo(name)
        combo.act("Press")
        entries = [node for _, node in combo.tree() if node.role == "list"][0]
        wait_for("the list of %r" % name, lambda: entries.has("showing"))
        return entries

    def choose(self, name, title):
        """Chooses an entry as a person at the keyboard does, from the open list."""
        steps = self.items(name).index(title)
        entries = self.open_list(name)
        self._display.keys("Home", *["Down"] * steps, "Return")
        wait_for("the list of %r to close" % name, lambda: not entries.has("showing"))

    # Alerts

    def alerts(self):
        try:
            return [Alert(window) for window in self.windows() if window.role.startswith("alert")]
        except Gone:
            return []

    def alert(self, deadline=DEADLINE):
        """The alert that is up, or comes up before the deadline."""
        return wait_for("an alert", self.alerts, deadline)[-1]

    def expect_alert(self, title, text, button="OK", deadline=DEADLINE):
        alert = self.alert(deadline)
        assert (alert.title, alert.text) == (title, text), "%r instead of %r, %r" % (alert, title, text)
        self.dismiss(alert, button)

    def dismiss(self, alert, button="OK"):
        alert.node.find_all("push button", button)[0].act("Press")
        wait_for("%r to go" % alert, lambda: alert.node not in self.root.children)

    # The end

    @property
    def running(self):
        return self._process.poll() is None

    def end(self, number=signal.SIGTERM, deadline=10):
        """Ends the program by a signal and gives its exit status."""
        if self.running:
            self._process.send_signal(number)
        return self.wait(deadline)

    def wait(self, deadline=10):
        try:
            return self._process.wait(deadline)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
            raise AssertionError("the program did not end within %d s" % deadline) from None

    def open_files(self):
        """Where its descriptors lead."""
        folder = "/proc/%d/fd" % self.pid
        links = []
        for number in os.listdir(folder):
            try:
                links.append(os.readlink(os.path.join(folder, number)))
            except OSError:
                continue
        return links

    def thread_names(self):
        folder = "/proc/%d/task" % self.pid
        names = []
        for thread in os.listdir(folder):
            try:
                with open(os.path.join(folder, thread, "comm"), encoding="utf-8") as name:
                    names.append(name.read().strip())
            except OSError:
                # It has ended.
                continue
        return names
