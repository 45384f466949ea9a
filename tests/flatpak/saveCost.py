#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures a save in the sandbox beside the same save outside. Run by tests/sandbox --measure.

    saveCost.py FOLDER [ROUNDS]

Prints the seconds from the click on Fix Flag to the alert about the result, and the medians. The alert is looked for
over the accessibility bus, as soon as the last answer is there.
"""

import os
import statistics
import subprocess
import sys
import time

import videos
from sandboxedApp import SandboxedApp
from session import Session
from waiting import wait_until

SUCCESS = "Video Rotated Successfully!"
MEGABYTES = 500


class OutsideApp(SandboxedApp):
    """The program of another build, installed in FOLDER/outside, with the portals' file dialogs."""

    def start(self):
        program = self.session.folder / "outside/usr/bin/tarnwell"
        with self.session.log("outside") as log:
            self._process = subprocess.Popen([program], stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                             env=os.environ | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"})
        self.wait_for_window()

    def end(self):
        self._process.terminate()
        self._process.wait()
        self._process = None


def ffmpeg(*arguments):
    subprocess.run(["ffmpeg", "-v", "error", "-nostdin", *map(str, arguments)], check=True)


def large_video(folder):
    """A video of noise: the pictures of one second again and again."""
    folder.mkdir()
    second = folder / "second.mp4"
    ffmpeg("-f", "lavfi", "-i", "nullsrc=size=1920x1080:rate=25:duration=1,geq=random(1)*255", "-pix_fmt", "yuv420p",
           "-c:v", "libx264", "-preset", "ultrafast", second)
    path = folder / "large.mp4"
    ffmpeg("-stream_loop", MEGABYTES * 1000000 // second.stat().st_size, "-i", second, "-c", "copy", path)
    return path


def seconds_of_save(session, app, video, output):
    output.unlink(missing_ok=True)
    video.read_bytes()  # into the page cache
    os.sync()
    app.start()
    app.keys("ctrl+o")
    session.desktop.choose("OpenFile", video)
    wait_until(lambda: video.name in app.picture(), "the picture")
    app.wait_for_window()
    app.keys("ctrl+r", "ctrl+s")
    session.desktop.choose("SaveFile", output)
    button = wait_until(lambda: app.button("Fix Flag"), "the question for the mode")
    begin = time.monotonic()
    button.press()
    wait_until(lambda: app.shows(SUCCESS), "the result")
    duration = time.monotonic() - begin
    assert videos.rotation(output) == -90
    app.end()
    return duration


def main():
    session = Session(sys.argv[1])
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    folder = session.home / "Videos"
    video = large_video(folder)
    print(f"{video.stat().st_size / 1e6:.0f} MB", flush=True)
    apps = {"in the sandbox": SandboxedApp(session), "outside": OutsideApp(session)}
    durations = {name: [] for name in apps}
    for number in range(rounds):
        names = list(apps) if number % 2 == 0 else list(reversed(apps))
        for name in names:
            durations[name].append(seconds_of_save(session, apps[name], video, folder / "saved.mp4"))
            print(f"{name}: {durations[name][-1]:.2f} s", flush=True)
    inside, outside = (statistics.median(each) for each in durations.values())
    print(f"medians: {inside:.2f} s in the sandbox, {outside:.2f} s outside, ratio {inside / outside:.2f}")


main()
