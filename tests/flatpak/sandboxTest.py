#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The whole job in the sandbox. Run by tests/sandbox.

    sandboxTest.py FOLDER [TEST...]
"""

import os
import pathlib
import signal
import subprocess
import sys
import unittest

from gi.repository import Gio, GLib

import videos
from dragging import DragSource
from sandboxedApp import SandboxedApp
from session import APPLICATION_ID, DOCUMENT_PORTAL, Session
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


class SandboxTest(unittest.TestCase):
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

    # Saving

    def test_saves_a_new_file_by_its_flag(self):
        self.open_and_turn()
        self.save(self.output)
        self.app.dismiss(SUCCESS)
        self.assertEqual(videos.rotation(self.output), -90)
        self.assert_files("clip.mp4", "out.mp4")

    def test_saves_a_new_file_by_transcode(self):
        self.open_and_turn()
        self.save(self.output, "Transcode")
        self.app.dismiss(SUCCESS)
        self.assertEqual(videos.stored_size(self.output), (videos.HEIGHT, videos.WIDTH))
        self.assert_files("clip.mp4", "out.mp4")

    def test_proposes_the_name_with_its_extension(self):
        self.open_and_turn()
        self.app.keys("ctrl+s")
        options = self.desktop.wait_for_dialog("SaveFile")
        self.desktop.cancel("SaveFile")
        self.assertEqual(options.get("current_name"), "Rotated.mp4")

    def test_asks_again_for_a_name_without_extension(self):
        self.open_and_turn()
        self.app.keys("ctrl+s")
        self.desktop.choose("SaveFile", self.videos / "Rotated")
        options = self.desktop.choose("SaveFile", self.videos / "Rotated.mp4")
        self.assertEqual(options.get("current_name"), "Rotated.mp4")
        self.app.press("Fix Flag")
        self.app.dismiss(SUCCESS)
        self.assertEqual(videos.rotation(self.videos / "Rotated.mp4"), -90)
        self.assert_files("Rotated.mp4", "clip.mp4")

    def test_replaces_an_older_file_and_leaves_nothing_hidden(self):
        self.older_file()
        self.open_and_turn()
        for mode in ("Fix Flag", "Transcode"):
            older = videos.digest(self.output)
            self.save(self.output, mode)
            self.app.dismiss(SUCCESS)
            self.assertNotEqual(videos.digest(self.output), older)
            self.assert_files("clip.mp4", "out.mp4")

    def test_a_cancelled_replacement_keeps_the_older_file(self):
        older = self.older_file()
        self.start_transcode_of_long_video()
        self.app.press("Cancel")
        wait_until(lambda: not processes("creator") and not self.app.shows("Creating Video..."), "the cancel")
        self.app.wait_for_window()
        self.assertEqual(videos.digest(self.output), older)
        self.assert_files("clip.mp4", "long.mp4", "out.mp4")

    def test_a_killed_encoder_keeps_the_older_file(self):
        older = self.older_file()
        self.start_transcode_of_long_video()

        def kill_encoder():  # creator tries again without some options
            for process in encoders():
                os.kill(process, signal.SIGKILL)
            return self.app.shows(FAILURE)

        wait_until(kill_encoder, "the failure")
        self.app.dismiss(FAILURE)
        self.assertEqual(videos.digest(self.output), older)
        self.assert_files("clip.mp4", "long.mp4", "out.mp4")

    def test_a_full_disk_keeps_the_older_file(self):
        disk = self.session.home / "small disk"
        output = videos.make_video(disk / "out.mp4", seconds=1)
        self.addCleanup(output.unlink)
        older = videos.digest(output)
        self.open_and_turn(self.long_input())
        self.save(output)
        self.app.dismiss(FAILURE)
        self.assertEqual(videos.digest(output), older)
        self.assertEqual(self.files_in(disk), [output])

    # One file by several grants

    def test_the_input_chosen_as_output_is_refused(self):
        self.open_and_turn()
        self.app.keys("ctrl+s")
        self.desktop.choose("SaveFile", self.input)
        self.app.dismiss(SAME_FILE)
        self.assert_files("clip.mp4")

    def test_a_dropped_input_chosen_as_output_is_refused(self):
        self.app.start()
        self.drop("gtk", self.input)
        self.wait_for_picture("clip.mp4")
        self.app.keys("ctrl+r", "ctrl+s")
        self.desktop.choose("SaveFile", self.input)
        self.app.dismiss(SAME_FILE)
        self.assert_files("clip.mp4")

    # Drops

    def drop(self, style, *paths):
        source = DragSource(style, paths)
        self.addCleanup(source.end)
        source.drag_to(*self.app.place())
        source.drop()

    def drops_and_opens(self, style):
        self.app.start()
        second = videos.make_video(self.videos / "second.mp4", seconds=1)
        self.drop(style, self.input, second)
        self.wait_for_picture("clip.mp4")

    def test_a_drop_from_a_gtk_program_opens_the_first_file(self):
        self.drops_and_opens("gtk")

    def test_a_drop_from_a_kde_program_opens_the_first_file(self):
        self.drops_and_opens("kde")

    # The desktop

    def test_shows_the_result_in_the_file_manager(self):
        self.open_and_turn()
        self.save(self.output)
        self.app.wait_for(SUCCESS)
        self.app.press("Show in Finder")
        wait_until(lambda: self.desktop.shown, "the file manager")
        self.assertEqual(self.desktop.shown, [self.output.as_uri()])

    def test_plays_the_result(self):
        self.open_and_turn()
        self.save(self.output)
        self.app.wait_for(SUCCESS)
        self.app.press("Launch Video in QuickTime")
        wait_until(lambda: self.session.played.exists() and self.session.played.read_text(), "the player")
        played = pathlib.Path(self.session.played.read_text().strip())
        self.assertEqual(played.name, self.output.name)
        self.assertEqual(videos.digest(played), videos.digest(self.output))

    def open_with(self, path):
        """Opens the file with the desktop entry, as a file manager does."""
        entry = Gio.DesktopAppInfo.new(APPLICATION_ID + ".desktop")
        self.assertTrue(entry.launch_uris([path.as_uri()], None))

    def test_open_with_starts_the_program_with_the_file(self):
        self.open_with(self.input)
        self.wait_for_picture("clip.mp4")

    def test_open_with_opens_the_file_in_the_running_program(self):
        self.app.start()
        self.open_with(self.input)
        self.wait_for_picture("clip.mp4")
        self.assertEqual(len(self.app.frames()), 1)

    def test_open_with_only_raises_the_window_while_a_sheet_is_shown(self):
        self.open_and_turn()
        other = videos.make_video(self.videos / "other.mp4", seconds=1)
        self.app.keys("F1")
        self.app.wait_for("Help")
        self.open_with(other)
        self.app.press("OK")
        self.app.wait_for_window()
        self.assertIn("clip.mp4", self.app.picture())

    def test_a_second_start_leaves_one_window(self):
        self.app.start()
        self.session.run("flatpak", "run", APPLICATION_ID)
        self.assertEqual(len(self.app.frames()), 1)

    def test_the_bus_starts_the_program(self):
        call = GLib.Variant("(a{sv})", ({},))
        self.session.bus.call_sync(APPLICATION_ID, "/org/tarnwell/Tarnwell", "org.freedesktop.Application", "Activate",
                                   call, None, 0, -1, None)
        self.app.wait_for_window()

    # Portals that fail

    def restart_document_portal(self):
        """Mounts the portal's file system again. Grants of earlier paths come back with it."""
        self.session.start_service(*DOCUMENT_PORTAL)

    def test_a_drop_without_a_portal_is_reported(self):
        self.app.start()
        source = DragSource("kde", [self.input])
        self.addCleanup(source.end)
        source.drag_to(*self.app.place())
        self.session.kill_service(DOCUMENT_PORTAL[0])
        self.addCleanup(self.restart_document_portal)
        source.drop()
        self.app.dismiss(FAILURE)

    def test_a_portal_that_dies_during_a_save_loses_nothing(self):
        older = self.older_file()
        self.start_transcode_of_long_video()
        self.session.kill_service(DOCUMENT_PORTAL[0])
        self.addCleanup(self.restart_document_portal)
        self.app.dismiss(FAILURE)
        self.assertEqual(videos.digest(self.output), older)

    def test_a_late_dialog_is_waited_for(self):
        self.app.start()
        self.app.keys("ctrl+o")
        self.desktop.wait_for_dialog("OpenFile")
        self.desktop.choose("OpenFile", self.input)
        self.wait_for_picture("clip.mp4")

    def test_a_folder_that_may_only_be_read_is_refused(self):
        folder = self.session.home / "closed"
        output = videos.make_video(folder / "out.mp4", seconds=1)
        older = videos.digest(output)
        folder.chmod(0o555)
        self.addCleanup(folder.chmod, 0o755)
        self.open_and_turn()
        self.app.keys("ctrl+s")
        self.desktop.choose("SaveFile", output)
        self.app.wait_for("You cannot save files in the chosen folder.")
        self.app.press("OK")
        self.desktop.choose("SaveFile", self.output)
        self.app.press("Fix Flag")
        self.app.dismiss(SUCCESS)
        self.assertEqual(videos.digest(output), older)
        self.assertEqual(self.files_in(folder), [output])
        self.assertTrue(self.output.exists())

    # The sandbox

    def test_the_tools_are_confined(self):
        output = self.session.run_in_sandbox("/app/libexec/tarnwell/creator", "--confinement")
        for line in ("no new privileges: yes", "limits: yes", "call filter: yes"):
            self.assertIn(line, output)
        self.assertRegex(output, "file rules: version [1-9]")

    def test_the_app_has_the_permissions_of_the_manifest(self):
        self.assertNotRegex(self.session.run_in_sandbox("cat", "/.flatpak-info"), "filesystems=.")
        self.assertIn("No such file", self.session.run_in_sandbox("cat", str(self.input), check=False))
        self.assertNotIn("Videos", self.session.run_in_sandbox("ls", "-a", str(self.session.home), check=False))


if __name__ == "__main__":
    SandboxTest.session = Session(sys.argv.pop(1))
    unittest.main(verbosity=2)
