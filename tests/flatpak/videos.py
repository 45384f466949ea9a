# SPDX-License-Identifier: MIT
"""Sample videos and what saved ones contain."""

import hashlib
import json
import subprocess

WIDTH, HEIGHT = 640, 360


def make_video(path, seconds=2, source="testsrc2", rate=25):
    """An H.264 video with sound that lies on its side for the tests, of WIDTH x HEIGHT."""
    path.parent.mkdir(parents=True, exist_ok=True)
    subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-y",
                    "-f", "lavfi", "-i", f"{source}=size={WIDTH}x{HEIGHT}:rate={rate}:duration={seconds}",
                    "-f", "lavfi", "-i", f"sine=duration={seconds}", "-pix_fmt", "yuv420p",
                    "-c:v", "libx264", "-preset", "ultrafast", "-c:a", "aac", str(path)], check=True)
    return path


def video_stream(path):
    report = subprocess.run(["ffprobe", "-v", "error", "-show_streams", "-select_streams", "v:0",
                             "-print_format", "json", str(path)], check=True, capture_output=True).stdout
    return json.loads(report)["streams"][0]


def rotation(path):
    """In degrees, clockwise negative; 0 without a flag."""
    return next((data["rotation"] for data in video_stream(path).get("side_data_list", []) if "rotation" in data), 0)


def stored_size(path):
    stream = video_stream(path)
    return stream["width"], stream["height"]


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()
