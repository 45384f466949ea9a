# SPDX-License-Identifier: MIT
"""What a screen reader does with a program: finds its controls by role and name, reads them, acts on them and
hears what they announce. Everything goes over the accessibility bus; the program is a process of its own."""

import subprocess
import time

import pyatspi
from gi.repository import Gio, GLib

LONGEST_WAIT = 60  # seconds; only a broken program takes so long
PAUSE = 0.01

HEARD = (
    "object:property-change:accessible-description",
    "object:property-change:accessible-value",
    "window:activate",
)

# These stand for more than what is on the screen at the moment.
ALWAYS_ENTERED = (pyatspi.ROLE_APPLICATION, pyatspi.ROLE_FRAME)


def switch_on():
    """Tells the desktop that there is a screen reader; programs look at this when they start."""
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    for name in ("IsEnabled", "ScreenReaderEnabled"):
        parameters = GLib.Variant("(ssv)", ("org.a11y.Status", name, GLib.Variant("b", True)))
        bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set", parameters,
                      None, Gio.DBusCallFlags.NONE, -1, None)


def wait_until(condition, what):
    """The first answer of the condition that counts as true; fails where none comes."""
    deadline = time.monotonic() + LONGEST_WAIT
    while time.monotonic() < deadline:
        while GLib.MainContext.default().iteration(False):
            pass  # what has been announced reaches its listeners
        try:
            answer = condition()
        except GLib.Error:
            answer = None  # what was asked has just gone
        if answer:
            return answer
        time.sleep(PAUSE)
    raise AssertionError(f"in vain: {what}")


def has_state(element, state):
    element.clear_cache()
    return element.getState().contains(state)


def is_shown(element):
    return has_state(element, pyatspi.STATE_SHOWING)


def is_enabled(element):
    return has_state(element, pyatspi.STATE_ENABLED)


def is_focused(element):
    return has_state(element, pyatspi.STATE_FOCUSED)


def everything_in(element):
    """The element and all that is shown in it, as a tree is read."""
    element.clear_cache()
    yield element
    for child in element:
        if child is not None and (is_shown(child) or child.getRole() in ALWAYS_ENTERED):
            yield from everything_in(child)


def text_of(element):
    text = element.queryText()
    return text.getText(0, text.characterCount)


class Program:
    """The built program, which is found, read and used over the accessibility bus alone."""

    def __init__(self, executable):
        self.values = []        # what progress bars announced: (name, value)
        self.descriptions = []  # of what was described anew: (role, description)
        self.activated = []     # the windows that came forward: (role, name)
        self.root = None
        pyatspi.Registry.registerEventListener(self._hear, *HEARD)
        self.process = subprocess.Popen([executable], stdout=subprocess.DEVNULL)
        self.root = wait_until(self._application, "the program on the accessibility bus")
        self.window = self.find("frame", "Tarnwell")

    def end(self):
        pyatspi.Registry.deregisterEventListener(self._hear, *HEARD)
        self.process.kill()
        self.process.wait()

    def _application(self):
        for application in pyatspi.Registry.getDesktop(0):
            if application is not None and application.get_process_id() == self.process.pid:
                return application if application.childCount > 0 else None
        return None

    def _hear(self, event):
        try:
            if event.host_application == self.root:
                self._note(event.type, event.source)
        except GLib.Error:
            pass  # who spoke has gone meanwhile

    def _note(self, kind, source):
        if kind.endswith("accessible-value"):
            self.values.append((source.name, source.queryValue().currentValue))
        elif kind.endswith("accessible-description"):
            self.descriptions.append((source.getRoleName(), source.description))
        else:
            self.activated.append((source.getRoleName(), source.name))

    def shown(self, role, name=None, inside=None):
        """What is shown of that role and name, or None."""
        for element in everything_in(inside or self.root):
            if element.getRoleName() == role and name in (None, element.name) and is_shown(element):
                return element
        return None

    def find(self, role, name=None, inside=None):
        """Waits for what `shown` gives."""
        return wait_until(lambda: self.shown(role, name, inside), f"{role} {name}")

    def wait_until_gone(self, role, name=None):
        wait_until(lambda: self.shown(role, name) is None, f"the end of {role} {name}")

    def focused(self):
        """Role and name of the innermost that has the keyboard; two empty texts where nothing has."""
        found = ("", "")
        for element in everything_in(self.root):
            if is_focused(element):
                found = (element.getRoleName(), element.name)
        return found

    def press(self, role, name, inside=None):
        """Does the one thing that the control is for, as soon as that can be done."""
        def done():
            element = self.shown(role, name, inside)
            if element is None or not is_enabled(element):
                return False
            actions = element.queryAction()
            names = [actions.getName(each) for each in range(actions.nActions)]
            return "Press" in names and actions.doAction(names.index("Press"))
        wait_until(done, f"a press of {role} {name}")

    def write(self, element, text):
        """Replaces the text of a field."""
        element.queryEditableText().setTextContents(text)
