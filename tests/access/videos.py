# SPDX-License-Identifier: MIT
"""Creates sample videos with ffmpeg and reads saved videos with ffprobe."""

import json
import subprocess

WIDTH = 640
HEIGHT = 480
LONGEST_RUN = 300  # seconds


def ffmpeg(*arguments):
    subprocess.run(["ffmpeg", "-v", "error", "-nostdin", *arguments], check=True, timeout=LONGEST_RUN)


def make_video(path, size=f"{WIDTH}x{HEIGHT}"):
    """Creates an H.264 video of two seconds with an audio track."""
    ffmpeg("-f", "lavfi", "-i", f"testsrc2=size={size}:rate=25:duration=2", "-f", "lavfi", "-i", "sine=duration=2",
           "-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", "-c:a", "aac", path)


def repeat_video(path, times, repeated_path):
    """Creates a video that shows the other one this many times, without encoding it again."""
    ffmpeg("-stream_loop", str(times - 1), "-i", path, "-c", "copy", repeated_path)


def video_stream(path):
    """ffprobe's report on the video stream."""
    report = subprocess.run(["ffprobe", "-v", "error", "-of", "json", "-show_streams", path],
                            check=True, capture_output=True, text=True, timeout=LONGEST_RUN).stdout
    return next(stream for stream in json.loads(report)["streams"] if stream["codec_type"] == "video")


def stored_size(path):
    stream = video_stream(path)
    return stream["width"], stream["height"]


def rotation(path):
    """The orientation flag in degrees counterclockwise; 0 if there is none."""
    return next((data["rotation"] for data in video_stream(path).get("side_data_list", [])
                 if data["side_data_type"] == "Display Matrix"), 0)
