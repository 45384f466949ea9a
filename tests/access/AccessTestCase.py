# SPDX-License-Identifier: MIT
"""The base class of the tests over the accessibility bus."""

import os
import shutil
import sys
import tempfile
import unittest

import pyatspi

import screenReader
import videos
from screenReader import everything_in, has_state, is_shown, wait_until


class AccessTestCase(unittest.TestCase):
    """Starts the program for each test and creates a temporary folder with a sample video."""

    build_folder = None

    @classmethod
    def setUpClass(cls):
        screenReader.switch_on()
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.sample = os.path.join(folder.name, "sample.mp4")
        videos.make_video(cls.sample)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.video = os.path.join(folder.name, "clip.mp4")
        self.output = os.path.join(folder.name, "out.mp4")
        shutil.copyfile(self.sample, self.video)
        self.program = screenReader.Program(os.path.join(self.build_folder, "bin", "tarnwell"))
        self.addCleanup(self.program.end)
        self.view = None

    def picture(self):
        """The accessible description of the view, which must be visible."""
        self.view = self.view or self.program.find("image", "Video Preview")
        wait_until(lambda: is_shown(self.view), "the view")
        return self.view.description

    def wait_for_picture(self, description):
        wait_until(lambda: self.picture() == description, f"the picture's description: {description}")

    def assert_named(self, window):
        """Every focusable control in the window has an accessible name and a specific role."""
        for element in everything_in(window):
            if is_shown(element) and has_state(element, pyatspi.STATE_FOCUSABLE) and not is_text(element):
                self.assertTrue(element.name, f"a {element.getRoleName()} has no name")
                self.assertNotIn(element.getRoleName(), ("filler", "unknown"), element.name)

    def assert_by_flag(self, degrees):
        self.assertEqual(videos.stored_size(self.output), (videos.WIDTH, videos.HEIGHT))
        self.assertEqual(videos.rotation(self.output), degrees)

    def assert_encoded_on_its_side(self):
        self.assertEqual(videos.stored_size(self.output), (videos.HEIGHT, videos.WIDTH))
        self.assertEqual(videos.rotation(self.output), 0)


def is_text(element):
    """Whether the element is a list or table cell, whose text may be empty."""
    return element.getRoleName() in ("table cell", "list item")


def main():
    AccessTestCase.build_folder = sys.argv.pop(1)
    screenReader.pictures_folder = AccessTestCase.build_folder
    unittest.main(verbosity=2)
