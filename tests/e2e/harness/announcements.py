"""What a screen reader reads out by itself: notifications that come to the screen."""
from gi.repository import Gio, GLib

from .bus import Gone, Node

EVENT = "object:state-changed:showing"


class Announcements:
    """From now on, of every program on the bus."""

    def __init__(self, bus):
        self._bus = bus
        self._texts = []
        bus.call("org.a11y.atspi.Registry", "/org/a11y/atspi/registry", "org.a11y.atspi.Registry", "RegisterEvent",
                 GLib.Variant("(sass)", (EVENT, [], "")))
        bus.connection.signal_subscribe(None, "org.a11y.atspi.Event.Object", "StateChanged", None, "showing",
                                        Gio.DBusSignalFlags.NONE, self._did_change)

    def _did_change(self, _connection, sender, path, _interface, _signal, arguments):
        if not arguments[1]:
            return
        try:
            node = Node(self._bus, sender, path)
            if node.role == "notification":
                self._texts.append(node.name)
        except Gone:
            pass

    @property
    def texts(self):
        while GLib.MainContext.default().iteration(False):
            pass
        return self._texts
