"""What the program tells of on the accessibility bus, in its order."""
from gi.repository import Gio, GLib

from .bus import Node

OBJECT_EVENTS, FOCUS_EVENTS = "org.a11y.atspi.Event.Object", "org.a11y.atspi.Event.Focus"
REGISTRY, REGISTRY_PATH = "org.a11y.atspi.Registry", "/org/a11y/atspi/registry"


class Listener:
    def __init__(self, bus, *kinds):
        """Events of these kinds, as the registry names them ("object:text-caret-moved")."""
        self.events = []
        self._bus = bus
        for kind in kinds:
            bus.call(REGISTRY, REGISTRY_PATH, REGISTRY, "RegisterEvent", GLib.Variant("(sass)", (kind, [], "")))
        self._subscriptions = [bus.connection.signal_subscribe(
            None, interface, None, None, None, Gio.DBusSignalFlags.NONE, self._heard)
            for interface in (OBJECT_EVENTS, FOCUS_EVENTS)]

    def _heard(self, _connection, sender, path, _interface, member, arguments):
        detail, value = arguments.unpack()[:2]
        self.events.append((Node(self._bus, sender, path), member, detail, value))

    def heard(self):
        """All so far."""
        context = GLib.MainContext.default()
        while context.pending():
            context.iteration(False)
        return self.events

    def of(self, node):
        """What was heard of one accessible: (member, detail, value)."""
        return [tuple(said) for source, *said in self.heard() if source == node]

    def forget(self):
        self.heard()
        self.events.clear()
