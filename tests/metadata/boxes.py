# SPDX-License-Identifier: MIT
"""Takes MP4 and QuickTime files apart and puts them together again, to make clips that ffmpeg does not make."""

import struct

CONTAINERS = {b"moov", b"trak", b"mdia", b"minf", b"stbl", b"udta"}


class Box:
    """A box with either child boxes or bytes as its content."""

    def __init__(self, kind, content=b"", children=None):
        self.kind = kind
        self.content = content
        self.children = children

    def to_bytes(self):
        content = self.content
        if self.children is not None:
            content = b"".join(child.to_bytes() for child in self.children)
        return struct.pack(">I", len(content) + 8) + self.kind + content

    def all(self, kind):
        return [child for child in self.children if child.kind == kind]

    def at(self, path):
        """The first box at a path such as "mdia/hdlr"."""
        box = self
        for kind in path.split("/"):
            box = box.all(kind.encode())[0]
        return box


def parse(data):
    boxes = []
    offset = 0
    while offset + 8 <= len(data):
        size, kind = struct.unpack_from(">I4s", data, offset)
        header = 8
        if size == 1:
            size = struct.unpack_from(">Q", data, offset + 8)[0]
            header = 16
        content = data[offset + header : offset + size]
        is_container = kind in CONTAINERS
        boxes.append(Box(kind, content, parse(content) if is_container else None))
        offset += size
    return boxes


def movie_of(path):
    """The file up to its description, which is its last box, and the description."""
    with open(path, "rb") as file:
        data = file.read()
    start = data.rindex(b"moov") - 4
    return data[:start], parse(data[start:])[0]


def write_movie(path, samples, movie, trailer=b""):
    with open(path, "wb") as file:
        file.write(samples + movie.to_bytes() + trailer)


def user_text(kind, text):
    """A text of user data with its length and its language, which is "und"."""
    data = text.encode()
    return Box(kind, struct.pack(">HH", len(data), 0x55C4) + data)


def add_user_data(movie, boxes):
    if not movie.all(b"udta"):
        movie.children.append(Box(b"udta", children=[]))
    movie.at("udta").children += boxes


def set_times(box, created, modified):
    """Writes seconds since 1904 into a header of version 0."""
    box.content = box.content[:4] + struct.pack(">II", created, modified) + box.content[12:]


def set_language(track, letters):
    """Writes three letters into a media header of version 0."""
    packed = 0
    for letter in letters:
        packed = packed << 5 | ord(letter) - 0x60
    header = track.at("mdia/mdhd")
    header.content = header.content[:20] + struct.pack(">H", packed) + header.content[22:]


def add_to_sample_entry(track, box):
    """Appends a box to the only sample entry of a track."""
    descriptions = track.at("mdia/minf/stbl/stsd")
    count, entry = descriptions.content[:8], descriptions.content[8:]
    longer = entry + box.to_bytes()
    descriptions.content = count + struct.pack(">I", len(longer)) + longer[4:]
