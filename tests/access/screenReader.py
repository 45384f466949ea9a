# SPDX-License-Identifier: MIT
"""What a screen reader does with a program: finds its controls by role and name, reads them, acts on them and
receives their announcements. Everything goes over the accessibility bus; the program is a separate process."""

import os
import subprocess
import tempfile
import time

import pyatspi
from gi.repository import Gio, GLib

LONGEST_WAIT = 60  # seconds; only a broken program takes that long
PAUSE = 0.01

HEARD = (
    "object:property-change:accessible-description",
    "object:property-change:accessible-value",
    "window:activate",
)

# These stand for more than what is on the screen at the moment.
ALWAYS_ENTERED = (pyatspi.ROLE_APPLICATION, pyatspi.ROLE_FRAME)

pictures_folder = tempfile.gettempdir()  # the build folder once it is known


def switch_on():
    """Sets the desktop's properties that say a screen reader runs; programs read them when they start."""
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    for name in ("IsEnabled", "ScreenReaderEnabled"):
        parameters = GLib.Variant("(ssv)", ("org.a11y.Status", name, GLib.Variant("b", True)))
        bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set", parameters,
                      None, Gio.DBusCallFlags.NONE, -1, None)


def picture_of_screen():
    """Saves a picture of the screen beside those of the other window tests; its path, or why there is none."""
    folder = os.path.join(pictures_folder, "tests", "screens")
    os.makedirs(folder, exist_ok=True)
    descriptor, path = tempfile.mkstemp(prefix="access-", suffix=".png", dir=folder)
    os.close(descriptor)
    try:
        subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-f", "x11grab", "-i", os.environ["DISPLAY"],
                        "-frames:v", "1", "-y", path], check=True, timeout=LONGEST_WAIT)
    except subprocess.SubprocessError as error:
        return f"no picture: {error}"
    return path


def wait_until(condition, awaited):
    """The first true result of the condition. Fails, with a picture of the screen, after the longest wait."""
    deadline = time.monotonic() + LONGEST_WAIT
    while time.monotonic() < deadline:
        while GLib.MainContext.default().iteration(False):
            pass  # announcements reach their listeners
        try:
            result = condition()
        except GLib.Error:
            result = None  # the control has just disappeared
        if result:
            return result
        time.sleep(PAUSE)
    raise AssertionError(f"{awaited} did not come within {LONGEST_WAIT} s; screen: {picture_of_screen()}")


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
        self.process.wait(LONGEST_WAIT)

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
