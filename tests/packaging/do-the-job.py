#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Does the main job with the installed program on the current desktop.

Starts the program by its desktop entry, opens a video, turns it, saves it in both modes and quits, with keys and over
the accessibility bus. Then checks the saved videos. The argument is a folder for the videos and a screenshot of each
step.
"""

import hashlib
import json
import pathlib
import subprocess
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402

LONGEST_WAIT = 60  # seconds
APPLICATION_ID = "org.tarnwell.Tarnwell"
WIDTH, HEIGHT = 960, 540
CORNERS = {"red": (255, 0, 0), "green": (0, 128, 0), "blue": (0, 0, 255), "yellow": (255, 255, 0)}


def wait_for(what, condition):
    """Returns the first true result of the condition. Fails after LONGEST_WAIT."""
    deadline = time.monotonic() + LONGEST_WAIT
    while True:
        try:
            answer = condition()
        except GLib.Error:  # the element no longer exists
            answer = None
        if answer:
            return answer
        if time.monotonic() > deadline:
            raise AssertionError(f"timeout waiting for {what}")
        time.sleep(0.02)


def require(condition, what):
    if not condition:
        raise AssertionError(what)


def children(thing):
    for index in range(thing.get_child_count()):
        child = thing.get_child_at_index(index)
        if child:
            yield child


def everything(thing):
    yield thing
    for child in children(thing):
        yield from everything(child)


def application():
    for candidate in children(Atspi.get_desktop(0)):
        if candidate.get_name() in ("tarnwell", "Tarnwell"):
            candidate.set_cache_mask(Atspi.Cache.NONE)
            return candidate
    return None


def has(thing, *states):
    actual = thing.get_state_set()
    return all(actual.contains(state) for state in states)


def find(accept):
    running = application()
    return next((thing for thing in everything(running) if accept(thing)), None) if running else None


def main_window():
    return find(lambda thing: thing.get_role() == Atspi.Role.FRAME and (thing.get_name() or "").endswith("Tarnwell"))


def button(name, *states):
    """The visible push button or tool button of that name with those states."""
    return find(lambda thing: thing.get_role() == Atspi.Role.PUSH_BUTTON and thing.get_name() == name
                and has(thing, Atspi.StateType.SHOWING, *states))


def text_shown(part):
    return find(lambda thing: part in (thing.get_name() or "") and has(thing, Atspi.StateType.SHOWING))


def file_name_field():
    return find(lambda thing: thing.get_role() == Atspi.Role.TEXT
                and has(thing, Atspi.StateType.SHOWING, Atspi.StateType.FOCUSED, Atspi.StateType.EDITABLE))


def press(thing):
    require(thing.do_action(0), f"the button {thing.get_name()} cannot be pressed")


def keys(*names):
    subprocess.run(["xdotool", "key", "--delay", "0", *names], check=True)


def type_path(path):
    wait_for("the field for the file's name", file_name_field)
    keys("ctrl+a")
    subprocess.run(["xdotool", "type", "--delay", "0", "--", str(path)], check=True)
    wait_for("the typed path", lambda: Atspi.Text.get_text(file_name_field(), 0, -1) == str(path))
    keys("Return")


class Job:
    def __init__(self, folder):
        self.folder = folder
        self.sample = folder / "sample video.mp4"
        self.step = 0

    def show(self, what):
        """Saves a screenshot and prints its name."""
        self.step += 1
        picture = self.folder / f"{self.step:02} {what}.png"
        ffmpeg("-f", "x11grab", "-draw_mouse", "0", "-i", "", "-frames:v", "1", str(picture))
        print(picture.name, flush=True)

    def make_sample(self):
        boxes = ((0, 0, "red"), ("iw*3/4", 0, "green"), (0, "ih*3/4", "blue"), ("iw*3/4", "ih*3/4", "yellow"))
        drawn = ",".join(f"drawbox=x={x}:y={y}:w=iw/4:h=ih/4:t=fill:color={colour}" for x, y, colour in boxes)
        ffmpeg("-f", "lavfi", "-i", f"color=gray:size={WIDTH}x{HEIGHT}:rate=25:duration=4",
               "-f", "lavfi", "-i", "sine=frequency=440:duration=4",
               "-vf", drawn, "-c:v", "libx264", "-pix_fmt", "yuv420p", "-c:a", "aac", str(self.sample))

    def start(self):
        """Launches the desktop entry, which makes the session bus start the program by the package's service file."""
        entry = Gio.DesktopAppInfo.new(APPLICATION_ID + ".desktop")
        require(entry.get_boolean("DBusActivatable"), "the desktop entry is not DBusActivatable")
        require(entry.launch([], None), "the desktop entry cannot be launched")
        window = wait_for("the window", main_window)
        wait_for("the keyboard", lambda: has(window, Atspi.StateType.ACTIVE))
        self.show("started")
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Tarnwell$"],
                               check=True, capture_output=True, text=True).stdout.split()
        require(len(found) == 1, f"one window: {found}")
        names = subprocess.run(["xprop", "-id", found[0], "WM_CLASS"], check=True, capture_output=True, text=True)
        require(f'"{entry.get_startup_wm_class()}"' in names.stdout, f"the entry's window: {names.stdout}")

    def start_again(self):
        again = subprocess.run(["/usr/bin/tarnwell"], timeout=LONGEST_WAIT, check=False)
        require(again.returncode == 0, "a second instance leaves")
        windows = [thing for thing in everything(application()) if thing.get_role() == Atspi.Role.FRAME]
        require(len(windows) == 1, "one window")

    def open_sample(self):
        keys("ctrl+o")
        type_path(self.sample)
        wait_for("the video", lambda: button("Rotate Right", Atspi.StateType.SENSITIVE))
        self.wait_for_keyboard()
        self.show("opened")

    def turn(self):
        before = screen()
        keys("ctrl+r")
        wait_for("another picture", lambda: screen() != before)
        self.show("turned to the right")

    def wait_for_keyboard(self):
        wait_for("the keyboard", lambda: has(main_window(), Atspi.StateType.ACTIVE))

    def save(self, name, way):
        keys("ctrl+s")
        type_path(self.folder / name)
        press(wait_for("the choice", lambda: button(way)))
        wait_for("the success", lambda: text_shown("Video Rotated Successfully!"))
        self.show(f"saved by {way}")
        press(wait_for("the button", lambda: button("OK")))
        self.wait_for_keyboard()

    def quit(self):
        bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)

        def is_running():
            answer = bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                   "NameHasOwner", GLib.Variant("(s)", (APPLICATION_ID,)), None, 0, -1, None)
            return answer.unpack()[0]

        require(is_running(), "the program owns its name")
        keys("ctrl+q")
        wait_for("the end", lambda: not is_running())


def ffmpeg(*arguments):
    command = ["ffmpeg", "-v", "error", "-nostdin", "-y", *arguments]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout


def screen():
    return ffmpeg("-f", "x11grab", "-draw_mouse", "0", "-i", "", "-frames:v", "1", "-f", "rawvideo", "-")


def expect_video(path, size, rotation):
    report = json.loads(subprocess.run(
        ["ffprobe", "-v", "error", "-show_streams", "-print_format", "json", str(path)],
        check=True, capture_output=True).stdout)
    video, = [stream for stream in report["streams"] if stream["codec_type"] == "video"]
    sounds = [stream for stream in report["streams"] if stream["codec_type"] == "audio"]
    turns = [data["rotation"] for data in video.get("side_data_list", []) if "rotation" in data]
    print(f"{path.name}: {video['codec_name']} {video['width']} x {video['height']}, rotation {turns or 'none'}, "
          f"{video['nb_frames']} frames, {len(sounds)} sound track(s)")
    require((video["width"], video["height"]) == size, "the size")
    require([turn for turn in turns if turn != 0] == rotation, "the rotation")
    require(video["nb_frames"] == "100", "all frames")
    require(len(sounds) == 1, "the sound")


def expect_turned_right(path):
    """Decodes a frame with its rotation applied and checks the colours of its corners."""
    frame = ffmpeg("-ss", "2", "-i", str(path), "-frames:v", "1", "-f", "rawvideo", "-pix_fmt", "rgb24", "-")
    width, height = HEIGHT, WIDTH
    require(len(frame) == width * height * 3, "the size that is shown")
    places = {"blue": (1, 1), "red": (7, 1), "yellow": (1, 7), "green": (7, 7)}
    for colour, (x, y) in places.items():
        at = 3 * (height * y // 8 * width + width * x // 8)
        actual = tuple(frame[at:at + 3])
        farthest = max(abs(a - b) for a, b in zip(actual, CORNERS[colour]))
        require(farthest < 24, f"{colour} is {actual} in {path.name}")
    print(f"{path.name}: is shown turned to the right")


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def main():
    job = Job(pathlib.Path(sys.argv[1]))
    job.make_sample()
    original = digest(job.sample)
    job.start()
    job.start_again()
    job.open_sample()
    job.turn()
    job.save("turned by its flag.mp4", "Fix Flag")
    job.save("turned frame by frame.mp4", "Transcode")
    job.quit()
    for name, size, rotation in (("turned by its flag.mp4", (WIDTH, HEIGHT), [-90]),
                                 ("turned frame by frame.mp4", (HEIGHT, WIDTH), [])):
        expect_video(job.folder / name, size, rotation)
        expect_turned_right(job.folder / name)
    require(digest(job.sample) == original, "the original changed")
    print("The job is done.")


main()
