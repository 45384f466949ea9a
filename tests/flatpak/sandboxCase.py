# SPDX-License-Identifier: MIT
"""What all tests of the app in the sandbox share."""

import pathlib
import subprocess
import unittest

from gi.repository import Gio

import videos
from dragging import DragSource
from sandboxedApp import SandboxedApp
from session import APPLICATION_ID
from waiting import wait_until

SUCCESS = "Video Rotated Successfully!"
FAILURE = "Seems like something went wrong!"
SAME_FILE = "Input file name is same as the output file name!"


def processes(name, argument=""):
    """The ids of the processes with that name and argument. The PID namespace contains only those of this test."""
    found = []
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            arguments = (folder / "cmdline").read_bytes().split(b"\0")
        except OSError:  # it has ended
            continue
        if arguments[0].split(b"/")[-1] == name.encode() and any(argument.encode() in each for each in arguments):
            found.append(int(folder.name))
    return found


def encoders():
    return processes("ffmpeg", "transpose=")


class SandboxCase(unittest.TestCase):
    """Each test has its own videos and its own run of the app."""

    session = None

    def setUp(self):
        self.videos = self.session.home / "Videos"
        for path in self.files_in(self.videos):
            path.unlink()
        self.input = videos.make_video(self.videos / "clip.mp4")
        self.original = videos.digest(self.input)
        self.output = self.videos / "out.mp4"
        self.desktop = self.session.desktop
        self.desktop.shown.clear()
        self.desktop.preferred = None
        self.desktop.forget_dialogs()
        self.session.played.unlink(missing_ok=True)
        self.app = SandboxedApp(self.session)
        self.addCleanup(self.app.end)
        self.addCleanup(self.take_picture)

    def tearDown(self):
        self.assertEqual(videos.digest(self.input), self.original, "the original has changed")

    def take_picture(self):
        path = self.session.folder / "results" / f"{self._testMethodName}.png"
        subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-y", "-f", "x11grab", "-draw_mouse", "0", "-i", "",
                        "-frames:v", "1", str(path)], check=True)

    @staticmethod
    def files_in(folder):
        return sorted(folder.iterdir()) if folder.is_dir() else []

    def assert_files(self, *names):
        """The folder contains these files, and no hidden one."""
        self.assertEqual([path.name for path in self.files_in(self.videos)], sorted(names))

    def open(self, path=None):
        self.app.keys("ctrl+o")
        self.desktop.choose("OpenFile", path or self.input)
        self.wait_for_picture((path or self.input).name)

    def wait_for_picture(self, name):
        wait_until(lambda: name in self.app.picture(), f"the picture of {name}")
        self.app.wait_for_window()

    def open_and_turn(self, path=None):
        self.app.start()
        self.open(path)
        self.app.keys("ctrl+r")

    def save(self, path, mode="Fix Flag"):
        self.app.keys("ctrl+s")
        self.desktop.choose("SaveFile", path)
        self.app.press(mode)

    def older_file(self):
        videos.make_video(self.output, seconds=1)
        return videos.digest(self.output)

    def long_input(self):
        """A video whose transcode takes several seconds."""
        path = videos.make_video(self.videos / "long.mp4", seconds=120)
        self.addCleanup(path.unlink)
        return path

    def start_transcode_of_long_video(self):
        self.open_and_turn(self.long_input())
        self.save(self.output, "Transcode")
        wait_until(lambda: encoders() and self.app.button("Cancel"), "the encoder")

    def drop(self, style, *paths):
        source = DragSource(style, paths)
        self.addCleanup(source.end)
        source.drag_to(*self.app.place())
        source.drop()

    def open_with(self, path):
        """Opens the file with the desktop entry, as a file manager does."""
        entry = Gio.DesktopAppInfo.new(APPLICATION_ID + ".desktop")
        self.assertTrue(entry.launch_uris([path.as_uri()], None))
