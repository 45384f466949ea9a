# SPDX-License-Identifier: MIT
"""The main job with the keyboard only. Keys come from the X server; the accessibility bus is used only to read the
focus."""

import os
import subprocess
import time

import AccessTestCase
from screenReader import LONGEST_WAIT, wait_until

MAX_TABS = 15
MAX_PRESSES = 3
PRESS_WAIT = 20  # seconds until keys are pressed again
OPENED = "clip.mp4 — Tarnwell"  # the title of the main window


def xdotool(*arguments, check=True):
    return subprocess.run(["xdotool", *arguments], check=check, capture_output=True, text=True,
                          timeout=LONGEST_WAIT).stdout.strip()


def press(*keys):
    xdotool("key", "--clearmodifiers", *keys)


def write(text):
    xdotool("type", "--clearmodifiers", "--delay", "4", "--", text)


def keyboard_window():
    """The title of the window with the X input focus; empty if no window has it. The active window of the window manager
    is not used, because it lags behind the input focus."""
    return xdotool("getwindowfocus", "getwindowname", check=False)


class KeyboardJobTest(AccessTestCase.AccessTestCase):
    def setUp(self):
        super().setUp()
        self.wait_for("image", "Video Preview", "Tarnwell")

    def wait_for(self, role, name, window):
        """Waits until the control and its window have the keyboard focus."""
        wait_until(lambda: self.program.focused() == (role, name) and keyboard_window() == window,
                   f"focus on {role} {name} of {window}")

    def open_menu(self, keys, item):
        """Presses the keys until the menu shows the item: on a busy machine a press soon after another menu was closed can
        have no effect."""
        for _ in range(MAX_PRESSES):
            press(keys)
            end = time.monotonic() + PRESS_WAIT
            if wait_until(lambda: self.program.shown("menu item", item) or time.monotonic() > end, "a menu") is not True:
                return
        self.fail(f"{keys} does not open the menu with {item}")

    def go_to(self, name):
        """Presses Tab until the button has the focus."""
        for _ in range(MAX_TABS):
            if self.program.focused() == ("push button", name):
                return
            here = self.program.focused()
            press("Tab")
            wait_until(lambda: self.program.focused() not in (here, ("", "")), f"focus to leave {here}")
        self.fail(f"Tab does not reach {name}")

    def wait_for_alert(self, name, button):
        self.program.find("alert", name)
        self.wait_for("push button", button, "Saving Video")

    def test_by_tab_and_space(self):
        self.go_to("Open")
        press("space")
        self.wait_for("text", "File name:", "Open Video")
        write(self.video)
        press("Return")
        self.wait_for_picture("clip.mp4, as it was opened")
        self.wait_for("push button", "Open", OPENED)
        self.go_to("Rotate Right")
        press("space")
        self.wait_for_picture("clip.mp4, turned right")
        press("space")
        self.wait_for_picture("clip.mp4, turned upside down")
        self.go_to("Reset")
        press("space")
        self.wait_for_picture("clip.mp4, as it was opened")
        self.go_to("Rotate Left")
        press("space")
        self.wait_for_picture("clip.mp4, turned left")
        self.go_to("Save")
        press("space")
        self.wait_for("text", "File name:", "Save Video")
        press("ctrl+a")
        write(self.output)
        press("Return")
        self.wait_for_alert("Fix Flag mode Available!", "Fix Flag")
        press("Tab")
        self.wait_for("push button", "Transcode", "Saving Video")
        press("space")
        self.wait_for_alert("Video Rotated Successfully!", "OK")
        press("Return")
        self.program.wait_until_gone("alert")
        self.wait_for("push button", "Save", OPENED)
        self.assert_encoded_on_its_side()

    def test_by_menus_and_shortcuts(self):
        self.open_menu("F10", "Quit")
        press("Down", "Return")
        self.wait_for("text", "File name:", "Open Video")
        write(self.video)
        press("Return")
        self.wait_for_picture("clip.mp4, as it was opened")
        self.wait_for("image", "Video Preview", OPENED)
        for keys, description in (("ctrl+r", "turned right"),
                                  ("ctrl+shift+v", "turned right, mirrored vertically"),
                                  ("ctrl+shift+h", "turned right, mirrored vertically and horizontally"),
                                  ("ctrl+0", "as it was opened"),
                                  ("ctrl+l", "turned left")):
            press(keys)
            self.wait_for_picture("clip.mp4, " + description)
        self.open_menu("alt+o", "Flip Horizontally")
        press("h")
        self.wait_for_picture("clip.mp4, turned left, mirrored horizontally")
        self.wait_for("image", "Video Preview", OPENED)
        press("ctrl+shift+h")
        self.wait_for_picture("clip.mp4, turned left")
        self.open_menu("alt+f", "Quit")
        press("s")
        self.wait_for("text", "File name:", "Save Video")
        press("ctrl+a")
        write(self.output)
        press("Return")
        self.wait_for_alert("Fix Flag mode Available!", "Fix Flag")
        press("Return")
        self.wait_for_alert("Video Rotated Successfully!", "OK")
        press("Escape")
        self.program.wait_until_gone("alert")
        self.assert_by_flag(90)
        self.wait_for("image", "Video Preview", OPENED)
        press("F1")
        self.wait_for("push button", "OK", "Help")
        press("Escape")
        self.wait_for("image", "Video Preview", OPENED)
        press("ctrl+q")
        self.assertEqual(self.program.process.wait(LONGEST_WAIT), os.EX_OK)


if __name__ == "__main__":
    AccessTestCase.main()
