# SPDX-License-Identifier: MIT
"""What docs/tools.md promises of the clips: which facts stay, and what becomes of the others."""

MATRIX_SIZE = 36  # bytes of a track header that a rotation flag may change

MOVIE_DATES = ["ffprobe date", "exiftool QuickTime CreateDate", "exiftool QuickTime ModifyDate"]
TRACK_DATES = [f"exiftool Track{track} {part}{kind}Date"
               for track in (1, 2) for part in ("Track", "Media") for kind in ("Create", "Modify")]  # fmt: skip
DATES = MOVIE_DATES + TRACK_DATES
DEVICE = ["ffprobe make", "ffprobe model"]

# Facts that are in the original and the same in the saved video, in both modes.
KEPT = {
    "iphone.mov": [
        *DATES, *DEVICE, "ffprobe place", "ffprobe local date", "ffprobe day", "ffprobe audio",
        "ffprobe audio languages", "exiftool Keys Make", "exiftool Keys Model", "exiftool Keys GPSCoordinates",
        "exiftool Keys CreationDate", "exiftool UserData Make", "exiftool UserData Model",
        "exiftool UserData GPSCoordinates", "exiftool UserData ContentCreateDate", "exiftool Track1 Model",
    ],
    "android.mp4": [*DATES, "ffprobe place", "exiftool UserData GPSCoordinates", "ffprobe audio"],
    "gopro.mp4": [*DATES, "exiftool UserData FirmwareVersion", "ffprobe audio"],
    "two-sounds.mkv": [
        "ffprobe date", *DEVICE, "ffprobe place", "ffprobe title", "ffprobe day", "ffprobe comment",
        "ffprobe chapters",
    ],
    "camera.avi": ["ffprobe title", "ffprobe day"],
    "broadcast.ts": ["ffprobe audio languages"],
    "camera.mov": DATES,
    "dolby-vision.mov": DATES,
    "dolby-vision.mp4": DATES,
    "hdr10.mov": [*DATES, "ffprobe records", "ffprobe colours"],
    "spherical.mov": DATES,
    "spherical.mp4": DATES,
    "fragmented.mp4": MOVIE_DATES,
    "motion-photo.mp4": DATES,
}  # fmt: skip

# Further facts that stay in one mode.
KEPT_IN = {
    ("iphone.mov", "fix flag"): ["ffprobe video"],
    ("two-sounds.mkv", "fix flag"): ["ffprobe audio languages"],
    ("dolby-vision.mov", "fix flag"): ["ffprobe records", "ffprobe video"],
    ("hdr10.mov", "fix flag"): ["ffprobe video"],
    ("spherical.mov", "fix flag"): ["exiftool XMP-GSpherical ProjectionType"],
}

# Facts with a new value; None for a fact that has to be gone.
EXPECTED = {
    ("two-sounds.mkv", "fix flag"): {
        "ffprobe video": "hevc/hvc1", "ffprobe audio": "aac/mp4a ac3", "exiftool ItemList Title": "A day",
        "exiftool Keys Make": "Maker", "exiftool Keys Model": "Model 7",
        "exiftool Keys GPSCoordinates": "48.1372 11.5756 519", "exiftool Track2 Track2Name": "Voices",
        "exiftool Track3 Track3Name": "Music",
    },
    ("two-sounds.mkv", "transcode"): {
        "ffprobe audio": "aac/mp4a", "ffprobe audio languages": "deu", "exiftool Keys Make": "Maker",
        "ffprobe video": "h264/avc1", "exiftool Track2 Track2Name": "Voices",
    },
    ("broadcast.ts", "fix flag"): {"ffprobe video": "hevc/hvc1", "ffprobe audio": "aac/mp4a"},
    ("broadcast.ts", "transcode"): {"ffprobe video": "h264/avc1", "ffprobe audio": "aac/mp4a"},
    ("camera.avi", "fix flag"): {"ffprobe video": "mjpeg/mp4v", "ffprobe audio": "alac/alac"},
    ("camera.avi", "transcode"): {"ffprobe audio": "aac/mp4a"},
    ("camera.mov", "fix flag"): {"ffprobe audio": "alac/alac"},
    ("camera.mov", "transcode"): {"ffprobe audio": "aac/mp4a"},
    ("dolby-vision.mov", "transcode"): {"ffprobe records": None, "ffprobe brand": None},
    ("dolby-vision.mp4", "transcode"): {"ffprobe records": None, "ffprobe brand": None},
    ("hdr10.mov", "transcode"): {"ffprobe video": "h264/avc1"},
    ("spherical.mov", "transcode"): {"exiftool XMP-GSpherical ProjectionType": None},
    ("spherical.mp4", "transcode"): {"exiftool XMP-GSpherical ProjectionType": None},
}  # fmt: skip

# How many display matrices a fix flag may change in a file of the MP4 family.
MATRICES = {"motion-photo.mp4": 2}


def broken(name, mode, before, after, differing, is_mp4_family):
    """The promises that the saved video does not keep, as lines of text; none for a video that is no clip."""
    if name not in KEPT:
        return []
    lines = []
    if mode == "fix flag" and is_mp4_family:
        most = MATRIX_SIZE * MATRICES.get(name, 1)
        if differing is None or not 0 < differing <= most:
            lines.append(f"{differing if differing is not None else 'all'} bytes differ, not 1 to {most}")
    for fact in KEPT[name] + KEPT_IN.get((name, mode), []):
        if fact not in before:
            lines.append(f"the clip has no {fact}")
        elif after.get(fact) != before[fact]:
            lines.append(f"{fact} was {before[fact]}, is {after.get(fact)}")
    for fact, value in EXPECTED.get((name, mode), {}).items():
        if after.get(fact) != value:
            lines.append(f"{fact} is {after.get(fact)}, not {value}")
    return lines
