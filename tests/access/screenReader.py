# SPDX-License-Identifier: MIT
"""Acts as a screen reader: finds controls of another process by role and name, reads them, performs their actions and
receives their events, all over the accessibility bus."""

import os
import subprocess
import tempfile
import time

import pyatspi
from gi.repository import Gio, GLib

LONGEST_WAIT = 60  # seconds
SHORTEST_PAUSE = 0.01
LONGEST_PAUSE = 0.05  # a condition reads up to a hundred properties over the bus

HEARD = (
    "object:property-change:accessible-description",
    "object:property-change:accessible-value",
    "window:activate",
)

# Their children are searched even if they do not have the state SHOWING themselves.
ALWAYS_ENTERED = (pyatspi.ROLE_APPLICATION, pyatspi.ROLE_FRAME)

pictures_folder = tempfile.gettempdir()  # replaced by the build folder in AccessTestCase.main


def switch_on():
    """Sets the properties of the accessibility bus that report a running screen reader. Programs read them at start."""
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    for name in ("IsEnabled", "ScreenReaderEnabled"):
        parameters = GLib.Variant("(ssv)", ("org.a11y.Status", name, GLib.Variant("b", True)))
        bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set", parameters,
                      None, Gio.DBusCallFlags.NONE, -1, None)


def picture_of_screen():
    """Saves a screenshot in the folder of those of the other window tests. Returns its path or an error message."""
    folder = os.path.join(pictures_folder, "tests", "screens")
    os.makedirs(folder, exist_ok=True)
    descriptor, path = tempfile.mkstemp(prefix="access-", suffix=".png", dir=folder)
    os.close(descriptor)
    try:
        subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-f", "x11grab", "-i", os.environ["DISPLAY"],
                        "-frames:v", "1", "-y", path], check=True, timeout=LONGEST_WAIT)
    except subprocess.SubprocessError as error:
        return f"no screenshot: {error}"
    return path


def wait_until(condition, awaited):
    """Returns the first true result of the condition. Fails with a screenshot after LONGEST_WAIT."""
    deadline = time.monotonic() + LONGEST_WAIT
    pause = SHORTEST_PAUSE
    while time.monotonic() < deadline:
        while GLib.MainContext.default().iteration(False):
            pass  # dispatches events to their listeners
        try:
            result = condition()
        except GLib.Error:
            result = None  # the control no longer exists
        if result:
            return result
        time.sleep(pause)
        pause = min(pause * 1.5, LONGEST_PAUSE)
    raise AssertionError(f"timeout after {LONGEST_WAIT} s waiting for {awaited}; screen: {picture_of_screen()}")


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
    """The element and its visible descendants, depth first."""
    element.clear_cache()
    yield element
    for index in range(element.childCount):  # an iteration would read the number again for each child
        child = element.get_child_at_index(index)
        if child is not None and (is_shown(child) or child.getRole() in ALWAYS_ENTERED):
            yield from everything_in(child)


def text_of(element):
    text = element.queryText()
    return text.getText(0, text.characterCount)


class Program:
    """A running process of the program, used only over the accessibility bus. Records its events."""

    def __init__(self, executable):
        self.values = []        # value changes of progress bars: (name, value)
        self.descriptions = []  # description changes: (role, description)
        self.activated = []     # activated windows: (role, name)
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
            pass  # the sender no longer exists

    def _note(self, kind, source):
        if kind.endswith("accessible-value"):
            self.values.append((source.name, source.queryValue().currentValue))
        elif kind.endswith("accessible-description"):
            self.descriptions.append((source.getRoleName(), source.description))
        else:
            self.activated.append((source.getRoleName(), source.name))

    def shown(self, role, name=None, inside=None):
        """The first visible element of that role and name, or None."""
        for element in everything_in(inside or self.root):
            if element.getRoleName() == role and name in (None, element.name) and is_shown(element):
                return element
        return None

    def find(self, role, name=None, inside=None):
        """Waits for the visible element of that role and name."""
        return wait_until(lambda: self.shown(role, name, inside), f"{role} {name}")

    def wait_until_gone(self, role, name=None):
        wait_until(lambda: self.shown(role, name) is None, f"{role} {name} to disappear")

    def focused(self):
        """Role and name of the innermost focused element; two empty texts if there is none."""
        found = ("", "")
        for element in everything_in(self.root):
            if is_focused(element):
                found = (element.getRoleName(), element.name)
        return found

    def press(self, role, name, inside=None):
        """Waits until the control is enabled and performs its action "Press"."""
        def done():
            element = self.shown(role, name, inside)
            if element is None or not is_enabled(element):
                return False
            actions = element.queryAction()
            names = [actions.getName(each) for each in range(actions.nActions)]
            return "Press" in names and actions.doAction(names.index("Press"))
        wait_until(done, f"{role} {name} to accept a press")

    def write(self, element, text):
        """Replaces the text of a field."""
        element.queryEditableText().setTextContents(text)
