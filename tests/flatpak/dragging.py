# SPDX-License-Identifier: MIT
"""Drags files from another program's window to the app's picture."""

import os
import pathlib
import subprocess
import sys

from waiting import wait_until

SOURCE = pathlib.Path(__file__).with_name("dragSource.py")
SOURCE_CENTRE = (60, 50)
STEPS = 20


def xdotool(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True)


class DragSource:
    """The window of dragSource.py. The portal forgets its files when the program ends."""

    def __init__(self, style, paths):
        self._output = b""
        command = [sys.executable, str(SOURCE), style, *map(str, paths)]
        self._process = subprocess.Popen(command, stdout=subprocess.PIPE)
        os.set_blocking(self._process.stdout.fileno(), False)

    def end(self):
        xdotool("mouseup", 1)  # after a failure
        self._process.kill()
        self._process.wait()
        self._process.stdout.close()

    def _wait_for(self, line):
        def has_line():
            self._output += self._process.stdout.read() or b""
            return line.encode() in self._output.split(b"\n")

        wait_until(has_line, f"the drag source's line “{line}”")

    def drag_to(self, x, y):
        """Drags to the place on the screen and waits until the program there accepts a copy."""
        self._wait_for("ready")
        from_x, from_y = SOURCE_CENTRE
        xdotool("mousemove", from_x, from_y, "mousedown", 1)
        for step in range(1, STEPS + 1):
            xdotool("mousemove", from_x + (x - from_x) * step // STEPS, from_y + (y - from_y) * step // STEPS)
        self._wait_for("action 2")

    def drop(self):
        """Releases the button and waits until the program has answered."""
        xdotool("mouseup", 1)
        self._wait_for("end")
