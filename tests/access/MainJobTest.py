# SPDX-License-Identifier: MIT
"""The main job over the accessibility bus only, as with a screen reader."""

import os

import AccessTestCase
import videos
from screenReader import is_enabled, text_of, wait_until

TOOLS = {
    "Open": "Choose a video file to turn or mirror (Ctrl+O)",
    "Save": "Save the video as a new MP4 file (Ctrl+S)",
    "Rotate Left": "Turn the picture a quarter turn counterclockwise (Ctrl+L)",
    "Rotate Right": "Turn the picture a quarter turn clockwise (Ctrl+R)",
    "Flip Vertically": "Exchange the top and the bottom of the picture (Ctrl+Shift+V)",
    "Flip Horizontally": "Exchange the left and the right of the picture (Ctrl+Shift+H)",
    "Reset": "Show the picture as it was when opened (Ctrl+0)",
    "Help": "Show how Tarnwell works (F1)",
}
QUESTIONS = "Questions? : "


class MainJobTest(AccessTestCase.AccessTestCase):
    def open(self, path):
        self.program.press("push button", "Open", self.program.find("tool bar"))
        panel = self.program.find("dialog", "Open Video")
        self.program.write(self.program.find("text", "File name:", panel), path)
        self.program.press("push button", "Open", panel)

    def open_video(self):
        self.open(self.video)
        self.wait_for_picture("clip.mp4, as it was opened")

    def save(self, proposed):
        self.program.press("push button", "Save", self.program.find("tool bar"))
        panel = self.program.find("dialog", "Save Video")
        self.assert_named(panel)
        field = self.program.find("text", "File name:", panel)
        self.assertEqual(text_of(field), proposed)
        self.program.write(field, self.output)
        self.program.press("push button", "Save", panel)

    def choose(self, mode):
        alert = self.program.find("alert", "Fix Flag mode Available!")
        self.assertTrue(alert.description.startswith("Fix Flag (Quick): Only the orientation flag"))
        self.assertTrue(alert.description.endswith("compatible with all video players."))
        self.assert_named(alert)
        self.assertIsNotNone(self.program.shown("image", "Warning", alert))
        self.program.press("push button", mode, alert)

    def dismiss(self, name):
        """Waits for the alert of that name and presses OK. Returns the alert's description."""
        alert = self.program.find("alert", name)
        wait_until(lambda: ("alert", name) in self.program.activated, "the alert's announcement")
        wait_until(lambda: self.program.focused() == ("push button", "OK"), "focus on OK")
        self.assert_named(alert)
        self.assertIsNotNone(self.program.shown("label", name, alert))
        description = alert.description
        self.program.press("push button", "OK", alert)
        self.program.wait_until_gone("alert")
        return description

    def test_every_control_has_a_name_and_a_description(self):
        self.assert_named(self.program.window)
        toolbar = self.program.find("tool bar", "Tools")
        for name, description in TOOLS.items():
            button = self.program.shown("push button", name, toolbar)
            self.assertIsNotNone(button, name)
            self.assertEqual(button.description, description)
            self.assertEqual(is_enabled(button), name in ("Open", "Help"), name)
        self.assertEqual(self.picture(), "Drop a video here, or click to choose one (Ctrl+O)")
        menus = self.program.find("menu bar")
        for name in ("File", "Orientation", "Help"):
            self.assertIsNotNone(self.program.shown("menu item", name, menus), name)

    def test_the_title_and_the_line_below_the_picture_describe_the_video(self):
        self.assertIsNone(self.program.shown("label", "Video Details"))
        self.open_video()
        self.assertEqual(self.program.window.name, "clip.mp4 — Tarnwell")
        details = self.program.find("label", "Video Details")
        facts = details.description
        self.assertRegex(facts, r"^640 × 480 · 00:00:02\.\d\d · \d+ KB$")
        self.program.press("push button", "Rotate Right")
        self.wait_for_picture("clip.mp4, turned right")
        self.assertEqual(details.description, facts + " · turned right")
        for _, announced in self.program.descriptions:
            self.assertNotIn(facts, announced)  # the picture's description already announces what has changed

    def test_a_video_is_turned_and_saved_by_fix_flag(self):
        self.open_video()
        self.program.press("push button", "Rotate Right")
        self.wait_for_picture("clip.mp4, turned right")
        self.assertIn(("image", "clip.mp4, turned right"), self.program.descriptions)
        self.save("Rotated")
        self.choose("Fix Flag")
        self.assertTrue(self.dismiss("Video Rotated Successfully!").startswith(QUESTIONS))
        self.assert_by_flag(-90)
        self.assertEqual(self.picture(), "clip.mp4, turned right")

    def test_a_video_is_turned_and_re_encoded(self):
        self.open_video()
        for name, description in (("Rotate Left", "turned left"),
                                  ("Flip Vertically", "turned left, mirrored vertically"),
                                  ("Flip Horizontally", "turned left, mirrored vertically and horizontally")):
            self.program.press("push button", name)
            self.wait_for_picture("clip.mp4, " + description)
        self.save("Rotated and Flipped")
        self.choose("Transcode")
        self.assertTrue(self.dismiss("Video Rotated and Flipped Successfully!").startswith(QUESTIONS))
        self.assert_encoded_on_its_side()

    def test_progress_is_announced_and_a_run_can_be_cancelled(self):
        large = os.path.join(os.path.dirname(self.video), "large.mp4")
        videos.make_video(large, size="1280x720")
        os.remove(self.video)
        videos.repeat_video(large, 60, self.video)
        self.open_video()
        self.assertIn(("dialog", "Analyzing Video..."), self.program.descriptions)
        self.save("Processed")
        self.choose("Transcode")
        sheet = self.program.find("dialog")
        self.assert_named(sheet)
        self.assertEqual(sheet.description, "Creating Video...")
        self.assertEqual(self.program.find("label", "Progress Title", sheet).description, "Creating Video...")
        bar = self.program.find("progress bar", "Progress", sheet)
        wait_until(lambda: any(value > 0 for _, value in self.program.values), "an announcement of progress")
        self.assertEqual({name for name, _ in self.program.values}, {"Progress"})
        limits = bar.queryValue()
        self.assertEqual((limits.minimumValue, limits.maximumValue), (0, 100))
        self.program.press("push button", "Cancel", sheet)
        self.program.wait_until_gone("dialog")
        wait_until(lambda: not os.path.exists(self.output), "removal of the cancelled output")
        self.assertIsNone(self.program.shown("alert"))

    def test_a_file_that_is_not_a_video_shows_an_alert(self):
        path = os.path.join(os.path.dirname(self.video), "notes.txt")
        with open(path, "w", encoding="utf-8") as file:
            file.write("no video")
        self.open(path)
        name = "Seems to be an unsupported file.\nDoes the video play in a video player?"
        self.assertTrue(self.dismiss(name).startswith("Please try opening some other file or contact : "))
        self.assertEqual(self.picture(), "Drop a video here, or click to choose one (Ctrl+O)")

    def test_the_help_is_accessible(self):
        self.program.press("push button", "Help", self.program.find("tool bar"))
        sheet = self.program.find("dialog", "Help")
        self.assert_named(sheet)
        self.assertIsNotNone(self.program.shown("label", "Rotate Left and Rotate Right turn the picture by a "
                                                         "quarter turn.", sheet))
        self.program.press("push button", "OK", sheet)
        self.program.wait_until_gone("dialog")


if __name__ == "__main__":
    AccessTestCase.main()
