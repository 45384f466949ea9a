# SPDX-License-Identifier: MIT
"""Makes one short clip in the style of each kind of recorder."""

import os
import struct
import subprocess

import boxes

# The inputs of all clips, by their numbers for -map.
INPUTS = [
    "-f", "lavfi", "-i", "testsrc=size=160x120:rate=10:duration=1",
    "-f", "lavfi", "-i", "sine=duration=1:sample_rate=48000",
    "-f", "lavfi", "-i", "testsrc2=size=320x240:rate=2:duration=1",
]  # fmt: skip
PICTURE, SOUND, OTHER_PICTURE, SUBTITLES, CHAPTERS = (str(number) for number in range(5))

H264 = ["-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p"]
HEVC = ["-c:v", "libx265", "-preset", "ultrafast", "-x265-params", "log-level=none", "-pix_fmt", "yuv420p"]
AAC = ["-c:a", "aac", "-ac", "2"]

DATE = "2023-05-06T07:08:09Z"
SECONDS_1904 = 3766201689  # the same date in seconds since 1904
PLACE = "+48.1372+011.5756+519.000/"

# The projection of spherical video, version 1: XML in a box of a track.
SPHERICAL_UUID = bytes.fromhex("ffcc8263f8554a938814587a02521fdd")
SPHERICAL_XML = b"""<?xml version="1.0"?><rdf:SphericalVideo
xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"
xmlns:GSpherical="http://ns.google.com/videos/1.0/spherical/"><GSpherical:Spherical>true</GSpherical:Spherical>
<GSpherical:Stitched>true</GSpherical:Stitched>
<GSpherical:ProjectionType>equirectangular</GSpherical:ProjectionType></rdf:SphericalVideo>"""


class Clip:
    """A clip that ffmpeg makes of some inputs, and the change of its description afterwards."""

    def __init__(self, name, inputs, options, change=None, chapters="-1", trailer=b""):
        self.name = name
        self.arguments = [word for number in inputs for word in ("-map", number)]
        self.arguments += ["-map_chapters", chapters, *options]
        self.change = change
        self.trailer = trailer

    def finish(self, path):
        if self.change or self.trailer:
            samples, movie = boxes.movie_of(path)
            if self.change:
                self.change(movie)
            boxes.write_movie(path, samples, movie, self.trailer)


def tags(**values):
    return [word for name, value in values.items() for word in ("-metadata", f"{name}={value}")]


def stagger_times(movie):
    """Gives the movie, each track and its media a date of its own."""
    boxes.set_times(movie.at("mvhd"), SECONDS_1904, SECONDS_1904 + 60)
    for number, track in enumerate(movie.all(b"trak"), 1):
        boxes.set_times(track.at("tkhd"), SECONDS_1904 + number, SECONDS_1904 + 70 + number)
        boxes.set_times(track.at("mdia/mdhd"), SECONDS_1904 + number, SECONDS_1904 + 80 + number)


def change_iphone(movie):
    stagger_times(movie)
    keys = movie.at("udta").children.pop()  # an iPhone writes them outside the user data, without a version
    keys.content = keys.content[4:]
    movie.children.append(keys)
    boxes.set_language(movie.all(b"trak")[1], "deu")
    boxes.add_user_data(movie, [
        boxes.user_text(b"\xa9xyz", PLACE), boxes.user_text(b"\xa9mak", "Apple"),
        boxes.user_text(b"\xa9mod", "iPhone 14"), boxes.user_text(b"\xa9day", "2023-05-06T09:08:09+0200"),
    ])  # fmt: skip
    movie.all(b"trak")[0].children.append(keys)


def change_android(movie):
    stagger_times(movie)
    boxes.add_user_data(movie, [boxes.user_text(b"\xa9xyz", PLACE)])


def change_gopro(movie):
    """Makes a track of data out of the track of subtitles."""
    data = movie.all(b"trak")[2]
    handler = data.at("mdia/hdlr")
    handler.content = handler.content[:8] + b"meta" + handler.content[12:]
    descriptions = data.at("mdia/minf/stbl/stsd")
    descriptions.content = descriptions.content.replace(b"tx3g", b"gpmd")
    boxes.add_user_data(movie, [boxes.Box(b"FIRM", b"HD8.01.01.60.00"), boxes.Box(b"CAME", bytes(16))])


def add_dolby_vision(movie):
    # Version 1.0, profile 8, level 1, base layer and metadata, compatible with HLG.
    flags = (8 << 9) | (1 << 3) | 0b101
    record = struct.pack(">BBHB", 1, 0, flags, 4 << 4) + bytes(19)
    boxes.add_to_sample_entry(movie.all(b"trak")[0], boxes.Box(b"dvvC", record))


def add_hdr10(movie):
    display_box = struct.pack(">8H2I", 13250, 34500, 7500, 3000, 34000, 16000, 15635, 16450, 10000000, 50)
    video = movie.all(b"trak")[0]
    boxes.add_to_sample_entry(video, boxes.Box(b"mdcv", display_box))
    boxes.add_to_sample_entry(video, boxes.Box(b"clli", struct.pack(">HH", 1000, 400)))


def add_sphere(movie):
    movie.all(b"trak")[0].children.append(boxes.Box(b"uuid", SPHERICAL_UUID + SPHERICAL_XML))


def clips_of_phones():
    iphone = [
        *HEVC, "-tag:v", "hvc1", *AAC, "-metadata", f"creation_time={DATE}", "-movflags", "use_metadata_tags",
        "-metadata", "com.apple.quicktime.make=Apple", "-metadata", "com.apple.quicktime.model=iPhone 14",
        "-metadata", f"com.apple.quicktime.location.ISO6709={PLACE}",
        "-metadata", "com.apple.quicktime.creationdate=2023-05-06T09:08:09+0200",
    ]  # fmt: skip
    dated = tags(creation_time=DATE)
    return [
        Clip("iphone.mov", [PICTURE, SOUND], iphone, change_iphone),
        Clip("android.mp4", [PICTURE, SOUND], [*H264, *AAC, *dated], change_android),
        # A second video track, and data behind the description that no player knows.
        Clip("motion-photo.mp4", [PICTURE, OTHER_PICTURE, SOUND], [*H264, *AAC, *dated],
             trailer=boxes.Box(b"mpvd", bytes(5000)).to_bytes()),
    ]  # fmt: skip


def clips_of_cameras():
    dated = tags(creation_time=DATE)
    return [
        Clip("gopro.mp4", [PICTURE, SOUND, SUBTITLES], [*H264, *AAC, "-c:s", "mov_text", *dated], change_gopro),
        Clip("camera.avi", [PICTURE, SOUND],
             ["-c:v", "mjpeg", "-c:a", "pcm_s16le", *tags(title="A day", date="2023-05-06")]),
        # Still cameras record uncompressed sound, which MP4 does not hold.
        Clip("camera.mov", [PICTURE, SOUND], [*H264, "-c:a", "pcm_s16le", "-ac", "2", *dated]),
        Clip("spherical.mov", [PICTURE, SOUND], [*H264, *AAC, *dated], add_sphere),
        Clip("spherical.mp4", [PICTURE, SOUND], [*H264, *AAC, *dated], add_sphere),
    ]  # fmt: skip


def clips_of_colours():
    """Clips with more colours than usual."""
    dated = tags(creation_time=DATE)
    dolby_vision = [*HEVC, "-tag:v", "hvc1", *AAC, *dated]
    # The colours of the mastering display and the light level, in the container and in the stream.
    display = "G(13250,34500)B(7500,3000)R(34000,16000)WP(15635,16450)L(10000000,50)"
    hdr10 = [
        "-c:v", "libx265", "-preset", "ultrafast", "-pix_fmt", "yuv420p10le", "-tag:v", "hvc1",
        "-x265-params", f"log-level=none:hdr10=1:master-display={display}:max-cll=1000,400",
        "-color_primaries", "bt2020", "-color_trc", "smpte2084", "-colorspace", "bt2020nc", *AAC, *dated,
    ]  # fmt: skip
    return [
        Clip("dolby-vision.mov", [PICTURE, SOUND], dolby_vision, add_dolby_vision),
        Clip("dolby-vision.mp4", [PICTURE, SOUND], dolby_vision, add_dolby_vision),
        Clip("hdr10.mov", [PICTURE, SOUND], hdr10, add_hdr10),
    ]


def clips_of_programs():
    matroska = [
        *HEVC, "-c:a:0", "aac", "-c:a:1", "ac3", "-ac", "2",
        "-metadata:s:a:0", "language=deu", "-metadata:s:a:0", "title=Voices",
        "-metadata:s:a:1", "language=fra", "-metadata:s:a:1", "title=Music",
        *tags(creation_time=DATE, title="A day", make="Maker", model="Model 7", location=PLACE, DATE="2023-05-06",
              comment="Remark"),
    ]  # fmt: skip
    fragments = ["-g", "5", "-movflags", "+frag_keyframe+empty_moov"]
    return [
        Clip("two-sounds.mkv", [PICTURE, SOUND, SOUND], matroska, chapters=CHAPTERS),
        Clip("broadcast.ts", [PICTURE, SOUND], [*HEVC, *AAC, "-metadata:s:a", "language=deu"]),
        Clip("fragmented.mp4", [PICTURE, SOUND], [*H264, *AAC, *fragments, *tags(creation_time=DATE)]),
    ]


def text_inputs(folder):
    """The inputs SUBTITLES and CHAPTERS, as arguments of ffmpeg."""
    subtitles = os.path.join(folder, "lines.srt")
    with open(subtitles, "w", encoding="utf-8") as file:
        file.write("1\n00:00:00,000 --> 00:00:01,000\nGPS\n")
    chapters = os.path.join(folder, "chapters.txt")
    with open(chapters, "w", encoding="utf-8") as file:
        file.write(";FFMETADATA1\n")
        for start in (0, 500):
            file.write(f"[CHAPTER]\nTIMEBASE=1/1000\nSTART={start}\nEND={start + 500}\ntitle=Part {start}\n")
    return ["-i", subtitles, "-i", chapters]


def make_all(folder):
    """Makes all clips with one process, because its start costs more than the short clips. Returns their paths."""
    os.makedirs(folder, exist_ok=True)
    clips = clips_of_phones() + clips_of_cameras() + clips_of_colours() + clips_of_programs()
    paths = [os.path.join(folder, clip.name) for clip in clips]
    outputs = [word for clip, path in zip(clips, paths) for word in (*clip.arguments, "file:" + path)]
    command = ["ffmpeg", "-nostdin", "-v", "error", "-y", *INPUTS, *text_inputs(folder), *outputs]
    subprocess.run(command, check=True)
    for clip, path in zip(clips, paths):
        clip.finish(path)
    return paths
