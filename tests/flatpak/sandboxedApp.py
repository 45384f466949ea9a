# SPDX-License-Identifier: MIT
"""The app's window, operated by keys and over the accessibility bus."""

import subprocess

from gi.repository import GLib

from accessibility import ACTIVE, FRAME, PUSH_BUTTON, SENSITIVE, SHOWING, desktop
from session import APPLICATION_ID, OWN_ACCESSIBILITY
from waiting import wait_until


def is_the_app(program):
    try:
        return program.name().lower() == "tarnwell"
    except GLib.Error:  # it has ended
        return False


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
        wait_until(lambda: self._find_all(lambda thing: thing.role() == FRAME and thing.has(ACTIVE)), "the window")

    def end(self):
        """Kills the app if it runs, and waits until it has left the bus."""
        self.session.run("flatpak", "kill", APPLICATION_ID, check=False)
        if self._process:
            self._process.wait()
            self._process = None
        wait_until(lambda: not self.session.owner_of(APPLICATION_ID), "the end of the app")
        wait_until(lambda: not self.session.run("flatpak", "ps", "--columns=pid"), "the end of the sandbox")

    def frames(self):
        return self._find_all(lambda thing: thing.role() == FRAME)

    def frame(self):
        return next(iter(self.frames()), None)

    def _find_all(self, accept):
        programs = [each for each in desktop(self.session.accessibility).children() if is_the_app(each)]
        return [thing for each in programs for thing in each.find_all(accept)]

    def shows(self, text):
        """Whether the text is on the screen."""
        return bool(self._find_all(lambda thing: text in thing.name() and thing.has(SHOWING)))

    def wait_for(self, text):
        wait_until(lambda: self.shows(text), f"the text “{text}”")

    def button(self, name, *states):
        found = self._find_all(lambda thing: thing.role() == PUSH_BUTTON and thing.name() == name
                               and thing.has(SHOWING, *states))
        return next(iter(found), None)

    def press(self, name):
        button = wait_until(lambda: self.button(name, SENSITIVE), f"the button {name}")
        if not button.press():
            raise AssertionError(f"the button {name} cannot be pressed")

    def picture(self):
        """The description of the view; it names the open file."""
        try:
            view = self._view()
            return view.description() if view else ""
        except GLib.Error:  # the view no longer exists
            return ""

    def _view(self):
        return next(iter(self._find_all(lambda thing: thing.name() == "Video Preview")), None)

    def keys(self, *names):
        subprocess.run(["xdotool", "key", "--delay", "0", *names], check=True)

    def wait_for_keys(self):
        """Waits until the app has handled all keys so far: resizes the window, of which the app learns after them."""
        def width():
            return self.frame().extents()[2]

        before = width()
        window = subprocess.run(["xdotool", "getactivewindow", "getwindowgeometry", "--shell"],
                                check=True, capture_output=True, text=True).stdout
        values = dict(line.split("=") for line in window.split())
        wider = str(int(values["WIDTH"]) + 10)
        subprocess.run(["xdotool", "windowsize", values["WINDOW"], wider, values["HEIGHT"]], check=True)
        wait_until(lambda: width() != before, "the new size of the window")

    def place(self):
        """The centre of the picture on the screen."""
        x, y, width, height = self._view().extents()
        return x + width // 2, y + height // 2

    def dismiss(self, text):
        """Waits for an alert with that text and closes it with OK."""
        self.wait_for(text)
        self.press("OK")
        wait_until(lambda: not self.shows(text), f"the end of the alert “{text}”")
        self.wait_for_window()
