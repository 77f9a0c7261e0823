"""The accessibility bus, without a cache: what is read is what is there now."""
from gi.repository import Gio, GLib

ROOT = "/org/a11y/atspi/accessible/root"
ACCESSIBLE = "org.a11y.atspi.Accessible"
ACTION = "org.a11y.atspi.Action"
TEXT = "org.a11y.atspi.Text"
EDITABLE_TEXT = "org.a11y.atspi.EditableText"
COMPONENT = "org.a11y.atspi.Component"
SELECTION = "org.a11y.atspi.Selection"
VALUE = "org.a11y.atspi.Value"
CALL_MS = 15000

# Bits of an accessible's states, as the bus numbers them.
STATES = {"active": 1, "busy": 3, "checked": 4, "enabled": 8, "editable": 7, "focused": 12, "focusable": 11,
          "modal": 16, "selected": 23, "sensitive": 24, "showing": 25, "visible": 30, "has popup": 38, "read only": 43}
LABELLED_BY = 2
PASSWORD_TEXT = 40


class Gone(LookupError):
    """The accessible, or the program, is not there any more."""


class Bus:
    def __init__(self):
        session = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        address = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None,
                                    GLib.VariantType("(s)"), Gio.DBusCallFlags.NONE, CALL_MS, None).unpack()[0]
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)

    def call(self, name, path, interface, method, arguments=None, timeout_ms=CALL_MS):
        try:
            return self.connection.call_sync(name, path, interface, method, arguments, None,
                                             Gio.DBusCallFlags.NONE, timeout_ms, None).unpack()
        except GLib.Error as error:
            raise Gone("%s.%s: %s" % (interface, method, error.message)) from None

    def send(self, name, path, interface, method, arguments=None):
        """A call whose reply nobody waits for: it may come only when an alert has been closed."""
        message = Gio.DBusMessage.new_method_call(name, path, interface, method)
        message.set_flags(Gio.DBusMessageFlags.NO_REPLY_EXPECTED)
        if arguments is not None:
            message.set_body(arguments)
        self.connection.send_message(message, Gio.DBusSendMessageFlags.NONE)
        self.connection.flush_sync(None)

    def process_of(self, name):
        return self.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                         GLib.Variant("(s)", (name,)))[0]

    def applications(self, name):
        """The roots of the programs of that name."""
        nodes = [Node(self, *root) for root in self.call("org.a11y.atspi.Registry", ROOT, ACCESSIBLE, "GetChildren")[0]]
        return [node for node in nodes if node.name == name]

    def application(self, pid):
        """The root of the program with this process id, or None while it has none."""
        for name, path in self.call("org.a11y.atspi.Registry", ROOT, ACCESSIBLE, "GetChildren")[0]:
            try:
                if self.process_of(name) == pid:
                    return Node(self, name, path)
            except Gone:
                continue
        return None


class Node:
    """One accessible."""

    def __init__(self, bus, name, path):
        self._bus, self._name, self._path = bus, name, path

    def __eq__(self, other):
        return isinstance(other, Node) and (self._name, self._path) == (other._name, other._path)

    def __hash__(self):
        return hash((self._name, self._path))

    def __repr__(self):
        try:
            return "<%s %r>" % (self.role, self.name)
        except Gone:
            return "<gone>"

    def call(self, interface, method, arguments=None, timeout_ms=CALL_MS):
        return self._bus.call(self._name, self._path, interface, method, arguments, timeout_ms)

    def send(self, interface, method, arguments=None):
        self._bus.send(self._name, self._path, interface, method, arguments)

    def _property(self, interface, name):
        return self.call("org.freedesktop.DBus.Properties", "Get", GLib.Variant("(ss)", (interface, name)))[0]

    @property
    def role(self):
        return self.call(ACCESSIBLE, "GetRoleName")[0]

    @property
    def masked(self):
        """Whether it is a field of a password, whose text nobody can read."""
        return self.call(ACCESSIBLE, "GetRole")[0] == PASSWORD_TEXT

    @property
    def name(self):
        return self._property(ACCESSIBLE, "Name")

    @property
    def description(self):
        return self._property(ACCESSIBLE, "Description")

    @property
    def children(self):
        nodes = self.call(ACCESSIBLE, "GetChildren")[0]
        return [Node(self._bus, name, path) for name, path in nodes if not path.endswith("/null")]

    @property
    def parent(self):
        name, path = self._property(ACCESSIBLE, "Parent")
        return None if path.endswith("/null") else Node(self._bus, name, path)

    @property
    def pid(self):
        """The process that it is of."""
        return self._bus.process_of(self._name)

    @property
    def window(self):
        """The window that it is in, or is."""
        node, parent = self, self.parent
        while parent and parent.role != "application":
            node, parent = parent, parent.parent
        return node

    @property
    def labels(self):
        """The names of the labels that are this control's own."""
        targets = [target for kind, nodes in self.call(ACCESSIBLE, "GetRelationSet")[0] if kind == LABELLED_BY
                   for target in nodes]
        return [Node(self._bus, name, path).name for name, path in targets]

    def has(self, state):
        low, high = self.call(ACCESSIBLE, "GetState")[0]
        return bool((low | high << 32) >> STATES[state] & 1)

    @property
    def text(self):
        return self.call(TEXT, "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    @property
    def value(self):
        return self._property(VALUE, "CurrentValue")

    @property
    def extents(self):
        """x, y, width, height on the screen."""
        return self.call(COMPONENT, "GetExtents", GLib.Variant("(u)", (0,)))[0]

    @property
    def keys(self):
        """The keys that press it or lead to it."""
        return {key for action in self.call(ACTION, "GetActions")[0] for key in action[2].split(";") if key}

    @property
    def caret(self):
        return self._property(TEXT, "CaretOffset")

    @property
    def actions(self):
        return [action[0] for action in self.call(ACTION, "GetActions")[0]]

    def act(self, name):
        self.send(ACTION, "DoAction", GLib.Variant("(i)", (self.actions.index(name),)))

    def set_text(self, text):
        self.send(EDITABLE_TEXT, "SetTextContents", GLib.Variant("(s)", (text,)))

    def focus(self):
        self.send(COMPONENT, "GrabFocus")

    def tree(self, depth=0):
        """All below, this included, with how deep each is."""
        yield depth, self
        try:
            children = self.children
        except Gone:
            return
        for child in children:
            yield from child.tree(depth + 1)

    def find_all(self, role=None, name=None, showing=True):
        found = []
        for _, node in self.tree():
            try:
                if (role is None or node.role == role) and (name is None or plain(node.name) == name) and \
                        (not showing or node.has("showing")):
                    found.append(node)
            except Gone:
                continue
        return found

    def dump(self):
        lines = []
        for depth, node in self.tree():
            try:
                shown = "" if node.has("showing") else "  (not showing)"
                lines.append("%s%s %r%s" % ("  " * depth, node.role, node.name, shown))
            except Gone:
                lines.append("%s(gone)" % ("  " * depth))
        return "\n".join(lines)


def plain(name):
    """A label without its mnemonic's mark and its colon."""
    return name.replace("&&", "\0").replace("&", "").replace("\0", "&").rstrip(":").strip()
