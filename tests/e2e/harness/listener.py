"""What the program tells of on the accessibility bus, in its order."""
from gi.repository import Gio, GLib

from .bus import Node

OBJECT_EVENTS, FOCUS_EVENTS = "org.a11y.atspi.Event.Object", "org.a11y.atspi.Event.Focus"
REGISTRY, REGISTRY_PATH = "org.a11y.atspi.Registry", "/org/a11y/atspi/registry"


class Listener:
    def __init__(self, bus, *kinds):
        """Events of these kinds, as the registry names them ("object:text-caret-moved")."""
        self.events = []
        self._texts = []
        self._bus = bus
        for kind in kinds:
            bus.call(REGISTRY, REGISTRY_PATH, REGISTRY, "RegisterEvent", GLib.Variant("(sass)", (kind, [], "")))
        self._subscriptions = [bus.connection.signal_subscribe(
            None, interface, None, None, None, Gio.DBusSignalFlags.NONE, self._heard)
            for interface in (OBJECT_EVENTS, FOCUS_EVENTS)]

    def _heard(self, _connection, sender, path, _interface, member, arguments):
        detail, value, _, data = arguments.unpack()[:4]
        node = Node(self._bus, sender, path)
        self.events.append((node, member, detail, value))
        if member == "TextChanged":
            self._texts.append((node, detail.split(":")[0], data))

    def heard(self):
        """All so far."""
        context = GLib.MainContext.default()
        while context.pending():
            context.iteration(False)
        return self.events

    def of(self, node):
        """What was heard of one accessible: (member, detail, value)."""
        return [tuple(said) for source, *said in self.heard() if source == node]

    def texts_of(self, node):
        """What was typed in a field and what was taken away: ("insert", text) and ("delete", text)."""
        self.heard()
        return [tuple(said) for source, *said in self._texts if source == node]

    def forget(self):
        self.heard()
        self.events.clear()
        self._texts.clear()
