# SPDX-License-Identifier: MIT
"""The elements on the accessibility bus. Asks over D-Bus, because libatspi can lock up: it handles signals, with calls
of its own, while it waits for an answer, and then waits for itself."""

from gi.repository import Gio, GLib

ROOT = "/org/a11y/atspi/accessible/root"
NOTHING = "/org/a11y/atspi/null"
REGISTRY = "org.a11y.atspi.Registry"
LONGEST_ANSWER = 10000  # milliseconds

# Numbers of AT-SPI
PUSH_BUTTON = 43
FRAME = 23
ACTIVE = 1
SENSITIVE = 24
SHOWING = 25
SCREEN = 0


def connect(session_bus):
    """Starts the accessibility bus and its registry. Returns the connection."""
    address, = session_bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None, None, 0,
                                     LONGEST_ANSWER, None).unpack()
    flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
    bus = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
    desktop(bus).children()
    return bus


class Element:
    """Nothing is kept: each function asks the program. Raises GLib.Error if the element no longer exists."""

    def __init__(self, bus, owner, path):
        self._bus, self._owner, self._path = bus, owner, path

    def _call(self, interface, method, arguments=None):
        interface = interface if "." in interface else f"org.a11y.atspi.{interface}"
        return self._bus.call_sync(self._owner, self._path, interface, method, arguments, None, 0, LONGEST_ANSWER,
                                   None).unpack()

    def _property(self, name):
        arguments = GLib.Variant("(ss)", ("org.a11y.atspi.Accessible", name))
        return self._call("org.freedesktop.DBus.Properties", "Get", arguments)[0]

    def children(self):
        found = self._call("Accessible", "GetChildren")[0]
        return [Element(self._bus, owner, path) for owner, path in found if path != NOTHING]

    def find_all(self, accept):
        """The accepted of this element and all below it, without those that stop existing meanwhile."""
        try:
            found = [self] if accept(self) else []
            children = self.children()
        except GLib.Error:
            return []
        return found + [each for child in children for each in child.find_all(accept)]

    def name(self):
        return self._property("Name")

    def description(self):
        return self._property("Description")

    def role(self):
        return self._call("Accessible", "GetRole")[0]

    def has(self, *states):
        low, high = self._call("Accessible", "GetState")[0]
        actual = low | high << 32
        return all(actual >> state & 1 for state in states)

    def extents(self):
        """The position on the screen and the size: x, y, width, height."""
        return self._call("Component", "GetExtents", GLib.Variant("(u)", (SCREEN,)))[0]

    def press(self):
        return self._call("Action", "DoAction", GLib.Variant("(i)", (0,)))[0]


def desktop(bus):
    """Its children are the programs."""
    return Element(bus, REGISTRY, ROOT)
