# SPDX-License-Identifier: MIT
"""What exiftool and ffprobe read in a video, as named facts that can be compared."""

import json
import subprocess

# exiftool's names without their groups.
EXIFTOOL_NAMES = [
    "CreateDate", "ModifyDate", "TrackCreateDate", "TrackModifyDate", "MediaCreateDate", "MediaModifyDate",
    "CreationDate", "DateTimeOriginal", "ContentCreateDate", "GPSCoordinates", "Make", "Model", "Title",
    "Comment", "FirmwareVersion", "ProjectionType", "Track*Name",
]  # fmt: skip
VIDEO_TRACK = "Track1"


class Exiftool:
    """One process that reads many files, one after the other."""

    def __enter__(self):
        self.process = subprocess.Popen(["exiftool", "-stay_open", "True", "-@", "-"], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)  # fmt: skip
        return self

    def __exit__(self, *exception):
        self.process.communicate("-stay_open\nFalse\n")

    def facts(self, path):
        arguments = ["-j", "-n", "-a", "-G1", *["-" + name for name in EXIFTOOL_NAMES], path, "-execute"]
        self.process.stdin.write("\n".join(arguments) + "\n")
        self.process.stdin.flush()
        report = ""
        while (line := self.process.stdout.readline()) != "{ready}\n":
            if not line:
                raise EOFError(f"exiftool ended while it read {path}")
            report += line
        entries = json.loads(report or "[{}]")[0]
        facts = {}
        for name, value in entries.items():
            group, _, tag = name.partition(":")
            if tag:
                facts[f"{group} {tag}"] = str(value)
        return facts


def ffprobe_report(path):
    command = ["ffprobe", "-v", "quiet", "-of", "json", "-show_format", "-show_streams", "-show_chapters",
               "file:" + path]  # fmt: skip
    return json.loads(subprocess.run(command, check=False, capture_output=True, text=True).stdout or "{}")


def values_of_tag(tags, *names):
    lower = {name.lower(): value for name, value in tags.items()}
    return next((lower[name] for name in names if name in lower), None)


def ffprobe_facts(path):
    report = ffprobe_report(path)
    tags = report.get("format", {}).get("tags", {})
    streams = report.get("streams", [])
    facts = {
        "date": values_of_tag(tags, "creation_time"),
        "local date": values_of_tag(tags, "com.apple.quicktime.creationdate"),
        "place": values_of_tag(tags, "com.apple.quicktime.location.iso6709", "location"),
        "make": values_of_tag(tags, "com.apple.quicktime.make", "make"),
        "model": values_of_tag(tags, "com.apple.quicktime.model", "model"),
        "title": values_of_tag(tags, "title"),
        "day": values_of_tag(tags, "date"),
        "comment": values_of_tag(tags, "comment"),
        "chapters": " ".join(chapter.get("tags", {}).get("title", "?") for chapter in report.get("chapters", [])),
    }
    for kind in ("video", "audio", "subtitle", "data"):
        chosen = [stream for stream in streams if stream.get("codec_type") == kind]
        facts[kind] = " ".join(codec_of(stream) for stream in chosen)
        facts[kind + " languages"] = " ".join(stream.get("tags", {}).get("language", "und") for stream in chosen)
    records = [data["side_data_type"] for stream in streams for data in stream.get("side_data_list", [])]
    facts["records"] = ", ".join(record for record in records if record != "Display Matrix")
    facts["colours"] = " ".join(colours for stream in streams if (colours := colours_of(stream)))
    if "dby1" in tags.get("compatible_brands", ""):
        facts["brand"] = "dby1"
    facts["display aspect"] = next(
        (stream.get("display_aspect_ratio") for stream in streams if stream.get("codec_type") == "video"), None)
    return {name: value for name, value in facts.items() if value}


def colours_of(stream):
    names = ("color_primaries", "color_transfer", "color_space")
    return "/".join(stream[name] for name in names if name in stream)


def codec_of(stream):
    tag = stream.get("codec_tag_string", "")
    codec = stream.get("codec_name", "?")
    return f"{codec}/{tag}" if tag.isalnum() else codec


def facts_of(path, exiftool):
    """All facts, each with the name of the program that reads it."""
    facts = {"ffprobe " + name: value for name, value in ffprobe_facts(path).items()}
    facts.update({"exiftool " + name: value for name, value in exiftool.facts(path).items()})
    return facts


def differing_bytes(first, second):
    """How many bytes differ between two files of the same size; None for files of different sizes."""
    with open(first, "rb") as file:
        left = file.read()
    with open(second, "rb") as file:
        right = file.read()
    if len(left) != len(right):
        return None
    return sum(a != b for a, b in zip(left, right)) if left != right else 0


def is_mp4_family(path):
    with open(path, "rb") as file:
        start = file.read(12)
    return start[4:8] == b"ftyp" and start[8:12] != b"qt  "
