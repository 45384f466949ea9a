# SPDX-License-Identifier: MIT
"""What the app may do with files, and portals that fail or answer late."""

import os

from gi.repository import GLib

import videos
from dragging import DragSource
from sandboxCase import FAILURE, SAME_FILE, SUCCESS, SandboxCase
from session import APPLICATION_ID, DOCUMENT_PORTAL

CLOSED_FOLDER = "You cannot save files in the chosen folder."


class GrantTest(SandboxCase):
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
        """Keys do nothing until the dialog is answered, and nothing later."""
        self.app.start()
        self.open()
        second = videos.make_video(self.videos / "second.mp4", seconds=1)
        self.app.keys("ctrl+o")
        self.desktop.wait_for_dialog("OpenFile")
        self.app.keys("ctrl+r", "ctrl+s", "ctrl+o", "F1", "Return")
        self.app.wait_for_keys()
        self.assertIn("clip.mp4, as it was opened", self.app.picture())
        self.desktop.choose("OpenFile", second)
        self.wait_for_picture("second.mp4")
        self.app.wait_for_keys()
        self.assertEqual(self.app.picture(), "second.mp4, as it was opened")
        self.assertEqual(self.desktop.open_dialogs(), [])
        self.assertIsNone(self.app.button("OK"), "the help sheet is shown")

    # Files and folders that may only be read

    def read_only_video(self, name, seconds=2):
        """No other test may use the name."""
        path = videos.make_video(self.videos / name, seconds)
        original = videos.digest(path)
        self.addCleanup(lambda: self.assertEqual(videos.digest(path), original))
        return path

    def assert_read_only(self, path):
        """The app may read the file, and not write to it."""
        info = self.session.run("flatpak", "document-info", str(path))
        self.assertRegex(info, rf"{APPLICATION_ID}\s+read")
        self.assertNotIn("write", info)

    def open_to_read(self, path):
        self.app.start()
        self.app.keys("ctrl+o")
        self.desktop.choose("OpenFile", path, writable=False)
        self.wait_for_picture(path.name)
        self.assert_read_only(path)

    def turn_and_save(self):
        self.app.keys("ctrl+r")
        self.save(self.output)
        self.app.dismiss(SUCCESS)
        self.assertEqual(videos.rotation(self.output), -90)

    def test_a_file_that_may_only_be_read_is_turned_to_another_file(self):
        path = self.read_only_video("chosen to read.mp4")
        self.open_to_read(path)
        self.turn_and_save()

    def test_a_dropped_file_that_may_only_be_read_is_turned_to_another_file(self):
        path = self.read_only_video("dropped to read.mp4")
        self.app.start()
        self.drop("gtk", path)
        self.wait_for_picture(path.name)
        self.assert_read_only(path)
        self.turn_and_save()

    def test_a_file_that_may_only_be_read_is_refused_as_its_own_output(self):
        path = self.read_only_video("chosen twice.mp4")
        self.open_to_read(path)
        self.app.keys("ctrl+r", "ctrl+s")
        self.desktop.choose("SaveFile", path)
        self.app.dismiss(SAME_FILE)
        self.assert_files("chosen twice.mp4", "clip.mp4")

    def test_a_folder_that_may_only_be_read_is_refused(self):
        folder = self.session.home / "closed"
        path = videos.make_video(folder / "out.mp4", seconds=1)
        older = videos.digest(path)
        folder.chmod(0o555)
        self.addCleanup(folder.chmod, 0o755)
        self.open_and_turn()
        self.app.keys("ctrl+s")
        self.desktop.choose("SaveFile", path)
        self.app.wait_for(CLOSED_FOLDER)
        self.app.press("OK")
        self.desktop.choose("SaveFile", self.output)
        self.app.press("Fix Flag")
        self.app.dismiss(SUCCESS)
        self.assertEqual(videos.digest(path), older)
        self.assertEqual(self.files_in(folder), [path])
        self.assertTrue(self.output.exists())

    # The sandbox

    def test_the_tools_are_confined(self):
        output = self.session.run_in_sandbox("/app/libexec/tarnwell/creator", "--confinement")
        for line in ("no new privileges: yes", "limits: yes", "call filter: yes"):
            self.assertIn(line, output)
        self.assertRegex(output, "file rules: version [1-9]")

    def test_the_app_has_the_permissions_of_the_manifest(self):
        self.assertNotRegex(self.session.run_in_sandbox("cat", "/.flatpak-info"), "filesystems=.")
        self.assertNotIn("Videos", self.session.run_in_sandbox("ls", "-a", str(self.session.home), check=False))

    def foreign_file(self):
        """A video of the user that no test grants to the app."""
        path = videos.make_video(self.session.home / "Private" / "never granted.mp4", seconds=1)
        self.assertNotIn(path.name, self.session.run("flatpak", "documents"))
        return str(path)

    def test_no_program_of_the_app_can_read_another_file(self):
        path = self.foreign_file()
        for program in ("cat", "/app/bin/ffprobe", "/app/libexec/tarnwell/sniffer"):
            with self.subTest(program):
                self.assertIn("No such file", self.session.run_in_sandbox(program, path, check=False))
        granted = self.session.run_in_sandbox("ls", "-R", f"/run/user/{os.getuid()}/doc", check=False)
        self.assertNotIn("never granted", granted)

    def test_a_request_to_open_another_file_is_reported(self):
        self.open_and_turn()
        uris = [GLib.filename_to_uri(self.foreign_file())]
        self.session.bus.call_sync(APPLICATION_ID, "/org/tarnwell/Tarnwell", "org.freedesktop.Application", "Open",
                                   GLib.Variant("(asa{sv})", (uris, {})), None, 0, -1, None)
        self.app.wait_for("The desktop did not pass on the file.")
        self.app.dismiss(FAILURE)
        self.assertEqual(self.app.picture(), "clip.mp4, turned right")
