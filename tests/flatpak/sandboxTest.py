#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The whole job in the sandbox. Run by tests/sandbox.

    sandboxTest.py FOLDER [TEST...]
"""

import os
import pathlib
import signal
import sys
import unittest

from gi.repository import GLib

import videos
from grantTest import GrantTest  # noqa: F401
from sandboxCase import FAILURE, SAME_FILE, SUCCESS, SandboxCase, encoders, processes
from session import APPLICATION_ID, Session
from waiting import wait_until


class SandboxTest(SandboxCase):
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

    def assert_starts_in_a_folder_of_the_user(self, options):
        """In the portal's own choice or in that of the open video, and not in a folder that only the app sees."""
        folder = bytes(options.get("current_folder", [])).rstrip(b"\0").decode()
        self.assertIn(folder, ("", str(self.videos)))

    def test_panels_start_in_a_folder_of_the_user(self):
        self.open_and_turn()
        self.app.keys("ctrl+o")
        self.assert_starts_in_a_folder_of_the_user(self.desktop.cancel("OpenFile"))
        self.app.wait_for_window()
        self.app.keys("ctrl+s")
        self.assert_starts_in_a_folder_of_the_user(self.desktop.choose("SaveFile", self.videos / "Rotated"))
        self.assert_starts_in_a_folder_of_the_user(self.desktop.choose("SaveFile", self.videos / "Rotated.mp4"))
        self.app.press("Fix Flag")
        self.app.dismiss(SUCCESS)
        self.app.keys("ctrl+s")
        self.assert_starts_in_a_folder_of_the_user(self.desktop.cancel("SaveFile"))

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

    def test_the_result_can_be_played_with_the_program_itself(self):
        """The portal lets the user choose, and offers the program too, because its desktop entry lists video types."""
        self.desktop.preferred = APPLICATION_ID
        self.open_and_turn()
        self.save(self.output)
        self.app.wait_for(SUCCESS)
        self.app.press("Launch Video in QuickTime")
        self.wait_for_picture("out.mp4")
        self.assertIn("player", self.desktop.applications)
        self.assertIn(APPLICATION_ID, self.desktop.applications)
        self.assertIn("as it was opened", self.app.picture())

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
        wait_until(lambda: self.app.button("OK"), "the help sheet")
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


if __name__ == "__main__":
    SandboxCase.session = Session(sys.argv.pop(1))
    unittest.main(verbosity=2)
