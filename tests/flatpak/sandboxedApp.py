# SPDX-License-Identifier: MIT
"""The app's window, operated by keys and over the accessibility bus."""

import subprocess

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

from session import APPLICATION_ID, OWN_ACCESSIBILITY  # noqa: E402
from waiting import wait_until  # noqa: E402


def children(thing):
    for index in range(thing.get_child_count()):
        child = thing.get_child_at_index(index)
        if child:
            yield child


def everything_in(thing):
    yield thing
    for child in children(thing):
        yield from everything_in(child)


def has(thing, *states):
    actual = thing.get_state_set()
    return all(actual.contains(state) for state in states)


class SandboxedApp:
    """Expects one instance of the app at most. Elements are searched anew at every access."""

    def __init__(self, session):
        self.session = session
        self._process = None

    def start(self):
        """Starts the app and waits for its window."""
        with self.session.log("app") as log:
            self._process = subprocess.Popen(["flatpak", "run", OWN_ACCESSIBILITY, APPLICATION_ID],
                                             stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        self.wait_for_window()

    def wait_for_window(self):
        wait_until(lambda: self.frame() and has(self.frame(), Atspi.StateType.ACTIVE), "the window")

    def end(self):
        """Kills the app if it runs, and waits until it has left the bus."""
        self.session.run("flatpak", "kill", APPLICATION_ID, check=False)
        if self._process:
            self._process.wait()
            self._process = None
        wait_until(lambda: not self.session.owner_of(APPLICATION_ID), "the end of the app")
        wait_until(lambda: not self.session.run("flatpak", "ps", "--columns=pid"), "the end of the sandbox")

    def frames(self):
        return self._find_all(lambda thing: thing.get_role() == Atspi.Role.FRAME)

    def frame(self):
        return next(iter(self.frames()), None)

    def _find_all(self, accept):
        try:
            Atspi.get_desktop(0).clear_cache()
            applications = [each for each in children(Atspi.get_desktop(0)) if each.get_name().lower() == "tarnwell"]
            for application in applications:
                application.set_cache_mask(Atspi.Cache.NONE)
            return [thing for each in applications for thing in everything_in(each) if accept(thing)]
        except GLib.Error:  # an element no longer exists
            return []

    def shows(self, text):
        """Whether the text is on the screen."""
        return bool(self._find_all(lambda thing: text in thing.get_name() and has(thing, Atspi.StateType.SHOWING)))

    def wait_for(self, text):
        wait_until(lambda: self.shows(text), f"the text “{text}”")

    def button(self, name, *states):
        found = self._find_all(lambda thing: thing.get_role() == Atspi.Role.PUSH_BUTTON and thing.get_name() == name
                               and has(thing, Atspi.StateType.SHOWING, *states))
        return next(iter(found), None)

    def press(self, name):
        button = wait_until(lambda: self.button(name, Atspi.StateType.SENSITIVE), f"the button {name}")
        if not button.do_action(0):
            raise AssertionError(f"the button {name} cannot be pressed")

    def picture(self):
        """The description of the view; it names the open file."""
        found = self._find_all(lambda thing: thing.get_name() == "Video Preview")
        return found[0].get_description() if found else ""

    def keys(self, *names):
        subprocess.run(["xdotool", "key", "--delay", "0", *names], check=True)

    def wait_for_keys(self):
        """Waits until the app has handled all keys so far: resizes the window, of which the app learns after them."""
        def width():
            frame = self.frame()
            return frame.get_extents(Atspi.CoordType.SCREEN).width if frame else 0

        before = wait_until(width, "the window")
        window = subprocess.run(["xdotool", "getactivewindow", "getwindowgeometry", "--shell"],
                                check=True, capture_output=True, text=True).stdout
        values = dict(line.split("=") for line in window.split())
        wider = str(int(values["WIDTH"]) + 10)
        subprocess.run(["xdotool", "windowsize", values["WINDOW"], wider, values["HEIGHT"]], check=True)
        wait_until(lambda: width() != before, "the new size of the window")

    def place(self):
        """The centre of the picture on the screen."""
        found = self._find_all(lambda thing: thing.get_name() == "Video Preview")
        area = found[0].get_extents(Atspi.CoordType.SCREEN)
        return area.x + area.width // 2, area.y + area.height // 2

    def dismiss(self, text):
        """Waits for an alert with that text and closes it with OK."""
        self.wait_for(text)
        self.press("OK")
        wait_until(lambda: not self.shows(text), f"the end of the alert “{text}”")
        self.wait_for_window()
